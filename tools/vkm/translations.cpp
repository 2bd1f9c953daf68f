#include "translations.h"

#include <algorithm>
#include <optional>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "zrv320/zrv320.h"

namespace vemrado::tools {
namespace {

using Texts = std::unordered_map<std::string_view, std::string_view>;

Texts TextsOf(std::string_view Translation::*language) {
    Texts texts;
    for (const std::span<const Translation> table : translationTables) {
        for (const Translation& row : table) texts.emplace(row.english, row.*language);
    }
    return texts;
}

// Empty in English.
const Texts& HostTexts() {
    static const Texts texts = [] {
        switch (GetZrvCountry()) {
            case 0:
                return TextsOf(&Translation::czech);
            case 2:
                return TextsOf(&Translation::german);
            default:
                return Texts();
        }
    }();
    return texts;
}

std::string_view Found(std::string_view english) {
    const auto found = HostTexts().find(english);
    return found == HostTexts().end() ? english : found->second;
}

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

std::string FilledText(std::string_view pattern, std::span<const std::string_view> values) {
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

// None when nothing in the table is like it.
std::optional<std::string> TranslatedByPattern(std::string_view sentence) {
    constexpr size_t fewestLetters = 6;          // a pattern of fewer would fit anything
    const Texts::value_type* longest = nullptr;  // says most of the sentence
    std::vector<std::string_view> values;
    for (const Texts::value_type& row : HostTexts()) {
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
    if (longest == nullptr) return std::nullopt;
    std::vector<std::string> parts;
    for (const std::string_view value : values) parts.push_back(TranslatedSentence(value));
    return FilledText(longest->second, std::vector<std::string_view>(parts.begin(), parts.end()));
}

}  // namespace

std::string Translated(Message message) {
    return std::string(Found(message.english));
}

std::string Filled(Message message, std::initializer_list<std::string_view> values) {
    return FilledText(Found(message.english), values);
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
    return std::string(Found(english));
}

std::string TranslatedSentence(std::string_view english) {
    if (HostTexts().empty()) return std::string(english);
    const std::string_view whole = Found(english);
    if (whole != english) return std::string(whole);
    if (const auto translated = TranslatedByPattern(english)) return *translated;
    const size_t colon = english.find(": ");
    if (colon == std::string_view::npos) return std::string(english);
    return TranslatedText(english.substr(0, colon)) + ": " + TranslatedSentence(english.substr(colon + 2));
}

}  // namespace vemrado::tools
