// Pictures as files: the options by which people ask for them, and their making.

#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "draw/canvas.h"
#include "draw/scene_builder.h"

namespace vemrado::tools {

class Environment;
class Program;

struct PictureOptions {
    std::string file;    // standardInputName: standard output
    std::string format;  // png, svg or pdf; empty: as the file's name ends
    int width = 0;       // pixels; 0: as large as it is on paper
    double dotsPerInch = 150;
};

// --output, --format, --dpi and --width.
void AddPictureOptions(Program& program, CLI::App& command, PictureOptions& options, bool required);

// --angle-unit.
void AddAngleUnitOption(Program& program, CLI::App& command, draw::AngleUnit& unit);

// Throws Failure when neither the format nor the file's name says a kind of picture.
draw::Format FormatOf(const PictureOptions& options);
void CheckPicture(const PictureOptions& options);

// A picture to be made.
struct Picture {
    draw::PageSize page;
    std::string title;
    uint64_t things = 0;  // lines, symbols and texts that will be drawn, more or less
    std::function<void(draw::Canvas&)> draw;
};

// Draws to the file, which appears whole or not at all, or to standard output; with a progress bar, and until
// the user asks to stop. Throws Failure when the picture is too large, cannot be written or was stopped.
void MakePicture(const PictureOptions& options, const Picture& picture, Environment& environment);

}  // namespace vemrado::tools
