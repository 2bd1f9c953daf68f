// The program's texts in the host's language: one table for help, messages and man page. English stands in
// the code and is the key.

#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "map/translator.h"
#include "translation_table.h"

namespace vemrado::tools {

// A text that stands in the code: one without translations does not compile.
struct Message {
    template <size_t N>
    consteval Message(const char (&text)[N]) : english(text, N - 1) {
        if (!IsTranslated(english)) throw "this text has no row in the table of translations";
    }
    consteval Message() = default;

    std::string_view english;
};

// Into the language of GetZrvCountry, by all tables.
const map::Translator& HostTranslator();

// The text in that language.
std::string Translated(Message message);

// The translated text with the values in the places marked {}, in order, or {1}, the second.
std::string Filled(Message message, std::initializer_list<std::string_view> values);

// Letters of a UTF-8 text, and the text with blanks behind it, or before it, up to so many.
size_t LettersOf(std::string_view text);
std::string PaddedRight(std::string_view text, size_t letters);
std::string PaddedLeft(std::string_view text, size_t letters);

// A text of any origin: as it is when the table does not have it.
std::string TranslatedText(std::string_view english);

// A sentence of the libraries below, with values in it; as it is when the table has nothing like it.
std::string TranslatedSentence(std::string_view english);

}  // namespace vemrado::tools
