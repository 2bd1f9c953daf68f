// The reader against the checked reading of the same bytes.

#include <string>

#include "memory_files.h"
#include "targets.h"
#include "vkm/readings.h"

namespace vemrado_fuzz {
namespace {

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

const Target target("reader", CompareReadings);

}  // namespace
}  // namespace vemrado_fuzz
