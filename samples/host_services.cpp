// A host that shows the module's messages itself, reads files from memory and handles every failure.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>

#include "framework/framework.h"
#include "vemrado/vkm_interface.h"

// The texts of the module's own messages are in Windows-1250; a host converts them for its display.
int ShowBox(void*, const char* text, unsigned int) {
    std::fprintf(stderr, "import: %s\n", text);
    return 1;
}

// Files that lie in memory, by name.
std::map<std::string, std::string> memoryFiles;

struct MemoryFile {
    const std::string* content;
    size_t position;
};

void* OpenMemoryFile(void*, const char* path) {
    const auto found = memoryFiles.find(path);
    return found == memoryFiles.end() ? nullptr : new MemoryFile{&found->second, 0};
}

int64_t ReadMemoryFile(void* file, void* destination, size_t count) {
    MemoryFile& memory = *static_cast<MemoryFile*>(file);
    count = std::min(count, memory.content->size() - memory.position);
    std::memcpy(destination, memory.content->data() + memory.position, count);
    memory.position += count;
    return static_cast<int64_t>(count);
}

int64_t MemoryFileLength(void* file) {
    return static_cast<int64_t>(static_cast<MemoryFile*>(file)->content->size());
}

void CloseMemoryFile(void* file) {
    delete static_cast<MemoryFile*>(file);
}

// Returns the number of elements, or -1 when the file could not be opened or read to its end.
int CountElements(const char* name) {
    CVKMInterface* vkm = CreateVKMInterface();
    if (!vkm) return -1;
    int count = -1;
    try {
        if (vkm->Open(name, 0, "", 1, 0.0, CVKMInterface::flgSymbolsNone)) {
            for (count = 0; vkm->ReadNext();) ++count;
        }
    } catch (const CFileException& failure) {
        std::fprintf(stderr, "import: %s\n", failure.what());
        count = -1;
    }
    DestroyVKMInterface(vkm);  // closes the file
    return count;
}

int ShowBoxOfJob(void* job, const char* text, unsigned int) {
    std::fprintf(stderr, "job %d: %s\n", *static_cast<int*>(job), text);
    return 1;
}

// What a thread of several runs: the boxes of its imports name its job.
int CountInJob(int job, const char* name) {
    const FrameworkThreadServices own = {ShowBoxOfJob, &job, nullptr, nullptr};  // null: the process's
    const FrameworkThreadServices* before = FrameworkSetThreadServices(&own);
    const int count = CountElements(name);
    FrameworkSetThreadServices(before);
    return count;
}

int main() {
    FrameworkSetMessageBoxHandler(ShowBox, nullptr);
    const FrameworkFileProvider provider = {nullptr, OpenMemoryFile, ReadMemoryFile, MemoryFileLength,
                                            CloseMemoryFile};
    FrameworkSetFileProvider(&provider);

    memoryFiles["garden.vkm"] = "&L P 0 0\nL 10 0\nL 10 10\n&T 5 5 \"garden\"\n&K\n";
    std::printf("garden.vkm: %d\n", CountElements("garden.vkm"));
    std::printf("absent.vkm: %d\n", CountElements("absent.vkm"));

    std::printf("job 1: %d\n", CountInJob(1, "garden.vkm"));

    CVKMInterface* vkm = CreateVKMInterface();
    try {
        double point[3];
        vkm->GetElementPoint(-1, point);
    } catch (const std::invalid_argument&) {
        std::printf("no such element\n");
    }
    DestroyVKMInterface(vkm);
}
