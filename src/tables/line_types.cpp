// The line types and dash patterns of CKokesTables, from "WKOKES.CAR".

#include <algorithm>
#include <cstdio>

#include "support/host_calls.h"
#include "support/numbers.h"
#include "tables/indexed_insertion.h"
#include "tables/kokes_tables.h"
#include "zrv320/zrv320.h"

namespace vemrado {

namespace {

constexpr size_t patternCountWhenRead = 128;

// False at the end of the line.
bool NextField(Fields& fields, std::string_view& field) {
    field = fields.Next();
    return !field.empty();
}

// A pattern's stretches, drawn and gap in turn, and the end record. elements has room for one more than the
// longest pattern.
void ListStretches(const Array<double>& lengths, PatternElement* elements) {
    const size_t count = std::min(lengths.size(), CKokesTables::longestPattern);
    for (size_t i = 0; i < count; ++i) {
        elements[i] = {lengths[i], 0.0, static_cast<uint8_t>(i % 2 == 0 ? 1 : 0)};
    }
    elements[count] = {0.0, 0.0, '@'};
}

}  // namespace

void ParseLineDefinition(CLineDefinition& definition, Fields& fields) {
    std::string_view first;
    std::string_view second;
    if (ReadNumberPair(fields, first, second) == 0) return;
    if (!first.empty()) definition.colourNumber = ParseInteger(first);
    if (!second.empty()) definition.width = ParseReal(second);
    std::string_view field;
    if (!NextField(fields, field)) return;
    definition.lineStyle = ParseInteger(field);
    if (ReadNumberPair(fields, first, second) == 0) return;  // without a use
    if (!NextField(fields, field)) return;
    definition.value5 = ParseInteger(field);
    if (!NextField(fields, field)) return;
    definition.value6 = ParseInteger(field);
    if (!NextField(fields, field)) return;
    definition.value7 = ParseReal(field);
    if (!NextField(fields, field)) return;
    definition.value8 = ParseReal(field);
}

int CKokesTables::ReadLineTypes(const String& filePath) {
    lineTypePath = filePath;
    if (!lineTypeFile.Open(lineTypePath)) return 0;
    const TableFileCloser closer(lineTypeFile);
    patterns.clear();
    patterns.resize(patternCountWhenRead);
    lineDefinitions.Prepare();
    std::string_view line;
    while (lineTypeFile.NextLine(line)) {
        if (line.empty() || line.front() == '*') continue;
        Fields fields(line);
        const int32_t number = ParseInteger(fields.Next());
        if (number > 0) StoreDefinition(number, fields);
        if (number < 0 && number >= -largestTableIndex) StorePattern(-number, fields);
    }
    return 1;
}

void CKokesTables::StoreDefinition(int32_t number, Fields& fields) {
    CLineDefinition definition;
    definition.code = number;
    ParseLineDefinition(definition, fields);
    lineDefinitions.Set(number, definition);
}

void CKokesTables::StorePattern(int32_t number, Fields& fields) {
    PoolPointer<DashPattern> pattern = MakeInPool<DashPattern>();
    if (pattern == nullptr) throw std::bad_alloc();
    for (std::string_view field; NextField(fields, field);) pattern->push_back(ParseReal(field));
    const size_t place = static_cast<size_t>(number);
    if (place >= patterns.size()) patterns.resize(place + 1);
    patterns[place] = std::move(pattern);
}

void CKokesTables::ResolveLineColors() {
    for (auto& entry : lineDefinitions.Entries())
        entry.value.colour = colorTable.GetColor(entry.value.colourNumber);
}

const CKokesTables::DashPattern* CKokesTables::FindDashPattern(int32_t lineStyle) const {
    const int64_t number = -static_cast<int64_t>(lineStyle);
    if (number <= 0 || number >= static_cast<int64_t>(patterns.size())) return nullptr;
    return patterns[static_cast<size_t>(number)].get();
}

const CLineDefinition* CKokesTables::FindLineType(int32_t vkmCode) const {
    const int32_t lineType = codeMap.FindLineType(vkmCode);
    return lineType == 0 ? nullptr : lineDefinitions.Find(lineType);
}

int CKokesTables::GetLineStyle(int32_t vkmCode, uint32_t& colour, int32_t& pattern) {
    colour = 0;
    pattern = 0;
    const CLineDefinition* found = FindLineType(vkmCode);
    if (found == nullptr) return 0;
    CLineDefinition& definition = const_cast<CLineDefinition&>(*found);
    colour = definition.colour;
    if (definition.pattern == 0) {
        if (const DashPattern* lengths = FindDashPattern(definition.lineStyle)) {
            PatternElement elements[longestPattern + 1];
            ListStretches(*lengths, elements);
            char name[32];
            std::snprintf(name, sizeof name, "L_%d", -definition.lineStyle);
            definition.pattern = CallHost(setextpattline, elements, name);  // 0 is asked for again next time
        }
    }
    pattern = definition.pattern;
    return 1;
}

}  // namespace vemrado
