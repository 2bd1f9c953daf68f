// From the line codes of VKM files to line type numbers: the line code section of "DKM1_3.TB".

#pragma once

#include <cstdint>

#include "messages/collected_messages.h"
#include "support/code_index.h"
#include "support/code_names.h"
#include "support/containers.h"
#include "support/table_text.h"

namespace vemrado {

class CKokesCodeMap {
  public:
    // The warnings must outlive the map.
    explicit CKokesCodeMap(CollectedMessages& warnings) : messages(warnings), file(warnings) {}

    // 1 when the file has a line code section, else 0 with a collected warning. May throw std::bad_alloc;
    // what was read before stays.
    int ReadCodeMap(const String& filePath);
    void Clear() {
        map.Clear();
        names.Clear();
    }

    // 0 when the code is not mapped, or mapped to 0.
    int32_t FindLineType(int32_t vkmCode) const;

    struct CMapping {
        int32_t lineType = 0;
        uint32_t name = 0;  // its place in the names
    };
    // In the order of the file.
    const Array<CodeIndex<CMapping>::Entry>& Entries() const { return map.Entries(); }
    const char* NameOf(const CMapping& mapping) const { return names.At(mapping.name); }
    // Null when the code is not mapped.
    const CMapping* Find(int32_t vkmCode) const { return map.Find(vkmCode); }

  private:
    int ReadSection(char letter);

    CollectedMessages& messages;
    String path;
    TableFile file;
    CodeIndex<CMapping> map;
    CodeNames names;
};

}  // namespace vemrado
