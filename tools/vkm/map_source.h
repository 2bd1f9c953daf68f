// A map file that is read byte by byte, with its progress.

#pragma once

#include <optional>
#include <string>

#include "client/map_bytes.h"
#include "map/checked_lines.h"
#include "progress_bar.h"

namespace vemrado::tools {

// The user asked to stop.
struct Stopped {};

class MapSource {
  public:
    // Throws what MapBytes throws.
    explicit MapSource(const std::string& name);

    bool MarkSkipped() const { return bytes.MarkSkipped(); }
    // Reads the file; throws Stopped too. This object must outlive it.
    map::ByteSource Bytes();

  private:
    static constexpr uint64_t shortFile = 1 << 16;  // is read at once

    client::MapBytes bytes;
    std::optional<ProgressBar> bar;
    uint64_t done = 0;
};

}  // namespace vemrado::tools
