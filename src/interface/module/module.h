// What happens when the module is loaded and unloaded, the same on every system.

#pragma once

namespace vemrado {

// Registers the module with the host's framework. False when the framework refuses; the load must fail then.
bool AttachModule(void* moduleHandle);
void DetachModule();
// Whether the framework has taken the module.
bool ModuleAttached();

}  // namespace vemrado
