#include "sheet_writer.h"

#include <limits>

#include "sheet.h"

namespace generate {

namespace {

// S-JTSK coordinates of the country's north-west corner in metres. y is counted westwards, x southwards.
constexpr int64_t cornerY = 745000;
constexpr int64_t cornerX = 1040000;

constexpr int64_t headerNumber = -1;
constexpr int64_t closingNumber = -2;
constexpr int linesInPlainSheet = 4000;

}  // namespace

MapWriter::MapWriter(const Options& wanted)
    : options(wanted),
      country(options.seed, options.scale),
      decimals(options.scale == 500 ? 3 : 2),
      grid(decimals == 3 ? 1000 : 100) {}

int64_t MapWriter::SheetLimit() const {
    if (options.plainLines) return std::numeric_limits<int32_t>::max();
    const int64_t size = country.LatticeSize();
    return size * size;
}

// Coordinates are always less the country's corner; in a relative file the sheet's own offsets are taken off
// too.
RecordWriter MapWriter::WriterOf(int64_t sheet) const {
    RecordWriter writer(options.form, decimals, options.seed, sheet);
    const int units = grid.UnitsPerMetre();
    const Origin origin = options.relative ? OriginOf(sheet) : Origin{0, 0};
    writer.SetOrigin((origin.y - cornerY) * units, (origin.x - cornerX) * units);
    return writer;
}

// A round place near the sheet's south-east corner; the first sheet's for header and closing record.
MapWriter::Origin MapWriter::OriginOf(int64_t sheet) const {
    const Cell cell = options.plainLines || sheet < 0 ? Cell{} : CellOfSheet(sheet);
    const auto east = static_cast<int64_t>((cell.column + 1) * country.SheetWidth());
    const auto south = static_cast<int64_t>(cell.row * country.SheetHeight());
    return {(cornerY - east) / 100 * 100, (cornerX + south) / 100 * 100};
}

std::string MapWriter::OffsetFields(Origin origin) const {
    return "S-JTSK " + std::to_string(origin.y) + ".00 " + std::to_string(origin.x) + ".00";
}

std::string MapWriter::Header() const {
    RecordWriter writer = WriterOf(headerNumber);
    writer.Comment("Made-up map of vkm-generate, seed " + std::to_string(options.seed));
    writer.Comment("No place, street or number in it is real.");
    writer.Record('V', OffsetFields(OriginOf(headerNumber)));
    writer.Record('R', "1 1 0 0 " + std::to_string(options.scale) + (options.relative ? " R" : " A"));
    writer.Record('D', "1.1.2026 S=1");
    if (options.plainLines) writer.Record('U', "4");  // they bound nothing
    return writer.Take();
}

std::string MapWriter::Sheet(int64_t sheet) const {
    return options.plainLines ? PlainLines(sheet) : MapSheet(sheet);
}

std::string MapWriter::MapSheet(int64_t sheet) const {
    const Cell cell = CellOfSheet(sheet);
    const Drawing drawing = DrawSheet(country, names, cell, options.scale, grid);
    RecordWriter writer = WriterOf(sheet);
    writer.EndHeader();
    writer.Comment("Sheet " + std::to_string(cell.column + 1) + "-" + std::to_string(cell.row + 1) + " " +
                   DistrictName(country, names, cell, country.IsSouthOfStream(cell)));
    if (options.relative) writer.Record('V', OffsetFields(OriginOf(sheet)));
    writer.Record('G', std::to_string(sheet + 1) + " 1");
    for (int layer = 1; layer <= layerCount; ++layer) {
        const DrawnLayer& content = drawing.At(layer);
        if (content.elements.empty() && content.texts.empty()) continue;
        writer.SetLayer(layer);
        for (const DrawnElement& element : content.elements) writer.Element(element);
        for (const DrawnText& text : content.texts) writer.Text(text);
        if (layer == layerBuildings) writer.Record('S', std::to_string(sheet + 1));
    }
    return writer.Take();
}

std::string MapWriter::PlainLines(int64_t sheet) const {
    RecordWriter writer = WriterOf(sheet);
    Random random(options.seed, Subject::plainLines, sheet);
    const int units = grid.UnitsPerMetre();
    GridPoint at{random.Below(2000 * units), -random.Below(2000 * units)};
    DrawnElement element;
    element.keys.code = codeParcel;
    for (int line = 0; line < linesInPlainSheet; ++line) {
        element.at = at;
        element.type = 'P';
        element.startsLine = true;
        writer.Element(element);
        const GridPoint before = at;
        at.east += random.Below(40 * units) - 20 * units;
        at.north += random.Below(40 * units) - 20 * units;
        if (at == before) ++at.east;  // no line without a length
        element.at = at;
        element.type = 'L';
        element.startsLine = false;
        writer.Element(element);
    }
    return writer.Take();
}

std::string MapWriter::Closing() const {
    RecordWriter writer = WriterOf(closingNumber);
    writer.Record('K', "");
    return writer.Take();
}

}  // namespace generate
