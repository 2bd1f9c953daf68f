#include "support/host_calls.h"

namespace vemrado {

constinit platform::ReentrantLock hostCallLock;

}  // namespace vemrado
