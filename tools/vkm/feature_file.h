// Findings or changes as features that a GIS opens over the map.

#pragma once

#include <span>
#include <string>
#include <vector>

#include "map/geometry.h"

namespace vemrado::tools {

// A colour for each value of the field by which features are styled.
struct StyledValue {
    const char* value;
    const char* colour;  // "red,green,blue"
};

class FeatureFile {
  public:
    // The output's extension tells the format. Throws Failure when no such output can be written here.
    explicit FeatureFile(const std::string& output);

    // A layer of points, or of lines; a number for Add.
    size_t AddLayer(const std::string& name, bool lines, const char* styledField,
                    std::span<const StyledValue> values);
    // Points as orientation 1 has them; properties are JSON members.
    void Add(size_t layer, std::span<const map::Point> points, const std::string& properties);
    // Throws Failure.
    void Write();

  private:
    struct Layer {
        std::string name;
        std::string features;
        std::string qml;
    };

    std::string output;
    std::vector<Layer> layers;
};

}  // namespace vemrado::tools
