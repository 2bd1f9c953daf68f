// What the symbology files say beside what the module hands out: the names of line codes and symbols, and the
// widths of lines. For legends, listings and pens.

#pragma once

#include <string>
#include <unordered_map>
#include <vector>

namespace vemrado::client {

class SymbologyIndex {
  public:
    // A mapping line of DKM1_3.TB. The name is what stands after its two numbers, in UTF-8, often empty.
    struct LineCode {
        int code = 0;      // K value in map files
        int lineType = 0;  // number of the line type in WKOKES.CAR
        std::string name;
        double width = 0;     // mm on paper; 0: the line type is missing or gives none
        int dashPattern = 0;  // number of its dash pattern in WKOKES.CAR; 0: continuous
    };
    struct SymbolCode {
        int code = 0;    // S value in map files
        int symbol = 0;  // number of the symbol in WKOKES.SYM
        std::string name;
    };

    // An index without entries.
    SymbologyIndex() = default;

    // Reads the files in VKMSym of a directory, whatever the case of their names. A file that is missing or
    // cannot be read leaves its part of the index empty: the module is what reports it.
    explicit SymbologyIndex(const std::string& dataDirectory);

    // In the order of the file; of two lines for one code the first.
    const std::vector<LineCode>& Lines() const { return lines; }
    const std::vector<SymbolCode>& Symbols() const { return symbols; }

    // Null when the files do not name the code. Valid as long as the index.
    const LineCode* FindLine(int code) const;
    const SymbolCode* FindSymbol(int code) const;

  private:
    void AddMapping(char section, const std::string& line);

    std::vector<LineCode> lines;
    std::vector<SymbolCode> symbols;
    std::unordered_map<int, size_t> lineOfCode;
    std::unordered_map<int, size_t> symbolOfCode;
};

}  // namespace vemrado::client
