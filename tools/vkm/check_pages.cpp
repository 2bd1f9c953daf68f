#include "check_pages.h"

#include "check_document.h"

namespace vemrado::tools {

std::string PageOfRule(std::string_view rule) {
    const std::string_view document = checkDocument;
    const std::string heading = "\n### " + std::string(rule) + "\n";
    const size_t start = document.find(heading);
    if (start == std::string_view::npos) return {};
    const std::string_view page = document.substr(start + heading.size() - rule.size() - 1);
    return std::string(page.substr(0, page.find("\n#"))) + "\n";
}

}  // namespace vemrado::tools
