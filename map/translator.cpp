#include "map/translator.h"

#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "map/file_translations.h"
#include "map/finding_translations.h"
#include "zrv320/zrv320.h"

namespace vemrado::map {
namespace {

// The place of a value at the start of the text: {}, or {1}, the second.
struct Slot {
    size_t length = 0;  // 0: there is none
    std::optional<size_t> number;
};

Slot SlotAt(std::string_view text) {
    if (text.starts_with("{}")) return {2, std::nullopt};
    if (text.size() > 2 && text[0] == '{' && text[1] >= '0' && text[1] <= '9' && text[2] == '}')
        return {3, static_cast<size_t>(text[1] - '0')};
    return {};
}

// The values of the places {} of a pattern, each as short as can be and the last to the end.
std::optional<std::vector<std::string_view>> Match(std::string_view pattern, std::string_view text) {
    std::vector<std::string_view> values;
    size_t slot = pattern.find("{}");
    if (slot == std::string_view::npos || !text.starts_with(pattern.substr(0, slot))) return std::nullopt;
    text.remove_prefix(slot);
    while (slot != std::string_view::npos) {
        pattern.remove_prefix(slot + 2);
        slot = pattern.find("{}");
        const std::string_view between = pattern.substr(0, slot);
        const size_t end = slot != std::string_view::npos ? text.find(between)
                           : text.ends_with(between)      ? text.size() - between.size()
                                                          : std::string_view::npos;
        if (end == std::string_view::npos || end == 0) return std::nullopt;
        values.push_back(text.substr(0, end));
        text.remove_prefix(end + between.size());
    }
    return values;
}

}  // namespace

Language HostLanguage() {
    switch (GetZrvCountry()) {
        case 0:
            return Language::czech;
        case 2:
            return Language::german;
        default:
            return Language::english;
    }
}

std::string FilledPattern(std::string_view pattern, std::span<const std::string_view> values) {
    std::string text;
    size_t next = 0;
    while (!pattern.empty()) {
        const Slot slot = SlotAt(pattern);
        const size_t value = slot.number.value_or(next);
        if (slot.length == 0 || value >= values.size()) {
            text += pattern.front();
            pattern.remove_prefix(1);
            continue;
        }
        if (!slot.number) ++next;
        text += values[value];
        pattern.remove_prefix(slot.length);
    }
    return text;
}

Translator::Translator(std::span<const TranslationTable> tables, Language language) {
    if (language == Language::english) return;
    for (const TranslationTable table : tables) {
        for (const Translation& row : table)
            texts.emplace(row.english, language == Language::czech ? row.czech : row.german);
    }
}

std::string_view Translator::Text(std::string_view english) const {
    const auto found = texts.find(english);
    return found == texts.end() ? english : found->second;
}

std::string Translator::Sentence(std::string_view english) const {
    if (texts.empty()) return std::string(english);
    const std::string_view whole = Text(english);
    if (whole != english) return std::string(whole);
    if (std::string translated = ByPattern(english); !translated.empty()) return translated;
    const size_t colon = english.find(": ");
    if (colon == std::string_view::npos) return std::string(english);
    return std::string(Text(english.substr(0, colon))) + ": " + Sentence(english.substr(colon + 2));
}

// Empty when nothing in the tables is like it.
std::string Translator::ByPattern(std::string_view sentence) const {
    constexpr size_t fewestLetters = 6;          // a pattern of fewer would fit anything
    const Texts::value_type* longest = nullptr;  // says most of the sentence
    std::vector<std::string_view> values;
    for (const Texts::value_type& row : texts) {
        const std::string_view english = row.first;
        if (english.size() < fewestLetters || english.starts_with("{}: ")) continue;
        if (longest != nullptr && english.size() <= longest->first.size()) continue;
        auto found = Match(english, sentence);
        if (!found) continue;
        // What ends in a colon is the name of a file or an option, and not a part of the sentence.
        if (english.starts_with("{}") && found->front().find(": ") != std::string_view::npos) continue;
        longest = &row;
        values = std::move(*found);
    }
    if (longest == nullptr) return {};
    std::vector<std::string> parts;
    for (const std::string_view value : values) parts.push_back(Sentence(value));
    return FilledPattern(longest->second, std::vector<std::string_view>(parts.begin(), parts.end()));
}

const Translator& TranslatorTo(Language language) {
    static constexpr std::array<TranslationTable, 2> tables = {findingTranslations, fileTranslations};
    static const std::array<Translator, 3> translators = {Translator(tables, Language::czech),
                                                          Translator(tables, Language::english),
                                                          Translator(tables, Language::german)};
    return translators[static_cast<size_t>(language)];
}

}  // namespace vemrado::map
