// The bytes of a map, which stand with the page: it has a number for each file that it offers.

#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vemrado::web {

// Reads from the page's file of a number; 0 at its end. Throws std::runtime_error when the page cannot.
size_t ReadPageFile(int file, double offset, void* destination, size_t count);

// While an object of this class lives, the module finds the page's file under a name, and its message boxes
// are collected. One at a time is open for new opens; files that are open go on reading.
class OfferedFile {
  public:
    OfferedFile(std::string name, int file, double length);
    OfferedFile(const OfferedFile&) = delete;
    OfferedFile& operator=(const OfferedFile&) = delete;
    ~OfferedFile();

    // What the module has said in boxes, UTF-8.
    const std::vector<std::string>& Boxes() const { return boxes; }

  private:
    static int OnBox(void* context, const char* text, unsigned int style);

    std::vector<std::string> boxes;
};

}  // namespace vemrado::web
