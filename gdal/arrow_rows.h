// Records of a layer as the rows of an Arrow array, without features in between.

#pragma once

#include <ogr_feature.h>

#include <string_view>
#include <vector>

#include "elements.h"
#include "map/arrow_column.h"

namespace vemrado::gdal {

class ArrowRows {
  public:
    // The columns are those of OGRLayer's own streams: the identifier when wanted, then the fields and the
    // geometry that are not ignored.
    ArrowRows(OGRFeatureDefn& definition, bool withIdentifier);

    // A row begins with its identifier and ends with EndRow; what was not written in between is null.
    void Identifier(GIntBig value);
    template <typename Record>
    void Add(const Batch& batch, const Record& record);
    void EndRow();

    int64_t Rows() const { return rows.Rows(); }
    // Long rows are handed out before their number is reached: a column's offsets have 32 bits.
    bool Full() const { return weight > size_t{1} << 28; }

    // Moves the rows into an array of the consumer's.
    void Export(ArrowArray* array) { rows.Export(array); }

    // The fields by their places; nothing is written to those that are ignored.
    void Integer(int field, int value) { Write(field, int32_t{value}); }
    void Long(int field, GIntBig value) { Write(field, int64_t{value}); }
    void Real(int field, double value) { Write(field, value); }
    void String(int field, const char* value) {
        const std::string_view text(value);
        weight += text.size();
        Write(field, text);
    }
    template <typename Value>
    void Integers(int field, size_t count, Value value) {
        WriteList(field, count, value);
    }
    template <typename Value>
    void Reals(int field, size_t count, Value value) {
        WriteList(field, count, value);
    }
    template <typename Value>
    void Strings(int field, size_t count, Value value) {
        WriteList(field, count, [&](size_t i) {
            const std::string_view text(value(i));
            weight += text.size();
            return text;
        });
    }
    template <typename Value>
    void Letters(int field, size_t count, Value value) {
        if (!Wanted(field)) return;
        weight += count;
        letters.clear();
        for (size_t i = 0; i < count; ++i) letters.push_back(value(i));
        Column(field).Items().AddLetters(letters);
        Column(field).EndList();
    }

  private:
    static constexpr int none = -1;

    bool Wanted(int field) const { return columnOfField[static_cast<size_t>(field)] != none; }
    map::ArrowColumn& Column(int field) {
        return rows.Field(static_cast<size_t>(columnOfField[static_cast<size_t>(field)]));
    }
    template <typename Value>
    void Write(int field, Value value) {
        if (Wanted(field)) Column(field).Add(value);
    }
    template <typename Value>
    void WriteList(int field, size_t count, Value value) {
        if (!Wanted(field)) return;
        weight += count;
        map::ArrowColumn& items = Column(field).Items();
        for (size_t i = 0; i < count; ++i) items.Add(value(i));
        Column(field).EndList();
    }

    bool withIdentifier;
    int geometryColumn = none;
    std::vector<int> columnOfField;
    size_t columns;
    map::ArrowColumn rows;
    size_t weight = 0;  // bytes of texts and geometries, and entries of lists
    std::vector<char> letters;
    std::vector<char> geometry;
};

}  // namespace vemrado::gdal
