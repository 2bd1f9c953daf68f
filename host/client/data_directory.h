// Where the symbology lies: the directory that holds VKMSym.

#pragma once

#include <string>

namespace vemrado::client {

// Makes the module read its symbology from a directory, in place of the registry. An empty name goes back to
// the registry.
void UseDataDirectory(const std::string& directory);

// The directory that holds VKMSym, when people may name that or VKMSym itself.
std::string DataDirectoryOf(const std::string& directory);

// The sample symbology that belongs to a program or library: installed in ../share/vemrado/symbology of its
// folder, or data/symbology of the source tree that it was built in. Empty when there is none.
std::string FindSampleSymbology(const std::string& programPath);

}  // namespace vemrado::client
