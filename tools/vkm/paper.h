// Pages of paper: the options by which people ask for them.

#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "draw/map_pages.h"
#include "picture.h"

namespace vemrado::tools {

class Program;

struct PaperOptions {
    std::string page;  // a4, or WIDTHxHEIGHT in millimetres; empty: one picture as large as the map
    bool landscape = false;
    std::string scale;  // 500 for 1 : 500, or fit; empty: the map's own

    bool Wanted() const { return !page.empty(); }
};

// --page, --landscape and --scale.
void AddPaperOptions(Program& program, CLI::App& command, PaperOptions& options);

// Of the paper and the scale. Throws Failure when an option is no such thing, or makes no sense with another
// or with the kind of picture.
draw::PageOptions ReadPaper(const PaperOptions& options, const PictureOptions& picture);

}  // namespace vemrado::tools
