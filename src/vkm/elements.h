// The two records that carry an element's data.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

#include "support/containers.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vemrado {

// Type of a line element that is none of the known letters.
enum : uint32_t { typeNone = 0, typeUnknown = 1 };

// A line element's code. Codes are a few digits; what is longer stands in the list of long codes of its line,
// so that elements are plain values.
struct CVKMCode {
    static constexpr size_t mostCharacters = 15;

    char text[mostCharacters + 1] = {};
    int32_t longCode = -1;  // index in the line's long codes; -1: the code is text

    // False for a longer value. platform::searchSlack characters from its start must be readable.
    bool Set(std::string_view value) {
        if (value.size() > mostCharacters) [[unlikely]]
            return false;
        std::memcpy(text, value.data(), sizeof text);
        text[value.size()] = '\0';
        longCode = -1;
        return true;
    }
};

// A code that others are compared with: the next element's is the same nearly always.
class CVKMComparedCode {
  public:
    CVKMComparedCode() = default;
    // The code stays where it stands. A long one is the same as none.
    explicit CVKMComparedCode(const CVKMCode& code) { Set(code); }
#if defined(__SSE2__)
    bool IsSame(const CVKMCode& code) const {
        const __m128i others = _mm_loadu_si128(reinterpret_cast<const __m128i*>(code.text));
        const auto same = static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi8(text, others)));
        return (~same & significant) == 0 && code.longCode < 0;
    }

  private:
    void Set(const CVKMCode& code) {
        text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(code.text));
        const auto ends =
            static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi8(text, _mm_setzero_si128())));
        significant = code.longCode < 0 ? ends ^ (ends - 1) : never;
    }

    static constexpr unsigned int never = 1U << CVKMCode::mostCharacters << 1;
    __m128i text = _mm_setzero_si128();
    unsigned int significant = never;  // bits of the characters up to the terminating zero
#else
    bool IsSame(const CVKMCode& code) const {
        return text != nullptr && code.longCode < 0 && std::strcmp(text, code.text) == 0;
    }

  private:
    void Set(const CVKMCode& code) {
        text = code.longCode < 0 ? code.text : nullptr;
    }

    const char* text = nullptr;
#endif
};

// One element of a line.
struct CVKMLineElement {
    double x = 0;
    double y = 0;
    double z = 0;  // never set from the file
    uint32_t type = typeNone;
    CVKMCode code;           // K, as text
    double valueM = 1.0;     // M
    double valueR = 0;       // R
    int32_t symbolCode = 0;  // S; 0: no symbol
    int32_t fileLine = 0;    // line of the file on which it begins, from 1
    double valueU = 0;       // U
};
static_assert(std::is_trivially_copyable_v<CVKMLineElement>);
inline constexpr CVKMLineElement defaultLineElement;

// The elements of one line, and behind them the element being read: it becomes the line's next element where
// it stands.
class CVKMLineElements {
  public:
    static constexpr size_t growthStep = 128;
    // Room that is kept from line to line; a longer line's is given back with its elements.
    static constexpr size_t keptElements = 4096;

    // Default elements that no line has given yet.
    CVKMLineElements() : elements(growthStep + 1), first(elements.data()), working(first + growthStep) {}
    CVKMLineElements(const CVKMLineElements&) = delete;
    CVKMLineElements& operator=(const CVKMLineElements&) = delete;

    size_t Count() const { return count; }
    const CVKMLineElement& operator[](size_t index) const { return first[index]; }
    // The code of one of the elements, zero-terminated.
    const char* CodeOf(const CVKMLineElement& element) const {
        const int32_t index = element.code.longCode;
        return index < 0 ? element.code.text : longCodes[static_cast<size_t>(index)].c_str();
    }

    // The element being read. Its values are left over from earlier until it is reset.
    CVKMLineElement& Working() { return *working; }
    // platform::searchSlack characters from the value's start must be readable.
    void SetWorkingCode(std::string_view value) {
        if (!working->code.Set(value)) [[unlikely]]
            SetLongCode(value);
    }

    // Where the element after the one being read will stand, or with none pending where the one being read
    // stands; null while there is no room.
    CVKMLineElement* PlaceOfNext(bool pending) {
        CVKMLineElement* const place = working + (pending ? 1 : 0);
        return place <= &elements.back() ? place : nullptr;
    }

    // Makes the element being read the line's last one.
    void Append() {
        if (working == &elements.back()) [[unlikely]]
            Grow();
        ++count;
        ++working;
        working->code.longCode = -1;
    }

    // Makes the element at the place of the next the one being read, and with pending the one read so far the
    // line's last one.
    void TakeNext(bool pending) {
        const size_t step = pending ? 1 : 0;
        count += step;
        working += step;
    }

    // Removes every element but the one being read.
    void Clear() {
        first = working;
        count = 0;
        if (first >= elements.data() + growthStep || !longCodes.empty()) [[unlikely]]
            MoveWorkingToStart();
    }

  private:
    void SetLongCode(std::string_view value);
    void Grow();
    void MoveWorkingToStart();

    Array<CVKMLineElement> elements;
    CVKMLineElement* first;    // the line's first element
    CVKMLineElement* working;  // behind its last
    size_t count = 0;
    Array<String> longCodes;
};

// The characters of a text. A copy takes over only those that are used.
class CVKMCharacters {
  public:
    static constexpr size_t mostCharacters = 255;

    CVKMCharacters() = default;
    CVKMCharacters(const CVKMCharacters& other) { *this = other; }
    CVKMCharacters& operator=(const CVKMCharacters& other) {
        if (this != &other) Set({other.characters, other.length});
        return *this;
    }

    // A longer text is cut. 16 characters from the text's end must be readable.
    void Set(std::string_view text) {
        length = text.size() < mostCharacters ? text.size() : mostCharacters;
        for (size_t i = 0; i < length; i += 16) std::memcpy(characters + i, text.data() + i, 16);
        characters[length] = '\0';
    }
    // Zero-terminated.
    const char* Get() const { return characters; }

  private:
    size_t length = 0;
    char characters[mostCharacters + 1] = {};
};

// What the key fields of a text say.
struct CVKMTextValues {
    int32_t valueD = 2;
    int32_t valueF = 1;
    double valueH = 1.7;
    int32_t code = 0;  // K
    double valueU = 0;
};

// One text.
struct CVKMText {
    double x = 0;
    double y = 0;
    double z = 0;  // never set from the file
    CVKMCharacters text;
    CVKMTextValues values;
    int32_t fileLine = 0;  // line of the file on which it begins, from 1
};
inline constexpr CVKMText defaultText;

}  // namespace vemrado
