#include "diagnostics.h"

#include <algorithm>

namespace vemrado::gdal {

namespace {

// Values in full make some messages endless.
std::string Sentence(std::string text) {
    constexpr size_t longest = 300;
    text.resize(std::min(text.size(), text.find_last_not_of(" \r\n") + 1));
    if (text.size() <= longest) return text;
    size_t end = longest;
    while (end > 0 && (text[end] & 0xC0) == 0x80) --end;  // not inside a character
    return text.substr(0, end) + " ...";
}

}  // namespace

void CPL_STDCALL Diagnostics::OnError(CPLErr severity, CPLErrorNum, const char* text) {
    Diagnostics& self = *static_cast<Diagnostics*>(CPLGetErrorHandlerUserData());
    if (severity < CE_Warning || (severity == CE_Warning && self.writing && self.warningsLeft == 0)) return;
    const std::string sentence = Sentence(text);
    if (severity >= CE_Failure && self.failure.empty()) self.failure = sentence;
    if (severity == CE_Warning && self.told.insert(sentence).second) self.Warn(sentence);
}

void Diagnostics::Warn(const std::string& sentence) {
    if (writing && warningsLeft > 0 && --warningsLeft == 0) {
        warn("further warnings are left out");
    } else {
        warn(sentence);
    }
}

}  // namespace vemrado::gdal
