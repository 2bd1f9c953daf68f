// All symbology of one importer: colours, line types, the code map, the layer table and the point symbols.

#pragma once

#include <cstdint>

namespace vemrado {

class CKokesTables {
  public:
    // Reads every table from the symbology directory, in a fixed order; problems are shown in one message box at the
    // end. Always 1.
    int Load(int withSymbols);

    // Colour and host line pattern of a VKM code. 1 when the code leads to a line type, else 0 with both 0.
    int GetLineStyle(int32_t vkmCode, uint32_t& colour, int32_t& pattern);
    // Host point pattern of a VKM symbol code, 0 when there is none.
    int32_t GetSymbolPattern(int32_t vkmCode);

    int32_t GetLayerValue(int32_t layer) const;
    void SetLayerValue(int32_t value, int32_t layer);
    // 1 with colour and pattern, or 0 with nothing written.
    int GetLayerStyle(int32_t layer, uint32_t& colour, int32_t& pattern) const;
};

}  // namespace vemrado
