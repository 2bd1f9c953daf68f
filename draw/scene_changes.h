// What changed between two states of a map, in colour over the scene of the new one, which turns grey.

#pragma once

#include <array>
#include <cstdint>

#include "client/text_encoding.h"
#include "map/diff.h"
#include "scene_builder.h"

namespace vemrado::draw {

class SceneChanges : public map::ChangeSink {
  public:
    // The builder has taken the new state, with the same options; it lives longer and is not used up before
    // the last change.
    SceneChanges(SceneBuilder& builder, const SceneOptions& options, client::Encoding oldEncoding);

    void Take(const map::Change& change) override;

    // Turns the finished scene grey and lays the changes over it, in a layer of each colour.
    void AddTo(Scene& scene);

  private:
    // In the order in which they lie on each other, the lowest first.
    enum Colour : uint8_t { removed, changed, added, colourCount };

    void AddLine(Colour colour, const map::ChangeSide& side);
    void AddSymbol(Colour colour, const map::ChangeSide& side);
    void AddText(Colour colour, const map::ChangeSide& side, client::TextDecoder& decoder);
    Point OnMap(Point inFile);

    SceneBuilder& builder;
    const SceneOptions& options;
    map::Turn turn;
    map::Rotation rotation;
    client::TextDecoder oldDecoder;
    client::TextDecoder newDecoder;
    Box whole;  // of every point of the changes
    std::array<Layer, colourCount> layers;
};

}  // namespace vemrado::draw
