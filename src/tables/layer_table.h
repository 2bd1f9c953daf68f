// The fixed table of eleven layers. Four of them are drawn in the style of a VKM line code.

#pragma once

#include <cstdint>

#include "support/containers.h"

namespace vemrado {

class CKokesLayerTable {
  public:
    struct CKokesLayer {
        int32_t number = 0;
        String name;
        int32_t hostValue = 0;  // the host's own, never interpreted
        String codeText;
        int32_t code = 0;  // 0: the layer has no line code
        uint32_t colour = 0;
        int32_t pattern = 0;  // the host's number, 0: continuous
    };

    // Layers 1 to 11 with their codes; record 0 is never handed out. May throw std::bad_alloc; the table is
    // empty then.
    void BuildLayers();
    void Clear() { layers.clear(); }

    // The layer of a number, or null.
    const CKokesLayer* Find(int32_t number) const;
    CKokesLayer* Find(int32_t number);

  private:
    Array<CKokesLayer> layers;
};

}  // namespace vemrado
