// English sentences in another language, by tables of translations.

#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "map/translation.h"

namespace vemrado::map {

// That of GetZrvCountry.
Language HostLanguage();

// The pattern with the values in the places marked {}, in order, or {1}, the second.
std::string FilledPattern(std::string_view pattern, std::span<const std::string_view> values);

// May be used by several threads at once.
class Translator {
  public:
    // The tables must outlive it. In English everything stays as it is.
    Translator(std::span<const TranslationTable> tables, Language language);

    // A text of any origin: as it is when the tables do not have it.
    std::string_view Text(std::string_view english) const;

    // A sentence with values in it that a table has as a pattern, such as "cannot be opened: {}"; also behind
    // names and other things that end in a colon. As it is when there is no such pattern.
    std::string Sentence(std::string_view english) const;

  private:
    using Texts = std::unordered_map<std::string_view, std::string_view>;

    std::string ByPattern(std::string_view sentence) const;

    Texts texts;
};

// Of what map/ and the host's libraries say: findings, and what is wrong with files.
const Translator& TranslatorTo(Language language);

}  // namespace vemrado::map
