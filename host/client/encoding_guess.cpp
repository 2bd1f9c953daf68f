// Which encoding texts are in, judged by their bytes.

#include "client/system.h"
#include "client/text_encoding.h"

namespace vemrado::client {
namespace {

// Of the languages of cadastral maps; capitals have codes of their own.
constexpr std::u32string_view frequentLetters = U"áčďéěíňóřšťúůýžÁČĎÉĚÍŇÓŘŠŤÚŮÝŽ";
constexpr std::u32string_view otherLetters = U"äöüßÄÖÜĺľŕôĹĽŔÔąćęłńśźżĄĆĘŁŃŚŹŻőűŐŰ";
constexpr std::u32string_view usualSigns = U"§°²³„“”–…€\u00A0";

int WeightOf(char32_t character) {
    if (frequentLetters.find(character) != std::u32string_view::npos) return 4;
    if (otherLetters.find(character) != std::u32string_view::npos) return 2;
    return usualSigns.find(character) != std::u32string_view::npos ? 1 : -4;
}

std::string NameOf(Encoding encoding) {
    return std::string(encodingNames[static_cast<size_t>(encoding)]);
}

}  // namespace

void EncodingEvidence::Add(std::string_view text) {
    while (!text.empty()) {
        const auto byte = static_cast<unsigned char>(text.front());
        size_t length = 1;
        if (byte >= 0x80) {
            const size_t sequence = Utf8SequenceLength(text);
            length = sequence > 1 ? sequence : 1;
            ++(sequence > 1 ? utf8Sequences : otherBytes);
            for (size_t i = 0; i < length; ++i) ++counts[static_cast<unsigned char>(text[i]) - 0x80U];
        }
        text.remove_prefix(length);
    }
}

int64_t EncodingEvidence::Sense(Encoding encoding) const {
    if (encoding == Encoding::utf8) {
        constexpr int64_t weight = 8;  // chance rarely makes a sequence
        return weight * static_cast<int64_t>(utf8Sequences) - weight * static_cast<int64_t>(otherBytes);
    }
    int64_t sense = 0;
    for (size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] == 0) continue;
        sense +=
            int64_t{counts[i]} * WeightOf(CharacterOfByte(encoding, static_cast<unsigned char>(0x80 + i)));
    }
    return sense;
}

std::optional<Encoding> EncodingEvidence::Guess() const {
    if (utf8Sequences + otherBytes == 0) return std::nullopt;
    Encoding best = Encoding::windows1250;
    for (const Encoding other : {Encoding::cp852, Encoding::iso8859_2, Encoding::utf8}) {
        if (Sense(other) > Sense(best)) best = other;
    }
    return best;
}

std::optional<Encoding> EncodingEvidence::BetterThan(Encoding taken) const {
    const std::optional<Encoding> guess = Guess();
    if (!guess || *guess == taken || Sense(*guess) <= 0 || 2 * Sense(taken) > Sense(*guess))
        return std::nullopt;
    return guess;
}

std::string EncodingAdvice(uint64_t replacedBytes, const EncodingEvidence& evidence, Encoding taken,
                           const std::string& option) {
    const std::optional<Encoding> better = evidence.BetterThan(taken);
    if (replacedBytes == 0 && !better) return {};
    std::string text;
    if (replacedBytes > 0) {
        text = std::to_string(replacedBytes) + " bytes are no characters of " + NameOf(taken) +
               " and were replaced by U+FFFD; ";
    }
    if (!better) return text + "try " + option + "auto";
    return text + "the texts look like " + NameOf(*better) + ": try " + option + NameOf(*better);
}

}  // namespace vemrado::client
