// The details of the importer: what the file and the symbology say beyond the interface of a drawing host.

#include <algorithm>

#include "interface/vkm_input.h"

namespace vemrado {

namespace {

const char* EmptyWhenNull(const char* text) {
    return text == nullptr ? "" : text;
}

// The entry at a place, or null.
template <class Entry>
const Entry* EntryAt(const Array<Entry>& entries, int place) {
    const size_t index = static_cast<uint32_t>(place);  // far beyond every count when the place is negative
    return index < entries.size() ? &entries[index] : nullptr;
}

}  // namespace

const char* CVkmInput::GetElementCode(int index) {
    return state.lineElements.CodeOf(ElementAt(index));
}

int CVkmInput::GetElementSymbolCode(int index) {
    return ElementAt(index).symbolCode;
}

void CVkmInput::GetElementValues(int index, double* valueM, double* valueR, double* valueU) {
    const CVKMLineElement& element = ElementAt(index);
    *valueM = element.valueM;
    *valueR = element.valueR;
    *valueU = element.valueU;
}

int CVkmInput::GetTextCode() {
    return state.currentText.values.code;
}

int CVkmInput::GetRelativeCoordinates() {
    return state.relativeCoordinates;
}

int CVkmInput::IsComplete() {
    return state.currentRecord == 'K' ? 1 : 0;
}

int CVkmInput::GetLineCount() {
    return reader.LineCount();
}

int CVkmInput::CopyElements(int first, int count, VkmElement* elements) {
    const auto last =
        static_cast<int>(std::min<int64_t>(GetElementCount(), int64_t{first} + std::max(count, 0)));
    if (first < 0 || first >= last) return 0;
    for (int i = first; i < last; ++i, ++elements) {
        const CVKMLineElement& element = state.lineElements[static_cast<size_t>(i)];
        elements->x = element.x;
        elements->y = element.y;
        elements->valueM = element.valueM;
        elements->valueR = element.valueR;
        elements->valueU = element.valueU;
        elements->code = state.lineElements.CodeOf(element);
        elements->type = static_cast<int>(element.type);
        elements->symbolCode = element.symbolCode;
        elements->fileLine = element.fileLine;
    }
    return last - first;
}

int CVkmInput::GetFileLine() {
    return state.lineElements.Count() > 0 ? state.lineElements[0].fileLine : state.currentText.fileLine;
}

int CVkmInput::GetElementFileLine(int index) {
    return ElementAt(index).fileLine;
}

const char* CVkmInput::GetHeaderName() {
    return state.header.name.c_str();
}

const char* CVkmInput::GetHeaderDate() {
    return state.header.date.c_str();
}

const char* CVkmInput::GetHeaderComments() {
    return state.header.comments.c_str();
}

void CVkmInput::GetOrigin(double* first, double* second) {
    *first = state.originY;
    *second = state.originX;
}

void CVkmInput::SetDataDirectory(const char* directory) {
    try {
        tables.SetDataDirectory(EmptyWhenNull(directory));
    } catch (const std::bad_alloc&) {
        outOfMemory = true;  // the old one stays
    }
}

void CVkmInput::LoadSymbology(int withSymbols) {
    tables.Load(withSymbols != 0 ? 1 : 0);
}

int CVkmInput::GetLineCodeCount() {
    return static_cast<int>(tables.LineCodes().Entries().size());
}

int CVkmInput::GetLineCode(int place, int* code, int* lineType, const char** name) {
    const auto* entry = EntryAt(tables.LineCodes().Entries(), place);
    if (entry == nullptr) return 0;
    *code = entry->code;
    *lineType = entry->value.lineType;
    *name = tables.LineCodes().NameOf(entry->value);
    return 1;
}

const char* CVkmInput::GetLineCodeName(int code) {
    const auto* mapping = tables.LineCodes().Find(code);
    return mapping == nullptr ? "" : tables.LineCodes().NameOf(*mapping);
}

int CVkmInput::GetLineStyle(int code, unsigned int* colour, double* width, int* dashPattern) {
    const CLineDefinition* definition = tables.FindLineType(code);
    if (definition == nullptr) return 0;
    *colour = definition->colour;
    *width = definition->width;
    // The most negative style has no number that fits.
    *dashPattern = definition->lineStyle < 0 ? -std::max(definition->lineStyle, -INT32_MAX) : 0;
    return 1;
}

int CVkmInput::GetLineDashes(int code, const double** lengths) {
    const CLineDefinition* definition = tables.FindLineType(code);
    const auto* pattern = definition == nullptr ? nullptr : tables.FindDashPattern(definition->lineStyle);
    if (pattern == nullptr || pattern->empty()) return 0;
    *lengths = pattern->data();
    return static_cast<int>(std::min(pattern->size(), CKokesTables::longestPattern));
}

int CVkmInput::GetLinePattern(int code) {
    uint32_t colour = 0;
    int32_t pattern = 0;
    tables.GetLineStyle(code, colour, pattern);
    return pattern;
}

int CVkmInput::GetSymbolCodeCount() {
    return static_cast<int>(tables.Symbols().Entries().size());
}

int CVkmInput::GetSymbolCode(int place, int* code, int* symbol, const char** name) {
    const auto* entry = EntryAt(tables.Symbols().Entries(), place);
    if (entry == nullptr) return 0;
    *code = entry->code;
    *symbol = entry->value.kokesCode;
    *name = tables.Symbols().NameOf(entry->value);
    return 1;
}

const char* CVkmInput::GetSymbolCodeName(int code) {
    const auto* symbol = tables.Symbols().Find(code);
    return symbol == nullptr ? "" : tables.Symbols().NameOf(*symbol);
}

int CVkmInput::GetSymbolDrawing(int code, const VkmSymbolPoint** points) {
    const CPointPattern* pattern = tables.Symbols().GetDrawing(code);
    if (pattern == nullptr) return -1;
    try {
        drawing.clear();
        double x = 0;
        double y = 0;
        // Each element is the way from the one before.
        for (const PatternElement* element = pattern->Elements(); element->code != '@'; ++element) {
            x += element->x;
            y += element->y;
            drawing.push_back({x, y, element->code});
        }
    } catch (const std::bad_alloc&) {
        return -1;
    }
    if (!drawing.empty()) *points = drawing.data();
    return static_cast<int>(drawing.size());
}

int CVkmInput::GetSymbolPattern(int code) {
    return code == 0 ? 0 : tables.GetSymbolPattern(code);
}

}  // namespace vemrado
