// The module beside the checked reading of the same bytes, both in one form. They must agree on any bytes.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vemrado_test {

// Everything that a host can see of a file, one line of text for each element and one for the settings, as
// the checked reading has it. A finding that does not lie in the file adds a line more.
std::vector<std::string> ReadChecked(const std::string& bytes, int orientation,
                                     size_t mostPerRead = SIZE_MAX);

// The same of the module, through the exported interface. name must be a file that it can open.
std::vector<std::string> ReadByModule(const char* name, int orientation);

// One element in the form of both readings; numbers as their bits.
struct SeenVertex {
    double x, y, z;
    int type;
    std::string code;
    double m, r, u;
    int symbol;
};
std::string Describe(const SeenVertex& vertex);
std::string DescribeText(double x, double y, double z, const std::string& text, int d, int f, double h,
                         double u, int code);
std::string DescribeLayer(int number, const std::string& name);
std::string DescribeEnd(double scale, int relative, int complete);

}  // namespace vemrado_test
