// The symbology tables read a second time, in the plainest way: standard containers, copies of strings, the
// whole of a file at once. Slow, and written from the description of the files alone.

#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace vemrado_test {

struct NaiveShapes {
    struct Part {
        int kind;
        std::vector<std::pair<int, int>> points;
    };
    using Drawing = std::vector<Part>;

    std::vector<Drawing> drawings;
    int height = 0;
};
NaiveShapes NaiveShapeFile(const std::string& bytes);

class NaiveTables {
  public:
    // Files by name, without a directory; all four tables must be there.
    explicit NaiveTables(const std::map<std::string, std::string>& files);

    struct LineStyle {
        int result = 0;
        uint32_t colour = 0;
        std::string pattern;  // as PatternText gives it
    };
    LineStyle Style(int vkmCode) const;
    std::string Symbol(int vkmCode) const;

    std::vector<uint32_t> colors;
    std::vector<double> widths;
    std::map<int, int> lineCodes;
    std::map<int, int> symbolCodes;
    std::string missing;  // the sections that are missing, by letter: c, w, L, S

  private:
    struct Definition {
        int colour = 0;
        int style = 1;
    };
    struct Reference {
        int file = 0;
        int number = 0;
    };
    void ReadColors(const std::string& text);
    void ReadLineTypes(const std::string& text);
    void ReadSymbols(const std::string& text);

    std::map<int, std::vector<double>> patterns;
    std::map<int, Definition> definitions;
    std::map<int, Reference> references;
    std::vector<std::string> shapeNames;
    std::map<std::string, std::string> shapeFiles;
};

}  // namespace vemrado_test
