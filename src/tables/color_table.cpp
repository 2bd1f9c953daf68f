#include "tables/color_table.h"

#include "messages/message_table.h"
#include "platform/ascii_case.h"
#include "support/numbers.h"
#include "tables/indexed_insertion.h"

namespace vemrado {

namespace {

constexpr size_t colourCountWhenRead = 256;
constexpr size_t widthCountWhenRead = 64;

uint32_t NextColourPart(Fields& values) {
    return static_cast<uint32_t>(ParseInteger(values.Next(","))) & 0xFF;
}

void ReadValue(Fields& values, uint32_t& colour) {
    colour = NextColourPart(values);
    colour |= NextColourPart(values) << 8;
    colour |= NextColourPart(values) << 16;
}

void ReadValue(Fields& values, CLineWidth& width) {
    width.intValue = ParseInteger(values.Next(","));
    width.width = ParseReal(values.Next(","));
}

}  // namespace

int CKokesColorTable::ReadColorFile(const String& filePath) {
    path = filePath;
    if (!file.Open(path)) return 0;
    const TableFileCloser closer(file);
    colors.resize(colourCountWhenRead);
    widths.resize(widthCountWhenRead);
    if (ReadColorSection("white", Kind::colors) == 0) return 0;
    return ReadColorSection("width", Kind::widths);
}

int CKokesColorTable::ReadColorSection(std::string_view section, Kind kind) {
    const String header = String("[").append(section).append("]");
    file.Rewind();
    std::string_view line;
    do {
        if (!file.NextLine(line)) {
            if (!file.ReadFailed()) {
                messages.AddFileMessage(path.c_str(),
                                        kind == Kind::colors ? msgNoColorTable : msgNoWidthTable);
            }
            return 0;
        }
    } while (!platform::SameWithoutCase(line, header));
    if (kind == Kind::colors) {
        ReadEntries(colors);
    } else {
        ReadEntries(widths);
    }
    return 1;
}

template <class Value>
void CKokesColorTable::ReadEntries(Array<Value>& values) {
    IndexedInsertion<Value> insertion(values);
    std::string_view line;
    while (file.NextLine(line) && line.find('[') == std::string_view::npos) {
        if (line.empty() || line.front() == ';') continue;
        Fields fields(line);
        const std::string_view index = fields.Next("=");
        if (index.empty()) continue;
        Value value{};
        ReadValue(fields, value);
        insertion.Add(ParseInteger(index), value);
    }
    insertion.Finish();
}

void CKokesColorTable::Clear() {
    colors.clear();
    widths.clear();
}

uint32_t CKokesColorTable::GetColor(int32_t number) const {
    return number >= 0 && static_cast<size_t>(number) < colors.size() ? colors[static_cast<size_t>(number)]
                                                                      : 0;
}

double CKokesColorTable::GetWidth(int32_t number) const {
    return number >= 0 && static_cast<size_t>(number) < widths.size()
               ? widths[static_cast<size_t>(number)].width
               : 0.0;
}

}  // namespace vemrado
