#include "translations.h"

#include <algorithm>

namespace vemrado::tools {
const map::Translator& HostTranslator() {
    static const map::Translator translator(translationTables, map::HostLanguage());
    return translator;
}

std::string Translated(Message message) {
    return TranslatedText(message.english);
}

std::string Filled(Message message, std::initializer_list<std::string_view> values) {
    return map::FilledPattern(HostTranslator().Text(message.english), values);
}

size_t LettersOf(std::string_view text) {
    return static_cast<size_t>(std::ranges::count_if(
        text, [](char unit) { return (static_cast<unsigned char>(unit) & 0xC0) != 0x80; }));
}

std::string PaddedRight(std::string_view text, size_t letters) {
    return std::string(text).append(letters - std::min(letters, LettersOf(text)), ' ');
}

std::string PaddedLeft(std::string_view text, size_t letters) {
    return std::string(letters - std::min(letters, LettersOf(text)), ' ').append(text);
}

std::string TranslatedText(std::string_view english) {
    return std::string(HostTranslator().Text(english));
}

std::string TranslatedSentence(std::string_view english) {
    return HostTranslator().Sentence(english);
}

}  // namespace vemrado::tools
