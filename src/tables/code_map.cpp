#include "tables/code_map.h"

#include "messages/message_table.h"

namespace vemrado {

int CKokesCodeMap::ReadCodeMap(const String& filePath) {
    path = filePath;
    if (!file.Open(path)) return 0;
    const TableFileCloser closer(file);
    map.Prepare();
    names.Clear();
    return ReadSection('L');
}

int CKokesCodeMap::ReadSection(char letter) {
    file.Rewind();
    if (!FindCodeSection(file, letter)) {
        if (!file.ReadFailed()) messages.AddFileMessage(path.c_str(), msgNoLineCodeTable);
        return 0;
    }
    int32_t code = 0;
    int32_t lineType = 0;
    std::string_view name;
    while (NextCodePair(file, code, lineType, name)) {
        if (map.Find(code) != nullptr) continue;  // the first line of a code counts
        map.Add(code, {lineType, names.Add(name)});
    }
    return 1;
}

int32_t CKokesCodeMap::FindLineType(int32_t vkmCode) const {
    const CMapping* found = map.Find(vkmCode);
    return found == nullptr ? 0 : found->lineType;
}

}  // namespace vemrado
