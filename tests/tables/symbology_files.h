// The symbology tables in memory, loaded by the module as from disk.

#pragma once

#include <string>

#include "framework/framework.h"
#include "memory_files.h"
#include "zrv320/zrv320.h"

namespace vemrado_test {

// While it lives, the module's symbology directory holds the files that are set here.
class SymbologyFiles {
  public:
    SymbologyFiles() {
        FrameworkSetDataDirectory("T:");
        ZrvClearPatterns();
    }
    ~SymbologyFiles() { FrameworkSetDataDirectory(nullptr); }

    static std::string Path(const std::string& name) { return "T:\\VKMSym\\" + name; }
    std::string& operator[](const std::string& name) { return files[Path(name)]; }

    MemoryFiles files;
    MessageBoxes boxes;
};

// A registered pattern as text: its name and its records, "L_2: 1.5,0,1 0.5,0,0 @"; empty for number 0.
inline std::string PatternText(const char* name, const PatternElement* element) {
    if (element == nullptr) return name == nullptr ? "" : "?";
    std::string text = std::string(name) + ":";
    char record[96];
    for (; element->code != '@'; ++element) {
        std::snprintf(record, sizeof record, " %.10g,%.10g,%d", element->x, element->y, element->code);
        text += record;
    }
    return text + " @";
}
inline std::string LinePatternText(int number) {
    return PatternText(ZrvLinePatternName(number), ZrvLinePattern(number));
}
inline std::string PointPatternText(int number) {
    return PatternText(ZrvPointPatternName(number), ZrvPointPattern(number));
}

}  // namespace vemrado_test
