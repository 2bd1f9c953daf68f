// Changes between two states of a map as people and programs read them.

#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "feature_file.h"
#include "map/diff.h"
#include "standard_output.h"

namespace vemrado::tools {

class DiffReport : public map::ChangeSink {
  public:
    DiffReport(StandardOutput& standardOutput, bool asJson, client::Encoding oldEncoding,
               client::Encoding newEncoding)
        : output(standardOutput), json(asJson), oldDecoder(oldEncoding), newDecoder(newEncoding) {}

    void Take(const map::Change& change) override;
    // The totals, for people.
    void WriteTotals();
    // All changes go there too, in the layers lines, texts and symbols.
    void AddTo(FeatureFile& file);
    bool Any() const { return any; }

  private:
    void WriteJson(const map::Change& change);
    void WriteText(const map::Change& change);
    void WriteFeature(const map::Change& change);

    StandardOutput& output;
    bool json;
    bool any = false;
    FeatureFile* features = nullptr;
    client::TextDecoder oldDecoder;
    client::TextDecoder newDecoder;
    // By change and thing.
    std::array<std::array<uint64_t, map::thingNames.size()>, map::changeNames.size()> counts{};
};

}  // namespace vemrado::tools
