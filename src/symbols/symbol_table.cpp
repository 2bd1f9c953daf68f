#include "symbols/symbol_table.h"

#include <algorithm>

#include "messages/message_table.h"
#include "platform/ascii_case.h"
#include "support/data_directories.h"
#include "support/numbers.h"

namespace vemrado {

namespace {

constexpr char codeFileName[] = "DKM1_3.TB";
constexpr char symbolFileName[] = "WKOKES.SYM";
constexpr char shapeFileExtension[] = ".ksh";
constexpr int64_t codesPerFile = 255;

bool IsSkipped(std::string_view line) {
    return line.empty() || line.front() == '*';
}

// Each listed file serves 255 codes, from 1, whatever it holds.
void SetReference(CKokesSymbols::CSymbol& symbol) {
    const int64_t code = symbol.kokesCode;
    const int64_t index = (code - 1) / codesPerFile;
    symbol.fileIndex = static_cast<int32_t>(index);
    symbol.symbolNumber = static_cast<int32_t>(code - codesPerFile * index);
}

String LowerCased(std::string_view text) {
    String lowered(text);
    std::transform(lowered.begin(), lowered.end(), lowered.begin(), platform::LowerCase);
    return lowered;
}

void ReadPair(Fields& fields, int32_t& x, int32_t& y) {
    std::string_view first;
    std::string_view second;
    ReadNumberPair(fields, first, second);
    x = ParseInteger(first);
    y = ParseInteger(second);
}

}  // namespace

int CKokesSymbols::LoadSymbols(const String& dataDirectory) {
    directory = dataDirectory;
    const String folder = GetSymbolDirectory(directory);
    ReadSymbolCodes(folder + codeFileName);
    ReadSymbolTable(folder + symbolFileName);
    return LinkSymbols();
}

int CKokesSymbols::ReadSymbolCodes(const String& path) {
    TableFile file(messages);
    if (!file.Open(path)) return 0;
    vkmSymbols.Prepare();
    if (!FindCodeSection(file, 'S')) {
        if (!file.ReadFailed()) messages.AddFileMessage(path.c_str(), msgNoSymbolCodeTable);
        return 0;
    }
    CSymbol symbol;
    std::string_view name;
    while (NextCodePair(file, symbol.vkmCode, symbol.kokesCode, name)) {
        if (vkmSymbols.Find(symbol.vkmCode) != nullptr) continue;  // the first line of a code counts
        symbol.name = names.Add(name);
        vkmSymbols.Add(symbol.vkmCode, symbol);
    }
    return 1;
}

int CKokesSymbols::ReadSymbolTable(const String& path) {
    TableFile file(messages);
    if (!file.Open(path, msgSymbolsNotImported)) return 0;
    kokesSymbols.Prepare();
    if (!ReadFileList(file)) return 0;
    std::string_view line;
    while (file.NextLine(line)) {
        if (!IsSkipped(line)) ReadSymbolLine(line);
    }
    return 1;
}

bool CKokesSymbols::ReadFileList(TableFile& file) {
    std::string_view line;
    do {
        if (!file.NextLine(line)) return false;
    } while (IsSkipped(line));
    Fields fields(line);
    for (std::string_view name = fields.Next(); !name.empty(); name = fields.Next()) {
        files.push_back({String(name).append(shapeFileExtension), 0, nullptr});
    }
    filesByName.clear();
    for (const CSymbolFile& each : files) {
        filesByName.emplace_back(LowerCased(each.name), static_cast<int32_t>(filesByName.size()));
    }
    std::sort(filesByName.begin(), filesByName.end());
    return true;
}

void CKokesSymbols::ReadSymbolLine(std::string_view line) {
    CSymbol symbol;
    Fields fields(line);
    symbol.kokesCode = ParseInteger(fields.Next());
    if (line.front() == '"') {
        ReadQuotedReference(fields, symbol);
    } else {
        SetReference(symbol);
    }
    // A field that is missing reads as empty, which is 0.
    ReadPair(fields, symbol.pair1X, symbol.pair1Y);
    ReadPair(fields, symbol.pair2X, symbol.pair2Y);
    symbol.realValue = ParseReal(fields.Next());
    const std::string_view mark = fields.Next();
    symbol.markN = !mark.empty() && (mark.front() == 'N' || mark.front() == 'n') ? 1 : 0;
    kokesSymbols.Set(symbol.kokesCode, symbol);  // the last line of a code counts
}

// A line that begins with a quote names the shape file, as it is stored, and the drawing: "..." NAME.ksh,5.
// What is in quotes is no number, so the line's code is 0.
void CKokesSymbols::ReadQuotedReference(Fields& fields, CSymbol& symbol) const {
    std::string_view name;
    std::string_view number;
    if (ReadNumberPair(fields, name, number) == 0) return;
    symbol.fileIndex = FindSymbolFile(name);
    symbol.symbolNumber = ParseInteger(number);
}

int32_t CKokesSymbols::FindSymbolFile(std::string_view name) const {
    const std::pair<String, int32_t> wanted(LowerCased(name), 0);
    const auto found = std::lower_bound(filesByName.begin(), filesByName.end(), wanted);
    return found != filesByName.end() && found->first == wanted.first ? found->second : -1;
}

int CKokesSymbols::LinkSymbols() {
    for (auto& entry : vkmSymbols.Entries()) {
        CSymbol& symbol = entry.value;
        const CSymbol* found = kokesSymbols.Find(symbol.kokesCode);
        if (found == nullptr) continue;
        CSymbol linked = *found;
        linked.vkmCode = symbol.vkmCode;
        linked.patternId = symbol.patternId;
        linked.failed = symbol.failed;
        linked.name = symbol.name;
        symbol = linked;
    }
    return 1;
}

void CKokesSymbols::ClearSymbols() {
    kokesSymbols.Clear();
    vkmSymbols.Clear();
    names.Clear();
    for (CSymbolFile& file : files) file.shapes.reset();
    files.clear();
    files.shrink_to_fit();
    filesByName.clear();
}

}  // namespace vemrado
