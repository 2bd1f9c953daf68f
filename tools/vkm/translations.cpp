#include "translations.h"

#include <unordered_map>

#include "translation_table.h"
#include "zrv320/zrv320.h"

namespace vemrado::tools {
namespace {

using Texts = std::unordered_map<std::string_view, std::string_view>;

Texts TextsOf(std::string_view Translation::*language) {
    Texts texts;
    for (const Translation& row : translations) texts.emplace(row.english, row.*language);
    return texts;
}

const Texts& HostTexts() {
    static const Texts texts = [] {
        switch (GetZrvCountry()) {
            case 0:
                return TextsOf(&Translation::czech);
            case 2:
                return TextsOf(&Translation::german);
            default:
                return Texts();
        }
    }();
    return texts;
}

}  // namespace

std::string_view Translated(std::string_view english) {
    const auto found = HostTexts().find(english);
    return found == HostTexts().end() || found->second.empty() ? english : found->second;
}

std::string Filled(std::string_view english, std::initializer_list<std::string_view> values) {
    std::string text(Translated(english));
    size_t from = 0;
    for (const std::string_view value : values) {
        const size_t place = text.find("{}", from);
        if (place == std::string::npos) break;
        text.replace(place, 2, value);
        from = place + value.size();
    }
    return text;
}

}  // namespace vemrado::tools
