// Lines and texts given as a whole.

#include <bit>
#include <cstring>

#include "interface/vkm_input.h"

namespace vemrado {

namespace {

uint64_t Bits(double value) {
    return std::bit_cast<uint64_t>(value);
}

// Not 0 when the element has an S, M, R or U value.
uint64_t ValueBits(const CVKMLineElement& element) {
    return static_cast<uint32_t>(element.symbolCode) | (Bits(element.valueM) ^ Bits(1.0)) |
           Bits(element.valueR) | Bits(element.valueU);
}

// Two coordinates looked at in one step.
using Pair = double __attribute__((vector_size(16)));
using PairBits = int64_t __attribute__((vector_size(16)));

// All bits set where a coordinate is a place.
PairBits ArePlaces(Pair point) {
    constexpr PairBits withoutSigns = {INT64_MAX, INT64_MAX};
    constexpr Pair limit = {farthestPlace, farthestPlace};
    return std::bit_cast<Pair>(std::bit_cast<PairBits>(point) & withoutSigns) <= limit;
}

void CopyValues(const CVKMLineElements& elements, VkmLine& line) {
    for (size_t i = 0; i < elements.Count(); ++i) {
        const CVKMLineElement& element = elements[i];
        line.symbolCodes[i] = element.symbolCode;
        line.valuesM[i] = element.valueM;
        line.valuesR[i] = element.valueR;
        line.valuesU[i] = element.valueU;
    }
}

void FillNoElements(VkmLine& line) {
    line.severalCodes = line.beginsAgain = line.hasNoType = line.hasNoPlace = line.hasValues = 0;
}

// The letters and the two that are none are different bits.
uint32_t TypeBit(uint32_t type) {
    return 1U << (type & 31);
}

void FillElements(const CVKMLineElements& elements, VkmLine& line) {
    const size_t count = elements.Count();
    if (count == 0) return FillNoElements(line);
    // Written to, these might be any of the others for the compiler.
    double* const points = line.points;
    char* const types = line.types;
    const char** const codes = line.codes;

    const CVKMLineElement* from = &elements[0];
    uint64_t values = 0;
    PairBits places = {-1, -1};
    uint32_t typesBehindFirst = 0;
    size_t codeChanges = 0;
    CVKMComparedCode code(from->code);
    const char* codeText = elements.CodeOf(*from);
    for (size_t i = 0;;) {
        Pair point;
        std::memcpy(&point, &from->x, sizeof point);
        std::memcpy(points + 2 * i, &point, sizeof point);
        places &= ArePlaces(point);
        types[i] = static_cast<char>(from->type == typeUnknown ? '?' : from->type);
        codes[i] = codeText;
        values |= ValueBits(*from);
        if (++i == count) break;
        ++from;
        typesBehindFirst |= TypeBit(from->type);
        if (!code.IsSame(from->code)) {
            code = CVKMComparedCode(from->code);
            codeText = elements.CodeOf(*from);
            ++codeChanges;
        }
    }
    const uint32_t allTypes = typesBehindFirst | TypeBit(elements[0].type);
    line.severalCodes = codeChanges > 0 ? 1 : 0;
    line.beginsAgain = (typesBehindFirst & TypeBit('P')) != 0 ? 1 : 0;
    line.hasNoType = (allTypes & TypeBit(typeNone)) != 0 ? 1 : 0;
    line.hasNoPlace = (places[0] & places[1]) == 0 ? 1 : 0;
    line.hasValues = values != 0 ? 1 : 0;
    if (values != 0) CopyValues(elements, line);
}

}  // namespace

// Of what GetLayer returns.
int CVkmInput::LayerNameLength() const {
    if (!layerName.empty()) return static_cast<int>(layerName.size());
    const char* name = state.elementLayerText;
    return name[0] == '\0' ? 0 : name[1] == '\0' ? 1 : 2;
}

int CVkmInput::GetLine(VkmLine* line) {
    const CVKMLineElements& elements = state.lineElements;
    line->count = static_cast<int>(elements.Count());
    if (line->count > line->room) return 0;
    line->layerName = GetLayer(&line->layer);
    line->layerNameLength = LayerNameLength();
    line->fileLine = elements.Count() > 0 ? elements[0].fileLine : GetFileLine();
    FillElements(elements, *line);
    return 1;
}

void CVkmInput::GetTextRecord(VkmText* text) {
    const CVKMText& from = state.currentText;
    std::memcpy(&text->x, &from.x, 2 * sizeof(double));
    GetTextAttributes(&text->valueD, &text->valueF, &text->scaledH, &text->valueU);
    text->code = from.values.code;
    text->layerName = GetLayer(&text->layer);
    text->layerNameLength = LayerNameLength();
    text->fileLine = GetFileLine();
    text->text = from.text.Get();
    text->length = static_cast<int>(std::strlen(text->text));
}

}  // namespace vemrado
