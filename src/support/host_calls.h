// Calls into the host's drawing and info-window libraries run one at a time, whichever importers make them:
// nothing is known of how those libraries share their state.

#pragma once

#include "platform/lock.h"

namespace vemrado {

// A host's library may come back into the module on the same thread, as when it delivers window messages.
extern platform::ReentrantLock hostCallLock;

template <class Function, class... Arguments>
auto CallHost(Function function, Arguments... arguments) {
    const platform::Holding holding(hostCallLock);
    return function(arguments...);
}

}  // namespace vemrado
