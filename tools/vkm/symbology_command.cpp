// vkm symbology: what a symbology directory holds, and what is wrong with it.

#include <cstdio>
#include <memory>

#include "client/data_directory.h"
#include "client/standard_input.h"
#include "client/system.h"
#include "commands.h"
#include "common_options.h"
#include "draw/words.h"
#include "framework/framework.h"
#include "picture.h"
#include "program.h"
#include "symbology_check.h"
#include "symbology_sheet.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

struct SymbologyOptions {
    std::string directory;
    PictureOptions picture;
};

template <typename... Values>
std::string Row(const char* format, Values... values) {
    char text[160];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

std::string DashesText(const map::Pen& pen) {
    std::string text;
    for (const double length : pen.dashes) text += Row("%s%.6g", text.empty() ? "" : " ", length);
    return text.empty() ? "-" : text;
}

void PrintLines(const CheckedSymbology& checked, StandardOutput& output) {
    output.Write(Filled("Line codes: {}", {std::to_string(checked.lines.size())}) + "\n");
    output.Write(PaddedLeft(Translated("code"), 11) + ' ' + PaddedLeft(Translated("line type"), 9) + "  " +
                 PaddedRight(Translated("colour"), 7) + ' ' + PaddedLeft("mm", 6) + "  " +
                 PaddedRight(Translated("dashes (mm)"), 24) + ' ' + Translated("name") + '\n');
    for (const CheckedLine& line : checked.lines) {
        const uint32_t colour = line.pen.colour;
        output.Write(Row("%11d %9d  #%02x%02x%02x %6.6g  %-24.80s ", line.entry.code, line.entry.number,
                         colour & 255, (colour >> 8) & 255, (colour >> 16) & 255, line.width,
                         DashesText(line.pen).c_str()));
        output.Write(line.entry.name + "\n");
    }
}

void PrintSymbols(const CheckedSymbology& checked, StandardOutput& output) {
    output.Write("\n" + Filled("Symbol codes: {}", {std::to_string(checked.symbols.size())}) + "\n");
    output.Write(PaddedLeft(Translated("code"), 11) + ' ' + PaddedLeft(Translated("symbol"), 9) + "  " +
                 PaddedLeft(Translated("strokes"), 7) + "  " + PaddedRight(Translated("size (mm)"), 14) +
                 ' ' + Translated("name") + '\n');
    for (const CheckedSymbol& symbol : checked.symbols) {
        const map::Box& bounds = symbol.drawing.bounds;
        const std::string size = Row("%.6g x %.6g", bounds.Width(), bounds.Height());
        output.Write(Row("%11d %9d  %7zu  %-14s ", symbol.entry.code, symbol.entry.number,
                         symbol.drawing.strokes.size(), size.c_str()));
        output.Write(symbol.entry.name + "\n");
    }
}

int RunSymbology(const SymbologyOptions& options, Environment& environment) {
    const char* inForce = FrameworkGetDataDirectory();
    const std::string directory =
        client::DataDirectoryOf(options.directory.empty() && inForce ? inForce : options.directory);
    if (directory.empty()) throw Failure(exitUsage, "there is no sample symbology here: name a DIR");
    if (options.picture.file == client::standardInputName)
        throw Failure(exitUsage, "--output: standard output takes the list, so the sheet needs a file");
    if (!options.picture.file.empty()) CheckPicture(options.picture);
    const CheckedSymbology checked = CheckSymbology(directory);
    PrintLines(checked, environment.output);
    PrintSymbols(checked, environment.output);
    environment.output.Flush();
    if (!options.picture.file.empty()) {
        const std::string source = client::SystemTextToUtf8(directory);
        const SymbologySheet sheet(checked, source);
        const std::string title = draw::HostWords().symbology + (" " + source);
        const Picture picture{sheet.Page(), title, checked.symbols.size(),
                              [&](draw::Canvas& canvas) { sheet.Draw(canvas); }};
        MakePicture(options.picture, picture, environment);
    }
    for (const std::string& problem : checked.problems) environment.Error(problem);
    return checked.problems.empty() ? exitDone : exitInput;
}

}  // namespace

void AddSymbologyCommand(Program& program) {
    const auto options = std::make_shared<SymbologyOptions>();
    const CommandText text = {
        "symbology",
        "List line types and symbols of a symbology, and its problems",
        R"(Loads a symbology as for the import of a map and looks up every line code and symbol code that its tables name.
Every problem is listed; the exit code is 1 when there are any. -o draws a sheet with every line type and every
symbol.

DIR is the directory that holds VKMSym, or VKMSym itself; without it the symbology of --data is taken.)",
        {{"vkm symbology", "the sample symbology"},
         {"vkm symbology /mnt/host/VKMSym -o sheet.pdf", "check another one and draw its sheet"}}};
    CLI::App& command = program.Add(
        text, [options](Environment& environment) { return RunSymbology(*options, environment); });
    command.add_option("DIR", options->directory, "The symbology")->type_name("")->check(ExistingDirectory());
    AddPictureOptions(program, command, options->picture, false);
}

}  // namespace vemrado::tools
