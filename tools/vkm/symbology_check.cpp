#include "symbology_check.h"

#include <sstream>

#include "client/data_directory.h"
#include "client/importer.h"
#include "client/message_boxes.h"
#include "framework/framework.h"
#include "zrv320/zrv320.h"

namespace vemrado::tools {
namespace {

// A map file of one name in memory, offered to the module while the object lives.
class MemoryFile {
  public:
    MemoryFile(std::string fileName, std::string fileContent)
        : name(std::move(fileName)), content(std::move(fileContent)) {
        const FrameworkFileProvider provider{this, Open, Read, Length, [](void*) {}};
        FrameworkSetFileProvider(&provider);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { FrameworkSetFileProvider(nullptr); }

  private:
    static void* Open(void* context, const char* path) {
        auto* self = static_cast<MemoryFile*>(context);
        self->position = 0;
        return self->name == path ? self : nullptr;
    }
    static int64_t Read(void* file, void* destination, size_t count) {
        auto* self = static_cast<MemoryFile*>(file);
        const size_t taken = self->content.copy(static_cast<char*>(destination), count, self->position);
        self->position += taken;
        return static_cast<int64_t>(taken);
    }
    static int64_t Length(void* file) {
        return static_cast<int64_t>(static_cast<MemoryFile*>(file)->content.size());
    }

    std::string name;
    std::string content;
    size_t position = 0;
};

constexpr const char* fileName = "every code of the symbology";

// A line whose elements have every line code, and one whose elements have every symbol code.
std::string EveryCode(const client::SymbologyIndex& index) {
    std::ostringstream file;
    file << "&R 0 0 0 0 1000\n&L P 0 0\n";
    for (const auto& line : index.Lines()) file << "L 0 0 K=" << line.code << "\n";
    file << "&L P 0 0\n";
    for (const auto& symbol : index.Symbols()) file << "L 0 0 S=" << symbol.code << "\n";
    file << "&K\n";
    return file.str();
}

class Checker {
  public:
    Checker(client::Importer& opened, CheckedSymbology& result) : importer(opened), checked(result) {}

    void CheckLine(int element, const client::SymbologyIndex::LineCode& entry);
    void CheckSymbol(int element, const client::SymbologyIndex::SymbolCode& entry);

  private:
    void Report(const char* what, int code, const std::string& problem) {
        checked.problems.push_back(what + std::to_string(code) + ": " + problem);
    }

    client::Importer& importer;
    CheckedSymbology& checked;
};

void Checker::CheckLine(int element, const client::SymbologyIndex::LineCode& entry) {
    CheckedLine line;
    line.entry = entry;
    line.pen.id = "line-" + std::to_string(entry.code);
    if (entry.width > 0) line.pen.width = entry.width;
    unsigned int colour = 0;
    int pattern = 0;
    line.known = importer.Interface().GetElementLineStyle(element, &colour, &pattern) != 0;
    line.pen.colour = colour;
    draw::SetDashes(line.pen, ZrvLinePattern(pattern));
    if (!line.known) {
        Report("line code ", entry.code, "there is no line type " + std::to_string(entry.lineType));
    } else if (entry.dashPattern != 0 && pattern == 0) {
        Report("line code ", entry.code, "there is no dash pattern " + std::to_string(entry.dashPattern));
    } else if (line.pen.invisible) {
        Report("line code ", entry.code, "its dash pattern draws nothing");
    }
    checked.lines.push_back(std::move(line));
}

void Checker::CheckSymbol(int element, const client::SymbologyIndex::SymbolCode& entry) {
    CheckedSymbol symbol;
    symbol.entry = entry;
    const int pattern = importer.Interface().GetElementSymbol(element);
    symbol.shape = draw::MakeSymbolShape("symbol-" + std::to_string(entry.code), ZrvPointPattern(pattern));
    if (pattern == 0) {
        Report("symbol code ", entry.code,
               "the drawings of symbol " + std::to_string(entry.symbol) + " cannot be read");
    } else if (symbol.shape.strokes.empty()) {
        Report("symbol code ", entry.code, "symbol " + std::to_string(entry.symbol) + " has no drawing");
    }
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
    const client::SymbologyIndex index(dataDirectory);
    client::UseDataDirectory(dataDirectory);
    const client::MessageBoxes boxes([&](const std::string& text) { AddLines(checked.problems, text); });
    const MemoryFile file(fileName, EveryCode(index));
    client::Importer importer;
    client::OpenOptions open;
    open.fileName = fileName;
    open.loadSymbology = true;
    open.flags = CVKMInterface::flgSymbols;
    if (!importer.Open(open)) return checked;
    Checker checker(importer, checked);
    importer.Next();
    int element = 0;  // element 0 has no code
    for (const auto& line : index.Lines()) checker.CheckLine(++element, line);
    importer.Next();
    element = 0;
    for (const auto& symbol : index.Symbols()) checker.CheckSymbol(++element, symbol);
    return checked;
}

}  // namespace vemrado::tools
