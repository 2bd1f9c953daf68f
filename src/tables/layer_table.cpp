#include "tables/layer_table.h"

#include <cstdio>
#include <iterator>

#include "support/numbers.h"

namespace vemrado {

namespace {

// By layer number; record 0 is unused.
constexpr const char* codeTexts[] = {"", "21900", "", "", "21800", "", "", "1029", "", "", "1030", ""};

}  // namespace

void CKokesLayerTable::BuildLayers() {
    Array<CKokesLayer> built(std::size(codeTexts));
    for (size_t i = 1; i < built.size(); ++i) {
        CKokesLayer& layer = built[i];
        layer.number = static_cast<int32_t>(i);
        char name[16];
        std::snprintf(name, sizeof name, "%d", layer.number);
        layer.name = name;
        layer.codeText = codeTexts[i];
        layer.code = ParseInteger(layer.codeText);
    }
    layers.swap(built);
}

const CKokesLayerTable::CKokesLayer* CKokesLayerTable::Find(int32_t number) const {
    return number >= 1 && static_cast<size_t>(number) < layers.size() ? &layers[static_cast<size_t>(number)]
                                                                      : nullptr;
}

CKokesLayerTable::CKokesLayer* CKokesLayerTable::Find(int32_t number) {
    return const_cast<CKokesLayer*>(static_cast<const CKokesLayerTable*>(this)->Find(number));
}

}  // namespace vemrado
