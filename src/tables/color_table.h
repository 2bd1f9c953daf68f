// Colours and line widths by number, from "WKOKES.COL".

#pragma once

#include <cstdint>
#include <string_view>

#include "messages/collected_messages.h"
#include "support/containers.h"
#include "support/table_text.h"

namespace vemrado {

struct CLineWidth {
    int32_t intValue = 0;
    double width = 0.0;  // in the units of the file
};

class CKokesColorTable {
  public:
    // The warnings must outlive the table.
    explicit CKokesColorTable(CollectedMessages& warnings) : messages(warnings), file(warnings) {}

    // Reads the sections "white" (colours) and "width" (line widths). 1 when both were found; a file that
    // cannot be opened or lacks one becomes a collected warning. May throw std::bad_alloc; what was read
    // before stays.
    int ReadColorFile(const String& filePath);
    void Clear();

    // Red in bits 0 to 7, green in bits 8 to 15, blue in bits 16 to 23. 0 outside the table.
    uint32_t GetColor(int32_t number) const;
    // 0 outside the table.
    double GetWidth(int32_t number) const;

  private:
    enum class Kind { colors, widths };

    int ReadColorSection(std::string_view section, Kind kind);
    template <class Value>
    void ReadEntries(Array<Value>& values);

    CollectedMessages& messages;
    String path;
    TableFile file;
    Array<uint32_t> colors;
    Array<CLineWidth> widths;
};

}  // namespace vemrado
