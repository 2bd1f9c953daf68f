// All symbology of one importer: colours, line types, the code map, the layer table and the point symbols.
//
// Nothing here throws: where memory runs out, a table keeps what it has and a lookup finds nothing.

#pragma once

#include <cstdint>
#include <string_view>

#include "messages/collected_messages.h"
#include "support/code_index.h"
#include "support/containers.h"
#include "support/pool_pointer.h"
#include "support/table_text.h"
#include "symbols/symbol_table.h"
#include "tables/code_map.h"
#include "tables/color_table.h"
#include "tables/layer_table.h"

namespace vemrado {

// One line type of "WKOKES.CAR".
struct CLineDefinition {
    int32_t code = 0;
    int32_t colourNumber = 0;
    uint32_t colour = 0;      // of that number
    int32_t widthNumber = 0;  // not in the file
    double width = 0.0;
    int32_t lineStyle = 1;  // -N: dash pattern N; 0 and above: continuous
    int32_t pattern = 0;    // the host's number once registered
    int32_t value5 = 0;     // columns 5 to 8 of the file are kept and have no use here
    int32_t value6 = 0;
    double value7 = 0.0;
    double value8 = 0.0;
};

class CKokesTables {
  public:
    using DashPattern = Array<double>;

    CKokesTables() = default;
    CKokesTables(const CKokesTables&) = delete;
    CKokesTables& operator=(const CKokesTables&) = delete;
    ~CKokesTables() { patterns.clear(); }

    // Empties every table, then reads all from the symbology directory, in a fixed order; problems are shown
    // in one message box at the end. Always 1.
    int Load(int withSymbols);

    // Colour and host line pattern of a VKM code. 1 when the code leads to a line type, else 0 with both 0.
    // The first request for a line type with a dash pattern registers it with the drawing library.
    int GetLineStyle(int32_t vkmCode, uint32_t& colour, int32_t& pattern);
    // Host point pattern of a VKM symbol code, 0 when there is none.
    int32_t GetSymbolPattern(int32_t vkmCode) { return symbols.GetSymbolPattern(vkmCode); }

    // The directory that holds VKMSym, for the next load; empty: the one that the registry names.
    void SetDataDirectory(const String& directory) { dataDirectory = directory; }
    // What stands behind the lookups; valid until the next load.
    const CKokesCodeMap& LineCodes() const { return codeMap; }
    CKokesSymbols& Symbols() { return symbols; }
    // The line type that a VKM code leads to, null when there is none.
    const CLineDefinition* FindLineType(int32_t vkmCode) const;
    // The dash pattern of a line style, null when it has none or the table lacks it.
    const DashPattern* FindDashPattern(int32_t lineStyle) const;
    // Lengths that the drawing library takes of a dash pattern.
    static constexpr size_t longestPattern = 1001;

    // 0 when there is no such layer.
    int32_t GetLayerValue(int32_t layer) const;
    // Nothing happens when there is no such layer.
    void SetLayerValue(int32_t value, int32_t layer);
    // 1 with colour and pattern, or 0 with nothing written.
    int GetLayerStyle(int32_t layer, uint32_t& colour, int32_t& pattern) const;

  private:
    void ClearTables();
    int ReadLineTypes(const String& filePath);
    void StoreDefinition(int32_t number, Fields& fields);
    void StorePattern(int32_t number, Fields& fields);
    void ResolveLineColors();
    void ApplyLayerStyles();

    CollectedMessages messages;
    String lineTypePath;
    TableFile lineTypeFile{messages};
    CKokesColorTable colorTable{messages};
    Array<PoolPointer<DashPattern>> patterns;  // by pattern number; null: no such pattern
    CodeIndex<CLineDefinition> lineDefinitions;
    CKokesLayerTable layers;
    CKokesCodeMap codeMap{messages};
    CKokesSymbols symbols{messages};
    String dataDirectory;
};

// The columns of a definition line behind its number. Stops at the first one that is missing; what was not
// reached keeps its value.
void ParseLineDefinition(CLineDefinition& definition, Fields& fields);

}  // namespace vemrado
