// What changed between two states of a map, for the page.

#include <array>

#include "byte_source.h"
#include "json.h"
#include "map/diff.h"
#include "queries.h"

namespace vemrado::web {
namespace {

constexpr size_t mostPoints = 5000;  // of a change's outline

struct NoFindings : map::FindingSink {
    void Take(const map::Finding&) override {}
};

class ChangeList : public map::ChangeSink {
  public:
    ChangeList(client::Encoding encoding, size_t mostKept) : decoder(encoding), most(mostKept) {
        json.Begin('[');
    }

    void Take(const map::Change& change) override {
        ++counts[static_cast<size_t>(change.kind)];
        if (kept++ >= most) return;
        json.Begin('{').Member("kind", std::string(map::changeNames[static_cast<size_t>(change.kind)]));
        json.Member("thing", std::string(map::thingNames[static_cast<size_t>(change.thing)]));
        json.Member("layer", change.layer);
        if (change.old) PutSide("old", *change.old);
        if (change.now) PutSide("now", *change.now);
        json.End('}');
    }

    std::string Finished() {
        Json answer;
        json.End(']');
        answer.Begin('{');
        for (size_t i = 0; i < counts.size(); ++i) answer.Member(map::changeNames[i], counts[i]);
        return answer.Key("changes").Literal(json.Text()).End('}').Text();
    }

  private:
    void PutSide(const char* name, const map::ChangeSide& side) {
        json.Key(name).Begin('{').Member("fileLine", side.fileLine);
        json.Member("code", decoder.Decode(side.code)).Member("words", decoder.Decode(side.words));
        if (side.sign != nullptr) json.Member("symbol", side.sign->symbol);
        json.Key("outline").Begin('[');
        // The picture has north up.
        for (size_t i = 0; i < std::min(side.points.size(), mostPoints); ++i) {
            json.Number(-side.points[i].y).Number(-side.points[i].x);
        }
        json.End(']').End('}');
    }

    client::TextDecoder decoder;
    size_t most;
    size_t kept = 0;
    std::array<size_t, map::changeNames.size()> counts{};
    Json json;
};

void ReadState(int file, client::Encoding encoding, map::MapState& state) {
    NoFindings findings;
    map::CheckedReading(BytesOf(file).source, encoding, findings, &state).Run();
}

}  // namespace

std::string Compare(const Viewer& viewer, int oldFile, client::Encoding encoding, size_t most) {
    map::StateValues values;
    map::MapState old(values);
    map::MapState now(values);
    ReadState(oldFile, encoding, old);
    for (const auto& sheet : viewer.Sheets()) ReadState(sheet->File(), sheet->Encoding(), now);
    ChangeList changes(encoding, most);
    map::CompareMaps(old, now, values, map::usualTolerance, changes);
    return changes.Finished();
}

}  // namespace vemrado::web
