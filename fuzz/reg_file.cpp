// The reader of .reg files: any bytes, any room for the data.

#include <string>
#include <vector>

#include "platform/reg_file.h"
#include "targets.h"

namespace vemrado_fuzz {
namespace {

void QueryTwice(std::string_view bytes) {
    const char key[] = "Software\\Zorvat\\Ini\\Velka";
    for (const char* name : {"LocalPath", "SharedPath", ""}) {
        uint32_t type = 0;
        uint32_t size = 0;
        if (!vemrado::platform::QueryRegFile(bytes, key, name, &type, nullptr, &size)) continue;
        Require(size <= 4 * bytes.size() + 8, "a value is no longer than its file");
        std::vector<char> data(size);
        uint32_t room = size;
        uint32_t again = 0;
        Require(vemrado::platform::QueryRegFile(bytes, key, name, &again, data.data(), &room),
                "the second query works");
        Require(room == size && again == type, "both queries agree");
        if (size == 0) continue;
        room = size - 1;
        Require(!vemrado::platform::QueryRegFile(bytes, key, name, &type, data.data(), &room),
                "too little room");
    }
}

const Target target("reg_file", QueryTwice);

}  // namespace
}  // namespace vemrado_fuzz
