// Whole layers of a map as Arrow columns: the tables lines, points, texts and parcels with the fields of
// docs/gis.md, and their geometry as GeoArrow with interleaved coordinates.

#pragma once

#include <cstdint>
#include <string>

#include "map/arrow_column.h"
#include "map/parcels.h"
#include "map/reading.h"

namespace vemrado::map {

enum class Table : uint8_t { lines, points, texts, parcels };

// Gives the rows of a table with lines: visit(code, strokes), where strokes are those that follow each other
// with one code. Not split, a line with strokes is one row with its first code.
template <typename Visit>
void ForEachLineRow(const MapLine& line, bool splitByCode, Visit visit) {
    if (!splitByCode) {
        size_t first = 0;
        while (first + 1 < line.codes.size() && *line.codes[first] == '\0') ++first;
        if (!line.wholeStrokes.empty()) visit(line.CodeAt(first), line.wholeStrokes);
        return;
    }
    for (size_t begin = 0; begin < line.strokes.size();) {
        size_t end = begin + 1;
        while (end < line.strokes.size() && line.strokes[end].code.text == line.strokes[begin].code.text)
            ++end;
        visit(line.strokes[begin].code, line.strokes.subspan(begin, end - begin));
        begin = end;
    }
}

// Makes the rows of one table. Elements of every kind are taken; those that are not in the table are counted
// all the same, for the identifiers of lines.
class Columns {
  public:
    // The reference system is an authority's code, "EPSG:5514", or PROJJSON; empty: none.
    Columns(Table columnsTable, bool split, const std::string& crs);

    const ColumnType& Type() const { return type; }

    void Take(const MapLine& line);
    void Take(const MapText& text);
    void Take(const Parcel& parcel);

    int64_t Rows() const { return rows.Rows(); }
    // Points and bytes in the rows, by which a batch of long lines is bounded.
    size_t Weight() const { return weight; }

    // Moves the rows into a batch.
    void Export(ArrowArray* batch);

  private:
    void AddLineRow(const MapLine& line, const Code& code, std::span<const Stroke> strokes);
    void AddPointRows(const MapLine& line);
    void AddPointRow(const MapLine& line, size_t element);
    void FindRowsOfElements(const MapLine& line);

    Table table;
    bool splitByCode;
    ColumnType type;
    ArrowColumn rows;
    size_t weight = 0;
    int64_t identifier = 0;             // of the last row
    int64_t lineIdentifier = 0;         // of the last row of lines
    std::vector<int64_t> rowOfElement;  // of lines, by element of the line; 0: it lies on none
};

}  // namespace vemrado::map
