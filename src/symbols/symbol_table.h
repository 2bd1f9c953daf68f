// Point symbols: from the symbol codes of VKM files to patterns of the host's drawing library.
//
// "DKM1_3.TB" maps VKM symbol codes to Kokes symbol codes, "WKOKES.SYM" says where a Kokes symbol is drawn:
// the shape file and the number in it. A shape file is read when one of its drawings is first asked for, and
// a symbol is registered when it is first asked for; failures are remembered and not tried again.

#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "messages/collected_messages.h"
#include "support/code_index.h"
#include "support/code_names.h"
#include "support/containers.h"
#include "support/pool_pointer.h"
#include "support/table_text.h"
#include "symbols/point_pattern.h"
#include "symbols/symbol_shapes.h"

namespace vemrado {

class CKokesSymbols {
  public:
    struct CSymbol {
        int32_t vkmCode = 0;  // 0 for an entry of "WKOKES.SYM"
        int32_t kokesCode = 0;
        int32_t patternId = 0;     // the host's number once registered
        int32_t failed = 0;        // 1: registration failed
        int32_t fileIndex = 0;     // of the shape file; may lie outside the list
        int32_t symbolNumber = 0;  // of the drawing in it, from 1
        int32_t pair1X = 0;        // from here on kept as in the file, without a use here
        int32_t pair1Y = 0;
        int32_t pair2X = 0;
        int32_t pair2Y = 0;
        double realValue = 0.0;
        int32_t markN = 0;
        uint32_t name = 0;  // of the VKM code: its place in the names
    };
    struct CSymbolFile {
        String name;         // with ".ksh"
        int32_t failed = 0;  // 1: could not be loaded
        PoolPointer<CSymbolShapes> shapes;
    };

    // The warnings must outlive the symbols.
    explicit CKokesSymbols(CollectedMessages& warnings) : messages(warnings) {}
    CKokesSymbols(const CKokesSymbols&) = delete;
    CKokesSymbols& operator=(const CKokesSymbols&) = delete;
    ~CKokesSymbols() { ClearSymbols(); }

    // Reads both tables from the symbology directory, as GetSymbolDirectory gives it for a data directory,
    // and links them; problems become collected warnings. Always 1. May throw std::bad_alloc; what was read
    // before stays.
    int LoadSymbols(const String& dataDirectory = String());
    void ClearSymbols();

    // The host's pattern number of a VKM symbol code, 0 when there is none. Never throws.
    int32_t GetSymbolPattern(int32_t vkmCode);
    // The drawing of a VKM symbol code, null when it leads to none that can be read. Valid until the next
    // call of this or of GetSymbolPattern. Never throws.
    const CPointPattern* GetDrawing(int32_t vkmCode);

    // In the order of the file.
    const Array<CodeIndex<CSymbol>::Entry>& Entries() const { return vkmSymbols.Entries(); }
    const char* NameOf(const CSymbol& symbol) const { return names.At(symbol.name); }
    // Null when there is no such VKM code.
    const CSymbol* Find(int32_t vkmCode) const { return vkmSymbols.Find(vkmCode); }

    // Index of the first shape file of that name, whatever its case; -1 when there is none.
    int32_t FindSymbolFile(std::string_view name) const;

  private:
    int ReadSymbolCodes(const String& path);
    int ReadSymbolTable(const String& path);
    bool ReadFileList(TableFile& file);
    void ReadSymbolLine(std::string_view line);
    void ReadQuotedReference(Fields& fields, CSymbol& symbol) const;
    int LinkSymbols();

    int32_t RegisterSymbol(const CSymbol& symbol);
    // Draws a symbol into the pattern; false when its shape file cannot be read.
    bool Draw(const CSymbol& symbol);
    CSymbolShapes* GetShapes(int32_t fileIndex);

    CollectedMessages& messages;
    CodeIndex<CSymbol> kokesSymbols;
    CodeIndex<CSymbol> vkmSymbols;
    CodeNames names;
    String directory;  // the data directory of the load; empty: as the registry has it
    Array<CSymbolFile> files;
    CPointPattern pattern;
    Array<std::pair<String, int32_t>> filesByName;  // names in lower case with their index, sorted
};

}  // namespace vemrado
