// Writes VKM records as text: fields and keys of a drawing in the plain form that surveyors' programs write,
// or in odd forms that mean the same (RecordForm::odd).

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "drawing.h"
#include "random.h"
#include "text_buffer.h"

namespace generate {

enum class RecordForm {
    plain,
    // Blanks and tabs in odd places, keys apart from their values, numbers with signs and exponents, every
    // quote character, lines longer than a reader's buffer, records of unknown letters, carriage returns
    // before line feeds. A reader gets the same elements as from the plain form.
    odd,
};

class RecordWriter {
  public:
    // places: decimals of coordinates; a unit of the last is the grid's.
    RecordWriter(RecordForm recordForm, int places, uint64_t seed, int64_t sheet);

    // Coordinates are written less this origin: y and x of the S-JTSK, in units.
    void SetOrigin(int64_t y, int64_t x) {
        originY = y;
        originX = x;
    }

    void Comment(std::string_view text);
    // A record of plain fields: its letter and the fields as they stand.
    void Record(char letter, std::string_view fields);
    void SetLayer(int layer);
    void Element(const DrawnElement& element);
    void Text(const DrawnText& text);

    // The end of the file's header, whose lines stay short.
    void EndHeader() { inHeader = false; }

    // What was written; the writer goes on with an empty text.
    std::string Take() { return out.Take(); }

  private:
    void Field(std::string_view text);
    void Separator();
    void Coordinates(GridPoint at);
    void Coordinate(int64_t value);
    void Key(char letter, int64_t value);
    void KeyDecimal(char letter, int64_t value, int places);
    void KeyStart(char letter);
    void Quoted(std::string_view text);
    void StartRecord(char letter);
    void Continue();
    // Some records are read again on a line that follows without a mark: those must not be longer than a
    // buffer.
    enum class Ending { any, shortLine };
    void EndLine(Ending ending = Ending::any);
    void Oddity(bool directly);
    void Number(int64_t value, int places);
    void Digits(uint64_t value);

    const RecordForm form;
    const int decimals;
    Random random;
    int64_t originY = 0;
    int64_t originX = 0;
    bool inHeader = true;
    bool afterRecordLine = false;
    TextBuffer out;
};

}  // namespace generate
