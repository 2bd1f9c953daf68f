// The accessors of the importer: what the host copies out after each element.

#include "interface/vkm_input.h"
#include "support/numbers.h"
#include "vkm/coordinates.h"

namespace vemrado {

namespace {

// Start value of the bounds, slightly below the largest double.
constexpr double extentsLimit = 1.797693e308;

// The bounding box of the points seen so far.
struct Extents {
    double minimumFirst = extentsLimit;
    double minimumSecond = extentsLimit;
    double maximumFirst = -extentsLimit;
    double maximumSecond = -extentsLimit;

    void Add(const double* point) {
        if (minimumFirst > point[0]) minimumFirst = point[0];
        if (minimumSecond > point[1]) minimumSecond = point[1];
        if (point[0] > maximumFirst) maximumFirst = point[0];
        if (point[1] > maximumSecond) maximumSecond = point[1];
    }

    bool Found() const {
        return minimumFirst != extentsLimit && minimumSecond != extentsLimit &&
               maximumFirst != -extentsLimit && maximumSecond != -extentsLimit;
    }
};

template <class Element>
void CopyPoint(const Element& element, double* point) {
    point[0] = element.x;
    point[1] = element.y;
    point[2] = element.z;
}

}  // namespace

bool CVkmInput::SymbolsWanted() const {
    return (openFlags & static_cast<uint32_t>(flgSymbols)) != 0;
}

void CVkmInput::TransformPoint(double* point) {
    ApplyAxisOrientation(point[0], point[1], state.axisOrientation);
}

int CVkmInput::GetExtents(double* minimumFirst, double* minimumSecond, double* maximumFirst,
                          double* maximumSecond) {
    Extents extents;
    double point[3];
    outOfMemory = false;
    while (const int kind = ReadNext()) {
        if (kind == 2) {
            GetTextPoint(point);
            extents.Add(point);
            continue;
        }
        for (int i = 0; i < GetElementCount(); ++i) {
            GetElementPoint(i, point);
            extents.Add(point);
        }
    }
    *minimumFirst = extents.minimumFirst;
    *minimumSecond = extents.minimumSecond;
    *maximumFirst = extents.maximumFirst;
    *maximumSecond = extents.maximumSecond;
    return extents.Found() && !outOfMemory ? 1 : 0;
}

void CVkmInput::GetElementPoint(int index, double* point) {
    CopyPoint(ElementAt(index), point);
}

int CVkmInput::GetElementSymbol(int index) {
    if (!SymbolsWanted()) return 0;
    const int32_t symbolCode = ElementAt(index).symbolCode;
    return symbolCode == 0 ? 0 : tables.GetSymbolPattern(symbolCode);
}

int CVkmInput::GetElementSymbolPlacement(int index, double* valueU, double* valueM, int* byGPScale) {
    if (!SymbolsWanted()) return 0;
    const CVKMLineElement& element = ElementAt(index);
    if (element.symbolCode == 0) return 0;
    *valueU = element.valueU;
    *valueM = element.valueM;
    *byGPScale = static_cast<int>(openFlags & static_cast<uint32_t>(flgSymbolsByGPScale));
    return 1;
}

const char* CVkmInput::GetLayer(int* layerNumber) {
    const bool named = !layerName.empty();
    *layerNumber = named ? 0 : state.elementLayerNumber;
    return named ? layerName.c_str() : state.elementLayerText;
}

int CVkmInput::GetElementLineStyle(int index, unsigned int* colour, int* pattern) {
    const CVKMLineElement& element = ElementAt(index);
    const char* code = state.lineElements.CodeOf(element);
    if (*code == '\0') return 0;
    return tables.GetLineStyle(ParseInteger(code), *colour, *pattern);
}

void CVkmInput::GetElementRValue(int index, double* valueR) {
    *valueR = ElementAt(index).valueR;
}

int CVkmInput::GetElementCount() {
    return static_cast<int>(state.lineElements.Count());
}

int CVkmInput::GetElementType(int index) {
    return static_cast<int>(ElementAt(index).type);
}

int CVkmInput::GetLayerValue(int layer) {
    return tables.GetLayerValue(layer);
}

int CVkmInput::GetLayerStyle(int layer, unsigned int* colour, int* pattern) {
    return tables.GetLayerStyle(layer, *colour, *pattern);
}

void CVkmInput::SetLayerValue(int value, int layer) {
    tables.SetLayerValue(value, layer);
}

const char* CVkmInput::GetText() {
    return state.currentText.text.Get();
}

void CVkmInput::GetTextPoint(double* point) {
    CopyPoint(state.currentText, point);
}

void CVkmInput::GetTextAttributes(int* valueD, int* valueF, double* scaledH, double* valueU) {
    *valueD = state.currentText.values.valueD;
    *valueF = state.currentText.values.valueF;
    *scaledH = state.currentText.values.valueH * state.scaleFactor;
    *valueU = state.currentText.values.valueU;
}

double CVkmInput::GetScale() {
    return state.mapScale;
}

}  // namespace vemrado
