#include "record_writer.h"

#include <array>
#include <cstring>

namespace generate {

namespace {

// The pairs of digits 00 to 99.
constexpr std::array<char, 200> MakeDigitPairs() {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}
constexpr std::array<char, 200> digitPairs = MakeDigitPairs();

constexpr std::size_t longerThanAnyBuffer = 1100;

}  // namespace

RecordWriter::RecordWriter(RecordForm recordForm, int places, uint64_t seed, int64_t sheet)
    : form(recordForm),
      decimals(places),
      random(seed, Subject::records, sheet, form == RecordForm::odd ? 1 : 0),
      out(std::size_t{1} << 18) {}

void RecordWriter::Digits(uint64_t value) {
    std::array<char, 20> text;
    std::size_t at = text.size();
    while (value >= 100) {
        at -= 2;
        std::memcpy(&text[at], &digitPairs[2 * (value % 100)], 2);
        value /= 100;
    }
    if (value >= 10) {
        at -= 2;
        std::memcpy(&text[at], &digitPairs[2 * value], 2);
    } else {
        text[--at] = static_cast<char>('0' + value);
    }
    out += std::string_view(&text[at], text.size() - at);
}

// value is in units of the last of at most three decimal places.
void RecordWriter::Number(int64_t value, int places) {
    if (value < 0) out += '-';
    const auto magnitude = static_cast<uint64_t>(value < 0 ? -value : value);
    switch (places) {
        case 0:
            return Digits(magnitude);
        case 1:
            Digits(magnitude / 10);
            out += '.';
            break;
        case 2:
            Digits(magnitude / 100);
            out += '.';
            out += std::string_view(&digitPairs[2 * (magnitude % 100)], 2);
            return;
        default:
            Digits(magnitude / 1000);
            out += '.';
            out += std::string_view(&digitPairs[2 * (magnitude / 10 % 100)], 2);
    }
    out += static_cast<char>('0' + magnitude % 10);
}

void RecordWriter::Coordinate(int64_t value) {
    if (form == RecordForm::odd) {
        switch (random.Below(8)) {
            case 0:  // a sign that is not needed
                if (value >= 0) out += '+';
                break;
            case 1:  // an integer with an exponent
                Number(value, 0);
                out += "e-";
                Number(decimals, 0);
                return;
            case 2:  // zeros at the end
                Number(value, decimals);
                out += "00";
                return;
            case 3:  // a field that ends in something else
                Number(value, decimals);
                out += 'm';
                return;
            default:
                break;
        }
    }
    Number(value, decimals);
}

void RecordWriter::Separator() {
    if (form == RecordForm::plain) {
        out += ' ';
        return;
    }
    constexpr std::array<const char*, 6> blanks{" ", " ", "  ", "\t", " \t ", "     "};
    out += random.Pick(blanks);
}

void RecordWriter::Field(std::string_view text) {
    Separator();
    out += text;
}

void RecordWriter::Coordinates(GridPoint at) {
    Separator();
    Coordinate(-at.east - originY);
    Separator();
    Coordinate(-at.north - originX);
}

void RecordWriter::KeyStart(char letter) {
    Separator();
    out += letter;
    if (form == RecordForm::odd && random.Chance(0.3)) Separator();
    out += '=';
    if (form == RecordForm::odd && random.Chance(0.3)) Separator();
}

void RecordWriter::Key(char letter, int64_t value) {
    KeyStart(letter);
    Number(value, 0);
}

void RecordWriter::KeyDecimal(char letter, int64_t value, int places) {
    KeyStart(letter);
    Number(value, places);
}

// The text may hold quote characters of its own: one that it does not hold is taken.
void RecordWriter::Quoted(std::string_view text) {
    constexpr std::string_view quotes = "\"'`%";
    std::size_t choice = form == RecordForm::odd ? static_cast<std::size_t>(random.Below(4)) : 0;
    while (text.find(quotes[choice % 4]) != std::string_view::npos) ++choice;
    Separator();
    if (form == RecordForm::odd && random.Chance(0.1)) out += "text ";
    out += quotes[choice % 4];
    out += text;
    out += quotes[choice % 4];
}

void RecordWriter::StartRecord(char letter) {
    if (form == RecordForm::odd && random.Chance(0.2)) Separator();
    out += '&';
    out += letter;
    if (form == RecordForm::odd && random.Chance(0.1)) out += "2009";
}

// A continuation line: its first field is never read as a key.
void RecordWriter::Continue() {
    EndLine();
    Separator();
    out += '+';
}

void RecordWriter::EndLine(Ending ending) {
    if (form == RecordForm::plain) {
        out += '\n';
        return;
    }
    if (random.Chance(0.1)) Separator();
    if (ending == Ending::any && random.Chance(0.002))
        out.Append(longerThanAnyBuffer, random.Chance(0.5) ? ' ' : '\t');
    if (random.Chance(0.5)) out += '\r';
    out += '\n';
}

// A line that changes nothing for the element that is being read. Right after the record's own line only
// unknown records do so: that line's element may have been handed on, and any other line would begin an empty
// one.
void RecordWriter::Oddity(bool directly) {
    constexpr std::array<const char*, 5> unknownRecords{"&Q 1 2 K=77", "&l 1 2 3", "&", "&x S=9",
                                                        "& L 5 5 K=1"};
    constexpr std::array<const char*, 4> otherLines{"", "? 12 Z=5 KX=3 foo", "  \t  ", "; H 5 KM=1"};
    out += directly || random.Chance(0.5) ? random.Pick(unknownRecords) : random.Pick(otherLines);
    EndLine(directly ? Ending::shortLine : Ending::any);
}

void RecordWriter::Comment(std::string_view text) {
    StartRecord('*');
    Field(text);
    if (form == RecordForm::odd && !inHeader && random.Chance(0.3)) {
        out += ' ';
        out.Append(longerThanAnyBuffer, '-');
    }
    EndLine(inHeader ? Ending::shortLine : Ending::any);
}

void RecordWriter::Record(char letter, std::string_view fields) {
    StartRecord(letter);
    if (!fields.empty()) Field(fields);
    EndLine(Ending::shortLine);
}

void RecordWriter::SetLayer(int layer) {
    StartRecord('U');
    Separator();
    Number(layer, 0);
    EndLine(Ending::shortLine);
}

void RecordWriter::Element(const DrawnElement& element) {
    const bool odd = form == RecordForm::odd;
    if (element.startsLine) {
        StartRecord('L');
    } else if (odd && random.Chance(0.06)) {
        Oddity(afterRecordLine);
    }
    Separator();
    out += element.type;
    if (odd && element.startsLine && random.Chance(0.1)) out += "oint";
    Coordinates(element.at);
    const ElementKeys& keys = element.keys;
    if (keys.code != 0) Key('K', keys.code);
    if (keys.symbol != 0) Key('S', keys.symbol);
    const bool hasMore =
        keys.scaleHundredths != 100 || keys.gonsHundredths != 0 || keys.radiusHundredths != 0;
    if (hasMore && !element.startsLine && random.Chance(odd ? 0.5 : 0.15)) Continue();
    if (keys.scaleHundredths != 100) KeyDecimal('M', keys.scaleHundredths, 2);
    if (keys.gonsHundredths != 0) KeyDecimal('U', keys.gonsHundredths, 2);
    if (keys.radiusHundredths != 0) KeyDecimal('R', keys.radiusHundredths, 2);
    EndLine(element.startsLine ? Ending::shortLine : Ending::any);
    afterRecordLine = element.startsLine;
}

void RecordWriter::Text(const DrawnText& text) {
    StartRecord('T');
    Coordinates(text.at);
    Quoted(text.text);
    if (text.code != 0) Key('K', text.code);
    if (text.anchor != 0) Key('D', text.anchor);
    if (text.font != 0) Key('F', text.font);
    if (text.heightTenths != 0) KeyDecimal('H', text.heightTenths, 1);
    if (text.gonsHundredths != 0) {
        if (random.Chance(form == RecordForm::odd ? 0.5 : 0.1)) Continue();
        KeyDecimal('U', text.gonsHundredths, 2);
    }
    EndLine();
}

}  // namespace generate
