// The states of a map that a command compares.

#pragma once

#include <string>

#include "map/map_state.h"
#include "program.h"

namespace vemrado::tools {

// Reads a state. False when it is broken, which has been said; what was read stands in it.
bool ReadMapState(const std::string& name, client::Encoding encoding, map::MapState& state,
                  Environment& environment);

}  // namespace vemrado::tools
