// Everything that is wrong with one map.

#pragma once

#include "client/text_encoding.h"
#include "map/checked_lines.h"
#include "map/findings.h"
#include "map/known_codes.h"

namespace vemrado::map {

// The rules that need no more than a line of the file, in constant memory.
RuleSet FileRules();

struct CheckSettings {
    client::Encoding encoding = client::Encoding::windows1250;
    RuleSet rules = RuleSet().set();  // looked for
    KnownCodes codes;                 // of the symbology; none: codes are not checked
};

// Reads a map and gives its findings: those of the file in its order, as they are read, then those of the
// map. markSkipped: a byte order mark stood before what the source gives. What the source throws leaves it.
void CheckMap(ByteSource source, bool markSkipped, const CheckSettings& settings, FindingSink& sink);

}  // namespace vemrado::map
