// The user's wish to stop: an interrupt from the keyboard, or the stop of the progress window.

#pragma once

namespace vemrado::client {

// True once the user asked to stop. What was read until then is valid, and the output is partial.
bool StopRequested();

}  // namespace vemrado::client
