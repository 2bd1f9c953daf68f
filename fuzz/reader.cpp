// The reader against the checked reading of the same bytes.

#include <string>

#include "map/diff.h"
#include "map/map_check.h"
#include "memory_files.h"
#include "targets.h"
#include "vkm/readings.h"

namespace vemrado_fuzz {
namespace {

namespace client = vemrado::client;
namespace map = vemrado::map;

void CompareReadings(std::string_view bytes) {
    Script script(bytes);
    const int orientation = 1 << (script.Byte() % 9);
    const std::string file(script.Rest());
    vemrado_test::MemoryFiles files;
    files["map.vkm"] = file;
    Require(
        vemrado_test::ReadByModule("map.vkm", orientation) == vemrado_test::ReadChecked(file, orientation),
        "both readings see the same");
}

map::ByteSource SourceOf(std::string_view bytes) {
    return [bytes](char* to, size_t count) mutable {
        count = bytes.copy(to, count);
        bytes.remove_prefix(count);
        return count;
    };
}

struct Counted : map::FindingSink, map::ChangeSink {
    void Take(const map::Finding& finding) override {
        letters += map::MessageOf(finding, finding.field).size();
    }
    void Take(const map::Change&) override { ++changes; }
    size_t letters = 0;
    size_t changes = 0;
};

// The rules of the map take any bytes, and a map is equal to itself.
void CheckAndCompare(std::string_view bytes) {
    Counted counted;
    map::CheckSettings settings;
    settings.codes = {{21800, 21900}, {1, 2}};
    map::CheckMap(SourceOf(bytes), false, settings, counted);
    map::StateValues values;
    map::MapState one(values);
    map::MapState again(values);
    for (map::MapState* state : {&one, &again})
        map::CheckedReading(SourceOf(bytes), client::Encoding::windows1250, counted, state).Run();
    map::CompareMaps(one, again, values, 1, counted);
    Require(counted.changes == 0, "a map has not changed from itself");
}

void ReadCheckAndCompare(std::string_view bytes) {
    CompareReadings(bytes);
    Script script(bytes);
    script.Byte();
    CheckAndCompare(script.Rest());
}

const Target target("reader", ReadCheckAndCompare);

}  // namespace
}  // namespace vemrado_fuzz
