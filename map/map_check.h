// Everything that is wrong with one map.

#pragma once

#include "client/text_encoding.h"
#include "map/checked_lines.h"
#include "map/findings.h"

namespace vemrado::map {

struct CheckSettings {
    client::Encoding encoding = client::Encoding::windows1250;
    RuleSet rules = RuleSet().set();  // looked for
};

// Reads a map and gives its findings: those of the file in its order, as they are read, then those of the
// map. markSkipped: a byte order mark stood before what the source gives. What the source throws leaves it.
void CheckMap(ByteSource source, bool markSkipped, const CheckSettings& settings, FindingSink& sink);

}  // namespace vemrado::map
