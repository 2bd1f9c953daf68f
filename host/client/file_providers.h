// Several file providers in the one place that the framework has for them.

#pragma once

#include "framework/framework.h"

namespace vemrado::client {

// Asks the provider for every file that the module opens, after those that were added before it; a second
// time does nothing. The provider must outlive the process's last import.
void AddFileProvider(const FrameworkFileProvider& provider);

}  // namespace vemrado::client
