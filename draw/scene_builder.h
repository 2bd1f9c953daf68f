// Makes the scene of a file from its elements.

#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

#include "client/importer.h"
#include "client/symbology_index.h"
#include "client/text_encoding.h"
#include "scene.h"

namespace vemrado::draw {

enum class AngleUnit : uint8_t { gon, degree, radian };

struct SceneOptions {
    std::set<int> layers;    // empty: every layer
    std::optional<Box> box;  // what lies outside is left out
    bool symbols = true;
    AngleUnit angleUnit = AngleUnit::gon;
    client::Encoding encoding = client::Encoding::windows1250;
};

class SceneBuilder {
  public:
    // Importer and index live longer than the builder.
    SceneBuilder(client::Importer& importer, const client::SymbologyIndex& index, SceneOptions options);

    // Adds the element that the importer has just read.
    void Take(client::ElementKind kind);

    // The scene of all elements taken. The builder is used up.
    Scene Finish();

    // Knows of bytes that were no characters of the encoding.
    const client::TextDecoder& Decoder() const { return decoder; }

  private:
    void Begin();
    void AddLine(const client::LineElement& line);
    void AddStep(Layer& layer, const client::ElementVertex& vertex, bool begins, uint32_t style);
    void EndStroke(Layer& layer);
    void AddSymbol(Layer& layer, int position, const client::ElementVertex& vertex, uint32_t style);
    void AddText(const client::TextElement& text);
    Layer* LayerOf(int number, const std::string& name);
    uint32_t LineStyleOf(int position, const std::string& code);
    bool SymbolStyleOf(int position, int code, uint32_t& style);
    double Degrees(double angle) const;

    client::Importer& importer;
    const client::SymbologyIndex& index;
    SceneOptions options;
    client::TextDecoder decoder;
    Scene scene;
    bool begun = false;
    std::optional<Box> keep;  // symbols and texts outside reach nothing of the box
    std::unordered_map<int, uint32_t> lineStyleOfCode;
    std::unordered_map<int, uint32_t> symbolStyleOfCode;
    // The stroke in progress: the points of its layer from this one on.
    size_t strokeBegin = 0;
    uint32_t strokeStyle = 0;
};

}  // namespace vemrado::draw
