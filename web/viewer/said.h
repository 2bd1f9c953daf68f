// What went wrong, as the page says it.

#pragma once

#include <exception>
#include <string>

#include "client/text_encoding.h"
#include "map/translator.h"

namespace vemrado::web {

// A sentence in UTF-8 in the language of the page.
inline std::string Said(const std::string& english) {
    return map::TranslatorTo(map::HostLanguage()).Sentence(english);
}

inline std::string Said(const std::exception& error) {
    return Said(client::MessageToUtf8(error.what()));
}

}  // namespace vemrado::web
