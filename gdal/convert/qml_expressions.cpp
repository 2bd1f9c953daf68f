#include "qml_expressions.h"

#include <cpl_string.h>

#include <cstdint>
#include <map>

#include "map/placement.h"
#include "map/reading.h"
#include "styles.h"

namespace vemrado::gdal {

namespace {

constexpr int keys = 10;  // D and F values with a meaning of their own lie below

// CASE of a field by its value: the values below keys that give something else than every other one does.
template <typename Give>
std::string CaseOf(const char* field, Give give) {
    const std::string usual = give(keys);
    std::map<std::string, std::string> values;
    for (int value = 0; value < keys; ++value) {
        const std::string given = give(value);
        if (given == usual) continue;
        std::string& list = values[given];
        list += (list.empty() ? "" : ",") + std::to_string(value);
    }
    std::string expression = "CASE";
    for (const auto& [given, list] : values)
        expression += std::string(" WHEN \"") + field + "\" IN (" + list + ") THEN '" + given + "'";
    return expression + " ELSE '" + usual + "' END";
}

}  // namespace

std::string ClockwiseAngle(int axisOrientation) {
    const map::Turn turn = map::TurnOf(axisOrientation);
    return CPLString().Printf("%g %s 0.9 * \"rotation\"", 0.0 - turn.east, turn.mirrored ? "+" : "-");
}

std::string SymbolSize(const std::string& sizeOfScale1) {
    return CPLString().Printf(
        "CASE WHEN \"scale\" > 0 AND \"scale\" <= %g AND \"rotation\" IS NOT NULL THEN %s * \"scale\" ELSE 0 "
        "END",
        map::largestScale, sizeOfScale1.c_str());
}

std::string PenColour(const Symbology& symbology) {
    std::map<uint32_t, std::string> codes;
    for (const auto& [code, named] : symbology.pens) {
        std::string& list = codes[named.pen.colour];
        list += (list.empty() ? "" : ",") + std::to_string(code);
    }
    if (codes.empty()) return "'#000000'";
    std::string expression = "CASE";
    for (const auto& [colour, list] : codes)
        expression += " WHEN \"pen_code\" IN (" + list + ") THEN '" + ColourText(colour) + "'";
    return expression + " ELSE '#000000' END";
}

std::string TextIsDrawable(const std::string& groundPerMillimetre) {
    return CPLString().Printf("\"height\" > 0 AND \"height\" <= %g * %s AND \"rotation\" IS NOT NULL",
                              map::tallestText, groundPerMillimetre.c_str());
}

std::string OnGround(const std::string& millimetres) {
    return millimetres + " * if(\"map_scale\" > 0, \"map_scale\", 1000) / 1000";
}

std::string TextAcross() {
    return CaseOf("d_value", [](int valueD) {
        constexpr const char* names[] = {"Left", "Center", "Right"};
        return std::string(names[static_cast<int>(map::AnchorOf(valueD).across)]);
    });
}

std::string TextUpright(bool mirrored) {
    return CaseOf("d_value", [mirrored](int valueD) {
        constexpr const char* names[] = {"Base", "Half", "Cap"};
        return std::string(names[static_cast<int>(map::AnchorOf(valueD, mirrored).upright)]);
    });
}

std::string TextFamily() {
    return CaseOf("f_value", [](int valueF) { return std::string(FontFamily(map::FaceOf(valueF))); });
}

std::string TextStyleName() {
    return CaseOf("f_value", [](int valueF) {
        const map::Face face = map::FaceOf(valueF);
        const std::string slanted = face.serif ? "Italic" : "Oblique";
        if (face.bold) return face.italic ? "Bold " + slanted : std::string("Bold");
        return face.italic ? slanted : std::string("Book");
    });
}

}  // namespace vemrado::gdal
