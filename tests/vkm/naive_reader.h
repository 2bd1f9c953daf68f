// A second reading of VKM files, written for plainness: whole file in memory, one character at a time, zero
// characters written into a copy of each line, numbers by the C library. The module must agree with it on any
// bytes.

#pragma once

#include <string>
#include <vector>

namespace vemrado_test {

// Everything that a host can see of a file, one line of text for each element and a last one for the
// settings.
std::vector<std::string> ReadNaively(const std::string& bytes, int orientation);

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
