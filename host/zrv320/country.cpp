// The host's language.

#include <cstdlib>
#include <string_view>

#include "zrv320/zrv320.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace {

enum Country { czech = 0, english = 1, german = 2 };

std::string_view Environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? std::string_view(value) : std::string_view();
}

// From a locale name such as cs_CZ.UTF-8.
Country CountryOfLocale(std::string_view locale) {
    const std::string_view language = locale.substr(0, locale.find_first_of("_.@"));
    return language == "cs" ? czech : language == "de" ? german : english;
}

Country SystemCountry() {
#if defined(_WIN32)
    const LANGID language = PRIMARYLANGID(GetUserDefaultUILanguage());
    return language == LANG_CZECH ? czech : language == LANG_GERMAN ? german : english;
#else
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const std::string_view value = Environment(name);
        if (!value.empty()) return CountryOfLocale(value);
    }
    return english;
#endif
}

}  // namespace

int GetZrvCountry(void) {
    // A country's number, or a language as in a locale name.
    const std::string_view choice = Environment("VEMRADO_COUNTRY");
    if (choice.empty()) return SystemCountry();
    if (choice.front() >= '0' && choice.front() <= '9')
        return static_cast<int>(std::strtol(choice.data(), nullptr, 10));
    return CountryOfLocale(choice);
}
