// The sample symbology and small maps, in memory.

#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tables/symbology_files.h"

namespace vemrado_test {

inline std::string FileText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Lines and texts of every kind, long enough for a progress window, with a line of more elements than the
// module makes room for at first and a code that does not fit beside the others.
inline std::string RichMap() {
    std::string map = "&V x 600000 1000000\n&R 1 2 3 4 500 r\n&D S=1\n&U 7\n";
    for (int i = 0; i < 45; ++i) {
        const std::string n = std::to_string(i);
        map += "&L P 10." + n + " 20 K=21700 S=" + std::to_string(301 + i % 19) + "\nC 11 21 R=3.5 U=50\n" +
               "L 12 1e2 K=1029 S=" + std::to_string(101 + i % 10) + "\n&T 5 " + n + " \"Text " + n +
               "\" K=1 H=2 D=3\n H=9 F=8\n";
    }
    map += "&L P 1 2 K=" + std::string(300, '1') + "\n";
    for (int i = 0; i < 250; ++i) map += "L 3 4 K=21\n";
    return map + "&K\n";
}

class SampleFiles : public SymbologyFiles {
  public:
    SampleFiles() {
        for (const auto& entry : std::filesystem::directory_iterator(VEMRADO_DATA "/symbology/VKMSym"))
            (*this)[entry.path().filename().string()] = FileText(entry.path());
        files["a map of many lines.vkm"] = RichMap();
        files["odd.vkm"] = FileText(VEMRADO_DATA "/sample-unknown-records.vkm");
    }
};

}  // namespace vemrado_test
