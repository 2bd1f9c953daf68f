// A map as a page for browsers: the page of the web folder with the map inside, packed.

#pragma once

#include <string>

#include "client/text_encoding.h"
#include "draw/canvas.h"

namespace vemrado::tools {

class Environment;

struct PageContent {
    std::string map;              // as FindOneInput gives it
    client::Encoding encoding{};  // of the map's texts
    std::string symbology;        // the directory that holds VKMSym; empty: that of the page
};

// Writes the page. False when the map is incomplete, which has been said. Throws Failure when this build has
// no page, or the map cannot be read, and what the sink throws.
bool WriteMapPage(const PageContent& content, const draw::ByteSink& sink, Environment& environment);

// The same into a file, which appears whole or not at all.
bool WriteMapPage(const PageContent& content, const std::string& pageFile, Environment& environment);

// The name of a map without the folders and the archive that it lies in.
std::string BaseName(const std::string& map);

}  // namespace vemrado::tools
