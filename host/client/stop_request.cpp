#include "client/stop_request.h"

#include "client/system.h"
#include "zrvDX320/zrvDX320.h"

namespace vemrado::client {

// A file without a progress window, such as a pipe, is stopped by the interrupt alone.
bool StopRequested() {
    return InterruptCaught() || InfoStopRequested() != 0;
}

}  // namespace vemrado::client
