#include "vkm/line_reader.h"

namespace vemrado {

CVKMLineReader::AnyLine CVKMLineReader::TakeAnyLine() {
    std::string_view text;
    bool hadLineFeed;
    const platform::ReadResult result = inputFile.ReadLine(lineLimit, text, hadLineFeed);
    if (result == platform::ReadResult::end) return {LineResult::end, {}};
    if (result == platform::ReadResult::error) return {LineResult::error, {}};
    bytesRead += static_cast<uint32_t>(text.size()) + (hadLineFeed ? 2 : 1);
    return {LineResult::line, CVKMTokenizer(text)};
}

}  // namespace vemrado
