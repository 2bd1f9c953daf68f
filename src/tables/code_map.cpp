#include "tables/code_map.h"

#include "messages/messages.h"

namespace vemrado {

int CKokesCodeMap::ReadCodeMap(const String& filePath) {
    path = filePath;
    if (!file.Open(path)) return 0;
    const TableFileCloser closer(file);
    map.Prepare();
    return ReadSection('L');
}

int CKokesCodeMap::ReadSection(char letter) {
    file.Rewind();
    if (!FindCodeSection(file, letter)) {
        if (!file.ReadFailed()) AddFileMessage(path.c_str(), msgNoLineCodeTable);
        return 0;
    }
    int32_t code = 0;
    int32_t lineType = 0;
    while (NextCodePair(file, code, lineType)) map.Add(code, lineType);  // the first line of a code counts
    return 1;
}

int32_t CKokesCodeMap::FindLineType(int32_t vkmCode) const {
    const int32_t* found = map.Find(vkmCode);
    return found == nullptr ? 0 : *found;
}

}  // namespace vemrado
