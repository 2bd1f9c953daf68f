#include "vkm/tokenizer.h"

#include <algorithm>

namespace vemrado {

CVKMTokenizer CVKMTokenizer::Looked(CVKMTokenizer line) {
    const auto left = static_cast<size_t>(line.end - line.rest);
    size_t seen = std::min(left, scannedCharacters);
    uint64_t fields = ScanLine(line.rest).fields & LowBits(seen);
    if (left > seen) {
        // The length of a field at the end of what was seen.
        seen -= static_cast<size_t>(__builtin_clzll(~(fields << (64 - scannedCharacters))));
        fields &= LowBits(seen);
    }
    line.window = line.rest;
    line.rest += seen;
    line.edges = EdgesOf(fields);
    return line;
}

std::pair<Field, CVKMTokenizer> CVKMTokenizer::FieldOfRest(CVKMTokenizer line) {
    const auto isBlank = [](char c) { return Is(c, blankCharacter); };
    const char* start = std::find_if_not(line.rest, line.end, isBlank);
    const char* stop = std::find_if(start, line.end, isBlank);
    line.rest = stop;
    return {start == stop ? Field() : Field(start, static_cast<size_t>(stop - start)), Looked(line)};
}

}  // namespace vemrado
