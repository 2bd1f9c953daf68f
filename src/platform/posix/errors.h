#pragma once

namespace vemrado::platform {

// Another program keeps readers out. Beside the system's own numbers, which are positive.
constexpr int lockedError = -1;

}  // namespace vemrado::platform
