#include "map/findings.h"

#include <algorithm>

#include "map/finding_translations.h"

namespace vemrado::map {
namespace {

constexpr Severity note = Severity::note;
constexpr Severity warning = Severity::warning;
constexpr Severity error = Severity::error;

// In the order of Rule.
constexpr std::array<RuleText, ruleCount> rules = {{
    {"not-vkm", error, "The file is no VKM file: no line of it opens a record.", "%1"},
    {"no-closing-record", error, "The file ends without its closing record &K, so its last element is lost.",
     "the file ends without its closing record &K; the element before the end is lost"},
    {"after-closing-record", warning, "Something stands behind the closing record &K; nobody reads it.",
     "the file goes on behind its closing record &K; nothing from here on is read"},
    {"byte-order-mark", note, "The file begins with a UTF-8 byte order mark, which belongs to no record.",
     "a UTF-8 byte order mark stands before the first line"},
    {"mixed-line-ends", note, "Some lines end in a line feed, others in a carriage return and a line feed.",
     "this line ends otherwise than the lines before it"},

    {"zero-byte", error, "A zero byte ends its line; what follows it there is lost.",
     "a zero byte ends the line; what follows it is lost"},
    {"end-character", error, "The character 0x1A ends the file wherever it stands.",
     "the character 0x1A ends the file here; what follows is lost"},
    {"bad-byte", warning, "The encoding has no character for a byte.",
     "the byte %1 is no character of the encoding"},
    {"lone-carriage-return", warning,
     "A carriage return that no line feed follows ends no line and is a part of its field.",
     "a carriage return without a line feed is a part of its field"},
    {"line-too-long", error,
     "A line has more than 1023 characters with its line feed; the rest is read as a line of its own.",
     "the line is longer than 1023 characters; from here on it is read as a line of its own"},

    {"unknown-record", warning,
     "A record has a letter that the format does not know; its line is passed over.",
     "there is no record '%f'; the line is passed over"},
    {"mark-run-on", note, "More than its letter stands in a record's mark; only the letter is read.",
     "'%1' behind the letter of the record is not read; is a blank missing?"},
    {"header-missing", warning,
     "The header has no record V (origin) or R (scale and kind of coordinates), so defaults hold.",
     "the file has no header record &%1"},
    {"header-late", warning,
     "A header record stands behind the header, so what comes before it was read without.",
     "the header record &%1 comes after the header; what stands before it was read without it"},
    {"header-doubled", warning, "A header record stands there twice; the later one holds from its place on.",
     "there is a record &%1 already; this one replaces it for what follows"},
    {"relative-without-origin", error,
     "Coordinates are relative, but no record V before them says to which origin.",
     "coordinates are relative, but no record &V says to which origin"},
    {"stray-continuation", warning,
     "A line that opens no record stands where no record can go on; it is lost.",
     "this line opens no record and there is none that it could go on with; it is lost"},
    {"record-read-again", error,
     "A line behind a record V, R or U is read as that record again, with defaults for what it lacks.",
     "this line is read as the record &%1 before it once more, with defaults for what it lacks"},
    {"unknown-layer", warning, "A layer is not one of 1 to 11, or no record U has named one.",
     "there is no layer %1; layers are 1 to 11"},
    {"scale-range", error, "The map scale number is not positive.", "a map scale of 1:%f makes no map"},

    {"element-without-type", error, "An element of a line has no type letter before its point.",
     "an element needs a type letter, C, K, L, P or R, before its point"},
    {"unknown-type", error, "The type of an element is none of the letters C, K, L, P and R.",
     "'%f' is none of the element types C, K, L, P and R"},
    {"long-type", warning, "Only the first letter of an element's type counts.",
     "only the %1 of the element type '%f' is read; is a blank missing?"},
    {"key-as-type", error,
     "A line that begins with a key field such as K= begins a new element of that type letter.",
     "'%f' at the start of the line begins a new element of type %1; its point is read from what follows"},
    {"phantom-element", error,
     "A line right behind the record of a line goes on with no element and makes an empty one at 0 0.",
     "this line comes too late for the element of the record before it and makes another one at 0 0"},
    {"missing-coordinate", error, "A point lacks a coordinate, which counts as 0.",
     "a coordinate is missing here and counts as 0"},
    {"surplus-coordinate", warning, "A point has more than two coordinates; the rest is passed over.",
     "a point has two coordinates; '%f' is not read"},

    {"no-number", error, "A field that should be a number is none and counts as 0.",
     "'%1' is no number and counts as 0"},
    {"number-cut", warning, "A number ends before its field does; the rest of the field is lost.",
     "'%1' is read as %2"},
    {"number-range", warning, "A number is too large; the largest possible one takes its place.",
     "the number %1 is out of range"},
    {"number-not-finite", warning, "A number is infinite or not a number.", "'%1' is no finite number"},

    {"unknown-key", warning, "A key field has a key that its record does not know; it is passed over.",
     "the key of '%f' is unknown here; the field is passed over"},
    {"repeated-key", warning, "A key stands twice with one element; the later value holds.",
     "this key was given already; only '%f' holds"},
    {"key-without-value", error, "A key field has no value; it takes the next key field for one, or nothing.",
     "the key field '%f' has no value"},
    {"key-without-equals", error,
     "A key letter has no equals sign behind it; it is passed over, and the field behind it too.",
     "the key '%f' has no equals sign; it is passed over with its value"},
    {"leading-key", error,
     "The first field of a line that goes on with an element is used up, key fields too.",
     "'%f' is lost: the first field of a line that goes on with an element is no key field"},
    {"unread-field", warning, "A field belongs to nothing that its record reads.", "nobody reads '%f'"},

    {"text-without-quotes", error,
     "A text record has no quoted text; the text is empty and its keys are lost.",
     "the text stands in no quotes; it is empty, and no key field is read"},
    {"text-unclosed", error,
     "A quoted text is not closed and runs to the end of its line, key fields and all.",
     "the closing %1 is missing; the text runs to the end of the line"},
    {"text-too-long", warning, "A text has more than 255 characters and is cut.",
     "a text of %1 characters is cut to 255"},
    {"keys-before-text", error, "Key fields between the point and the text are lost.",
     "the key field '%f' before the text is lost"},

    {"outside-country", warning, "A point lies outside the extent of the country in S-JTSK.",
     "the coordinate '%f' leads out of the country: the first is 430000 to 905000, the second 935000 to "
     "1230000"},
    {"unknown-code", warning, "The symbology has no line of a code; it is drawn as any line.",
     "the symbology has no line code %1"},
    {"unknown-symbol", warning, "The symbology has no symbol of a code; nothing is drawn.",
     "the symbology has no symbol code %1"},
    {"rotation-range", warning, "A rotation is more than a full turn of 400 gon.",
     "a rotation of %1 gon is more than a full turn"},
    {"size-range", warning, "The scale of a symbol or the size of a text is not positive, or above 100.",
     "a size of %1 cannot be meant"},

    {"far-from-rest", warning, "A point lies kilometres away from the rest of the map.",
     "this point is far away from the rest of the map"},
    {"point-without-symbol", warning, "A line has one point and no symbol, so it shows nothing.",
     "a line of one point without a symbol shows nothing"},
    {"equal-points", warning, "Two points in a row are the same.", "this point is the one before it again"},
    {"doubled-segment", warning, "The same segment stands twice in one layer.",
     "the segment to this point is there already, in line %1"},
    {"texts-on-each-other", warning, "Two texts stand in the same place and cover each other.",
     "this text covers '%1' of line %2"},
    {"free-end", warning, "A boundary ends where no other one goes on.", "the boundary ends here; %1"},
    {"crossing-without-point", warning, "Two boundaries cross where neither has a point.",
     "the segment to this point crosses the boundary of line %1 where neither has a point"},
    {"parcel-without-number", warning, "A parcel has no number in it.",
     "the parcel of %1 m2 at this corner has no number"},
    {"parcel-with-numbers", warning, "A parcel has several numbers in it.",
     "the number '%1' stands in a parcel that has the number '%2' already"},
    {"number-outside", warning, "A parcel number stands in no parcel.",
     "the number '%1' stands in no parcel"},
    {"number-twice", warning, "Two parcels have the same number.",
     "the number '%1' stands in another parcel too, in line %2"},
    {"sliver", warning, "A parcel is narrower than a decimetre: two boundaries that should be one.",
     "the parcel at this corner has %1 m2 and is %2 m wide"},
}};

// A forgotten row would leave the last ones empty.
static_assert(std::all_of(rules.begin(), rules.end(),
                          [](const RuleText& rule) { return !rule.name.empty(); }));

// What the message is when an argument says it all.
constexpr std::string_view argumentAlone = "%1";

static_assert(std::all_of(rules.begin(), rules.end(),
                          [](const RuleText& rule) {
                              return IsIn(findingTranslations, rule.summary) &&
                                     (rule.message == argumentAlone ||
                                      IsIn(findingTranslations, rule.message));
                          }),
              "a rule is not in the table of translations");

// The marks of a sentence: a bit for each.
constexpr unsigned MarksOf(std::string_view sentence) {
    unsigned marks = 0;
    for (const char mark : {'f', '1', '2'}) {
        const char name[] = {'%', mark};
        marks = 2 * marks + (sentence.find(std::string_view(name, 2)) != std::string_view::npos ? 1 : 0);
    }
    return marks;
}

static_assert(std::all_of(std::begin(findingTranslations), std::end(findingTranslations),
                          [](const Translation& row) {
                              return MarksOf(row.english) == MarksOf(row.czech) &&
                                     MarksOf(row.english) == MarksOf(row.german);
                          }),
              "a translation lacks a value of its sentence");

// The arguments of these are sentences; of others they stand in the file, or are numbers.
constexpr bool SaysSentence(Rule rule) {
    return rule == Rule::notVkm || rule == Rule::freeEnd;
}

// A sentence of a rule with the field and the arguments in their places.
std::string FilledMessage(std::string_view sentence, std::string_view field,
                          const std::array<std::string, 2>& arguments) {
    std::string message;
    for (size_t i = 0; i < sentence.size(); ++i) {
        const char next = sentence[i] == '%' && i + 1 < sentence.size() ? sentence[i + 1] : '\0';
        if (next == 'f') {
            message += field;
        } else if (next == '1' || next == '2') {
            message += arguments[next == '1' ? 0 : 1];
        } else {
            message += sentence[i];
            continue;
        }
        ++i;
    }
    return message;
}

}  // namespace

const RuleText& TextOf(Rule rule) {
    return rules[static_cast<size_t>(rule)];
}

std::optional<Rule> FindRule(std::string_view name) {
    const auto found =
        std::find_if(rules.begin(), rules.end(), [&](const RuleText& rule) { return rule.name == name; });
    if (found == rules.end()) return std::nullopt;
    return static_cast<Rule>(found - rules.begin());
}

std::string MessageOf(const Finding& finding, std::string_view field) {
    return FilledMessage(TextOf(finding.rule).message, field, finding.arguments);
}

std::string MessageOf(const Finding& finding, std::string_view field, const Translator& translator) {
    const std::string_view sentence = translator.Text(TextOf(finding.rule).message);
    if (!SaysSentence(finding.rule)) return FilledMessage(sentence, field, finding.arguments);
    return FilledMessage(sentence, field, {translator.Sentence(finding.arguments[0]), finding.arguments[1]});
}

}  // namespace vemrado::map
