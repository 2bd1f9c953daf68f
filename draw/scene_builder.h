// Makes the scene of a file from the reading of its elements.

#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

#include "map/reading.h"
#include "scene.h"

namespace vemrado::draw {

using map::AngleUnit;

struct SceneOptions {
    std::set<int> layers;    // empty: every layer
    std::optional<Box> box;  // what lies outside is left out
    bool symbols = true;
    AngleUnit angleUnit = AngleUnit::gon;
    client::Encoding encoding = client::Encoding::windows1250;
};

// A text that has no fault, black.
PlacedText PlacedTextOf(const map::MapText& text);

class SceneBuilder {
  public:
    // The importer lives longer than the builder, and is opened with the symbology before the first element.
    SceneBuilder(map::Importer& importer, SceneOptions options);

    // Adds the element that the importer has just read.
    void Take(map::ElementKind kind);

    // The scene of all elements taken. The builder is used up.
    Scene Finish();

    // The scene of the elements taken so far; strokes are in the order of the file.
    const Scene& SoFar() const { return scene; }

    // The style of a symbol code; false when the symbology has no drawing for the code.
    bool SymbolStyleOf(int code, uint32_t& style);

    int AxisOrientation() const { return importer.AxisOrientation(); }

    // Knows of bytes of texts and codes that were no characters of the encoding.
    const client::TextDecoder& Decoder() const { return reading.Decoder(); }

  private:
    void Begin();
    void AddPlaces(map::ElementKind kind);
    void AddLine(const map::MapLine& line);
    void AddStroke(Layer& layer, std::span<const Point> points, const map::Code& code);
    void AddSymbol(Layer& layer, const map::PlacedSymbol& symbol);
    void AddText(const map::MapText& text);
    Layer* LayerOf(int number, std::string_view name);
    uint32_t LineStyleOf(const map::Code& code);

    map::Importer& importer;
    SceneOptions options;
    map::Reading reading;
    Scene scene;
    bool begun = false;
    std::optional<Box> keep;  // symbols and texts outside reach nothing of the box
    std::unordered_map<int, uint32_t> lineStyleOfCode;
    std::unordered_map<int, uint32_t> symbolStyleOfCode;
};

}  // namespace vemrado::draw
