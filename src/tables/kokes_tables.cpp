#include "tables/kokes_tables.h"

#include "support/data_directories.h"

namespace vemrado {

namespace {

constexpr char colourFileName[] = "WKOKES.COL";
constexpr char lineTypeFileName[] = "WKOKES.CAR";
constexpr char codeFileName[] = "DKM1_3.TB";

// One table's trouble with memory leaves the others alone.
template <class Step>
void WithinMemory(Step step) {
    try {
        step();
    } catch (const std::bad_alloc&) {
    }
}

}  // namespace

void CKokesTables::ClearTables() {
    colorTable.Clear();
    patterns.clear();
    lineDefinitions.Clear();
    layers.Clear();
    codeMap.Clear();
    symbols.ClearSymbols();
}

int CKokesTables::Load(int withSymbols) {
    ClearTables();
    messages.ClearMessages();
    WithinMemory([&] {
        const String directory = GetSymbolDirectory(dataDirectory);
        WithinMemory([&] { colorTable.ReadColorFile(directory + colourFileName); });
        WithinMemory([&] { ReadLineTypes(directory + lineTypeFileName); });
        ResolveLineColors();
        WithinMemory([&] { codeMap.ReadCodeMap(directory + codeFileName); });
    });
    WithinMemory([&] { layers.BuildLayers(); });
    ApplyLayerStyles();
    if (withSymbols != 0) WithinMemory([&] { symbols.LoadSymbols(dataDirectory); });
    messages.ShowMessages();
    return 1;
}

void CKokesTables::ApplyLayerStyles() {
    for (int32_t number = 1; CKokesLayerTable::CKokesLayer* layer = layers.Find(number); ++number) {
        if (layer->code != 0) GetLineStyle(layer->code, layer->colour, layer->pattern);
    }
}

int32_t CKokesTables::GetLayerValue(int32_t layer) const {
    const CKokesLayerTable::CKokesLayer* found = layers.Find(layer);
    return found != nullptr ? found->hostValue : 0;
}

void CKokesTables::SetLayerValue(int32_t value, int32_t layer) {
    if (CKokesLayerTable::CKokesLayer* found = layers.Find(layer)) found->hostValue = value;
}

int CKokesTables::GetLayerStyle(int32_t layer, uint32_t& colour, int32_t& pattern) const {
    const CKokesLayerTable::CKokesLayer* found = layers.Find(layer);
    if (found == nullptr) return 0;
    colour = found->colour;
    pattern = found->pattern;
    return 1;
}

}  // namespace vemrado
