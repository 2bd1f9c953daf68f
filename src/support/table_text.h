// The text of the symbology tables: trimmed lines, fields, number pairs, and the sections of the code mapping
// file.

#pragma once

#include <cstdint>
#include <string_view>

#include "platform/text_file.h"
#include "support/containers.h"

namespace vemrado {

// Without spaces, tabs, CR, LF, vertical tabs and form feeds at both ends.
std::string_view Trimmed(std::string_view text);

// Where a table file reports what goes wrong with it.
class TableProblems {
  public:
    virtual void AddMessage(const char* text) = 0;
    virtual void AddFileMessage(const char* path, const char* text) = 0;

  protected:
    ~TableProblems() = default;
};

// A table file, read line by line. Its problems are reported as they are met, so a reader only asks for the
// next line.
class TableFile {
  public:
    // A longer line is cut to this many characters.
    static constexpr size_t longestLine = 1048576;

    // The problems must outlive the file.
    explicit TableFile(TableProblems& reportedProblems) : problems(reportedProblems) {}

    // False when the file cannot be opened. The one warning says why; note, if any, follows it on a line of
    // its own.
    bool Open(const String& path, const char* note = nullptr);
    void Close() { file.Close(); }
    // Back to the start. A failure is a warning, and no line follows.
    void Rewind();

    // The next line, trimmed and up to its first zero character, valid until the next call. False at the end
    // of the file and after a read error; an error is a warning of the file and the reason.
    bool NextLine(std::string_view& line);
    // True when a read failed since Open: then the end that NextLine reported is not the end of the file.
    bool ReadFailed() const { return readFailed; }

  private:
    void ReportReadFailure();
    bool DropRestOfLine();

    TableProblems& problems;
    platform::TextFile file;
    String filePath;
    String longLine;  // the start of a line that was cut
    bool readFailed = false;
};

// Closes the file at the end of a reader, however that comes about.
class TableFileCloser {
  public:
    explicit TableFileCloser(TableFile& openFile) : file(openFile) {}
    TableFileCloser(const TableFileCloser&) = delete;
    TableFileCloser& operator=(const TableFileCloser&) = delete;
    ~TableFileCloser() { file.Close(); }

  private:
    TableFile& file;
};

constexpr std::string_view fieldBlanks = " \t";

// A cursor over the fields of a line. Lives no longer than the line.
class Fields {
  public:
    explicit Fields(std::string_view lineText) : text(lineText) {}

    // Skips delimiters, takes the characters up to the next one and steps over that. Empty when no field is
    // left.
    std::string_view Next(std::string_view delimiters = fieldBlanks);
    // What no field has taken yet.
    std::string_view Rest() const { return text.substr(position < text.size() ? position : text.size()); }

  private:
    std::string_view text;
    size_t position = 0;
};

// Two numbers joined by a comma, with or without blanks around it ("3,5", "3 , 5"), or one number alone.
// Either text may come back empty. 0 when there is no field, or a comma with nothing behind it ("3,": first
// is "3" all the same).
int ReadNumberPair(Fields& fields, std::string_view& first, std::string_view& second);

// The code mapping file has sections, each behind a line of a colon and one letter, in either case. Reads on
// to the line behind that header; false when there is none.
bool FindCodeSection(TableFile& file, char letter);
// The next line of the section that holds two numbers. Blank lines, comments ("*") and lines with fewer
// fields are skipped; a line that begins with a colon ends the section, as does the end of the file.
// The name is what stands behind the two numbers, trimmed and valid until the next line is read.
bool NextCodePair(TableFile& file, int32_t& from, int32_t& to, std::string_view& name);

}  // namespace vemrado
