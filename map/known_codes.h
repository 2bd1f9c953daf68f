// The codes that a symbology has.

#pragma once

#include <vector>

namespace vemrado::map {

struct KnownCodes {
    std::vector<int> lines;    // K values, ascending; empty: not known
    std::vector<int> symbols;  // S values, the same
};

// Loads the symbology that the framework or the registry names; its problems are shown in a message box.
KnownCodes LoadKnownCodes();

}  // namespace vemrado::map
