#include "symbology_check.h"

#include <sstream>

#include "client/message_boxes.h"
#include "map/importer.h"

namespace vemrado::tools {
namespace {

class Checker {
  public:
    Checker(CVKMDetails& loaded, CheckedSymbology& result) : details(loaded), checked(result) {}

    void CheckLine(const map::CodeEntry& entry);
    void CheckSymbol(const map::CodeEntry& entry);

  private:
    void Report(const char* what, int code, const std::string& problem) {
        checked.problems.push_back(what + std::to_string(code) + ": " + problem);
    }

    CVKMDetails& details;
    CheckedSymbology& checked;
};

void Checker::CheckLine(const map::CodeEntry& entry) {
    CheckedLine line;
    line.entry = entry;
    unsigned int colour = 0;
    int dashPattern = 0;
    const double* lengths = nullptr;
    line.known = details.GetLineStyle(entry.code, &colour, &line.width, &dashPattern) != 0;
    if (line.known) line.pen = *map::FindPen(details, entry.code);
    if (!line.known) {
        Report("line code ", entry.code, "there is no line type " + std::to_string(entry.number));
    } else if (dashPattern != 0 && details.GetLineDashes(entry.code, &lengths) == 0) {
        Report("line code ", entry.code, "there is no dash pattern " + std::to_string(dashPattern));
    } else if (line.pen.invisible) {
        Report("line code ", entry.code, "its dash pattern draws nothing");
    }
    checked.lines.push_back(std::move(line));
}

void Checker::CheckSymbol(const map::CodeEntry& entry) {
    CheckedSymbol symbol{entry, {}};
    auto drawing = map::FindDrawing(details, entry.code);
    if (!drawing) {
        Report("symbol code ", entry.code,
               "the drawings of symbol " + std::to_string(entry.number) + " cannot be read");
    } else if (drawing->strokes.empty()) {
        Report("symbol code ", entry.code, "symbol " + std::to_string(entry.number) + " has no drawing");
    }
    if (drawing) symbol.drawing = std::move(*drawing);
    checked.symbols.push_back(std::move(symbol));
}

void AddLines(std::vector<std::string>& list, const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty()) list.push_back(line);
    }
}

}  // namespace

CheckedSymbology CheckSymbology(const std::string& dataDirectory) {
    CheckedSymbology checked;
    const client::MessageBoxes boxes([&](const std::string& text) { AddLines(checked.problems, text); });
    map::Importer importer;
    CVKMDetails& details = importer.Details();
    details.SetDataDirectory(dataDirectory.c_str());
    details.LoadSymbology(1);
    Checker checker(details, checked);
    for (const map::CodeEntry& line : map::LineCodes(details)) checker.CheckLine(line);
    for (const map::CodeEntry& symbol : map::SymbolCodes(details)) checker.CheckSymbol(symbol);
    return checked;
}

}  // namespace vemrado::tools
