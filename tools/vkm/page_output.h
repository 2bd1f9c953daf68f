// A page for the browser in place of a picture: when people ask for one, and what goes into it.

#pragma once

#include <CLI/CLI.hpp>
#include <string_view>
#include <vector>

#include "common_options.h"
#include "inputs.h"
#include "map_page.h"
#include "picture.h"

namespace vemrado::tools {

inline constexpr std::string_view pageFormat = "html";

// By the format, or by the ending of the file's name.
bool WantsPage(const PictureOptions& options);

// What of a map goes into a page. False when the map's start cannot be read, which has been said.
bool ChooseContent(PageContent& content, const std::string& map, const EncodingChoice& encoding,
                   const CLI::App& command, Environment& environment);

// Makes the page that the command was asked for and gives the exit code. Throws Failure, also for options of
// the command that do not apply to a page.
int MakePage(const CLI::App& command, const PictureOptions& picture, const EncodingChoice& encoding,
             const std::vector<Input>& inputs, Environment& environment);

}  // namespace vemrado::tools
