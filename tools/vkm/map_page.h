// A map as a page for browsers: the page of the web folder with the map inside, packed.

#pragma once

#include <string>

namespace vemrado::tools {

// Whether a picture of this name is such a page.
bool IsMapPage(const std::string& fileName);

// Writes the page, whole or not at all. Throws Failure when the page is not installed, or a file cannot be
// read or written.
void WriteMapPage(const std::string& mapFile, const std::string& pageFile);

}  // namespace vemrado::tools
