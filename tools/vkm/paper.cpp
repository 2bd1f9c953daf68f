#include "paper.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <utility>

#include "client/system.h"
#include "client/text_encoding.h"
#include "program.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

struct Paper {
    std::string_view name;
    double width;  // mm, upright
    double height;
};

constexpr std::array<Paper, 7> papers{{{"a6", 105, 148},
                                       {"a5", 148, 210},
                                       {"a4", 210, 297},
                                       {"a3", 297, 420},
                                       {"a2", 420, 594},
                                       {"a1", 594, 841},
                                       {"a0", 841, 1189}}};
constexpr std::string_view fit = "fit";
constexpr double smallestSide = 100;  // mm
constexpr double largestSide = 5080;

bool ReadNumber(std::string_view text, double& number) {
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() && read.ptr == text.data() + text.size() && std::isfinite(number);
}

// By its name in either case, or WIDTHxHEIGHT.
std::pair<double, double> SidesOf(const std::string& page) {
    const std::string name = client::LowerAscii(page);
    for (const Paper& paper : papers) {
        if (paper.name == name) return {paper.width, paper.height};
    }
    const size_t cross = name.find('x');
    std::pair<double, double> sides;
    if (cross == std::string::npos || !ReadNumber(std::string_view(name).substr(0, cross), sides.first) ||
        !ReadNumber(std::string_view(name).substr(cross + 1), sides.second)) {
        throw Failure(exitUsage,
                      Filled("--page: there is no paper '{}'; take a0 to a6, or millimetres as 300x400",
                             {client::SystemTextToUtf8(page)}));
    }
    for (const double side : {sides.first, sides.second}) {
        if (side < smallestSide || side > largestSide)
            throw Failure(exitUsage, Translated("--page: a side of a page has 100 to 5080 mm"));
    }
    return sides;
}

double ScaleOf(const std::string& scale) {
    double number = 0;
    if (!ReadNumber(scale, number) || number < 1 || number > 1e9) {
        throw Failure(exitUsage,
                      Filled("--scale: '{}' is no scale; take a number such as 500, or fit with --page",
                             {client::SystemTextToUtf8(scale)}));
    }
    return number;
}

}  // namespace

void AddPaperOptions(Program& program, CLI::App& command, PaperOptions& options) {
    CLI::Option* page = command.add_option(
        "--page", options.page,
        "Pages of this paper, as a PDF: a0 to a6, or WIDTHxHEIGHT in millimetres; a map that needs "
        "more than one gets an overview before them");
    page->type_name("PAPER");
    std::vector<std::string> names;
    for (const Paper& paper : papers) names.emplace_back(paper.name);
    program.SetChoices(*page, names);
    command.add_flag("--landscape", options.landscape, "Pages that are wider than high");
    CLI::Option* scale = command.add_option("--scale", options.scale,
                                            "Draw at this scale, as 500 for 1 : 500 (default: that of the "
                                            "map); with --page also fit, to fit one page");
    scale->type_name("N");
    program.SetChoices(*scale, {"500", "1000", "2000", "5000", std::string(fit)});
}

draw::PageOptions ReadPaper(const PaperOptions& options, const PictureOptions& picture) {
    draw::PageOptions paper;
    if (picture.width > 0 && options.Wanted())
        throw Failure(exitUsage, Filled("{} and {} exclude each other", {"--page", "--width"}));
    if (picture.width > 0 && !options.scale.empty())
        throw Failure(exitUsage, Filled("{} and {} exclude each other", {"--scale", "--width"}));
    if (options.landscape && !options.Wanted())
        throw Failure(exitUsage, Filled("{} needs {}", {"--landscape", "--page"}));
    paper.fit = options.scale == fit;
    if (paper.fit && !options.Wanted())
        throw Failure(exitUsage, Filled("{} needs {}", {"--scale fit", "--page"}));
    if (!options.scale.empty() && !paper.fit) paper.mapScale = ScaleOf(options.scale);
    if (!options.Wanted()) return paper;
    if (FormatOf(picture) != draw::Format::pdf)
        throw Failure(
            exitUsage,
            Translated("--page: pages are made as PDF; take a name that ends in .pdf or --format pdf"));
    std::tie(paper.width, paper.height) = SidesOf(options.page);
    if (options.landscape && paper.width < paper.height) std::swap(paper.width, paper.height);
    return paper;
}

}  // namespace vemrado::tools
