// Pictures as files: the options by which people ask for them, and their making.

#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "draw/canvas.h"
#include "draw/scene_builder.h"

namespace vemrado::tools {

class Program;

struct PictureOptions {
    std::string file;
    int width = 0;  // pixels; 0: as large as it is on paper
    double dotsPerInch = 150;
};

// --output, --dpi and --width.
void AddPictureOptions(CLI::App& command, PictureOptions& options, bool required);

// --angle-unit.
void AddAngleUnitOption(Program& program, CLI::App& command, draw::AngleUnit& unit);

// Throws Failure when the file's name says no kind of picture.
void CheckPicture(const PictureOptions& options);

// Draws a page to the file, which appears whole or not at all. Throws Failure when the picture is too large
// or cannot be written.
void MakePicture(const PictureOptions& options, draw::PageSize page, const std::string& title,
                 const std::function<void(draw::Canvas&)>& drawPage);

}  // namespace vemrado::tools
