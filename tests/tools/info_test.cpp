// What vkm info counts.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "program_run.h"

namespace vemrado_test {
namespace {

constexpr const char* countedMap =
    "&V 1 0 0\n&R 0 0 0 0 2000 r\n&U 12\n&L P 10 20 K=1101 S=5\nL 11 21 K=1101\nK 12 22 K=99\nx S=-2\n&L Q 5 "
    "5\n"
    "&L\n&U 3\n&T 12 -22.5 'a' K=1018\n&T 1e-3 7 'b'\n&L C 0 0 K=\x1B[2J\nR 1 1\n&K\n";

TEST(Info, CountsByLayerAndKind) {
    const RunResult result = RunVkm({"info", "--json", "-"}, {.input = countedMap});
    EXPECT_EQ(result.exitCode, 0);
    const nlohmann::json expected = nlohmann::json::parse(R"([{
        "file": "standard input", "complete": true, "scale": 2000, "coordinates": "relative",
        "extents": {"minimum": [-22.5, 0], "maximum": [22, 12]}, "linesRead": 15,
        "total": {"lines": 4, "elements": 7, "texts": 2, "symbols": 2,
                  "types": {"C": 1, "K": 1, "L": 1, "P": 1, "R": 1, "other": 1, "none": 1}},
        "layers": [
          {"layer": 3, "lines": 1, "elements": 2, "texts": 2, "symbols": 0,
           "types": {"C": 1, "K": 0, "L": 0, "P": 0, "R": 1, "other": 0, "none": 0},
           "elementCodes": {"\u001b[2J": 1}, "symbolCodes": {}, "textCodes": {"1018": 1}},
          {"layer": 12, "lines": 3, "elements": 5, "texts": 0, "symbols": 2,
           "types": {"C": 0, "K": 1, "L": 1, "P": 1, "R": 0, "other": 1, "none": 1},
           "elementCodes": {"99": 1, "1101": 2}, "symbolCodes": {"-2": 1, "5": 1}, "textCodes": {}}]}])");
    EXPECT_EQ(nlohmann::json::parse(result.output), expected) << result.output;
}

TEST(Info, TableIsForPeople) {
    const RunResult result = RunVkm({"info", "-"}, {.input = countedMap});
    EXPECT_EQ(result.output, R"(standard input
  Map scale    1:2000
  Coordinates  relative to the offsets of the header
  Extents      x -22.5 to 22
               y 0 to 12
  Lines read   15
  Complete     yes

  Layer  Lines  Elements  C  K  L  P  R  other  Texts  Symbols
      3      1         2  1  0  0  0  1      0      2        0
     12      3         5  0  1  1  1  0      2      0        2
    all      4         7  1  1  1  1  1      2      2        2

Codes of line elements (K)
  layer 3:  .[2J (1)
  layer 12: 99 (1), 1101 (2)

Symbol codes (S)
  layer 12: -2 (1), 5 (1)

Codes of texts (K)
  layer 3:  1018 (1)
)");
}

}  // namespace
}  // namespace vemrado_test
