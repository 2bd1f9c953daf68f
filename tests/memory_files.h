// Files in memory for tests, handed to the module through the framework's file provider, with counted
// failures.

#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <string>

#include "framework/framework.h"

namespace vemrado_test {

// While it lives, the module finds the files of this object before those on disk. Names are compared as the
// module asks for them.
class MemoryFiles {
  public:
    MemoryFiles() {
        const FrameworkFileProvider provider = {this, Open, Read, Length, Close};
        FrameworkSetFileProvider(&provider);
    }
    ~MemoryFiles() { FrameworkSetFileProvider(nullptr); }
    MemoryFiles(const MemoryFiles&) = delete;
    MemoryFiles& operator=(const MemoryFiles&) = delete;

    std::string& operator[](const std::string& name) { return files[name]; }
    void Remove(const std::string& name) { files.erase(name); }

    int64_t readLimit = -1;  // bytes that all reads together may give before they fail; -1: no limit
    int64_t statedLength = INT64_MAX;  // what is told of every file; INT64_MAX: the truth
    int failingRead = 0;               // this read, counted from 1, fails and the later ones work; 0: none
    int failingOpen = 0;               // as failingRead
    size_t mostPerRead = SIZE_MAX;     // reads give at most so many bytes
    std::function<void()> beforeRead;  // may change the files, as another program does
    int reads = 0;
    int failedReads = 0;
    int opens = 0;
    int openFiles = 0;

  private:
    struct OpenFile {
        MemoryFiles* owner;
        const std::string* bytes;
        size_t position;
    };

    static void* Open(void* context, const char* path) {
        auto* self = static_cast<MemoryFiles*>(context);
        const auto found = self->files.find(path);
        if (found == self->files.end() || ++self->opens == self->failingOpen) return nullptr;
        ++self->openFiles;
        return new OpenFile{self, &found->second, 0};
    }

    static int64_t Read(void* handle, void* destination, size_t count) {
        auto* file = static_cast<OpenFile*>(handle);
        MemoryFiles* self = file->owner;
        ++self->reads;
        if (self->beforeRead) self->beforeRead();
        if (self->reads == self->failingRead || self->readLimit == 0) {
            ++self->failedReads;
            return -1;
        }
        const size_t left = file->bytes->size() - std::min(file->position, file->bytes->size());
        count = std::min({count, left, self->mostPerRead});
        if (self->readLimit > 0) {
            count = std::min(count, static_cast<size_t>(self->readLimit));
            self->readLimit -= static_cast<int64_t>(count);
        }
        std::memcpy(destination, file->bytes->data() + file->position, count);
        file->position += count;
        return static_cast<int64_t>(count);
    }

    static int64_t Length(void* handle) {
        const auto* file = static_cast<OpenFile*>(handle);
        return std::min(file->owner->statedLength, static_cast<int64_t>(file->bytes->size()));
    }

    static void Close(void* handle) {
        auto* file = static_cast<OpenFile*>(handle);
        --file->owner->openFiles;
        delete file;
    }

    std::map<std::string, std::string> files;
};

// Collects message boxes while it lives.
class MessageBoxes {
  public:
    MessageBoxes() { FrameworkSetMessageBoxHandler(Take, this); }
    ~MessageBoxes() { FrameworkSetMessageBoxHandler(nullptr, nullptr); }
    MessageBoxes(const MessageBoxes&) = delete;
    MessageBoxes& operator=(const MessageBoxes&) = delete;

    std::string texts;  // each followed by "|"
    int count = 0;
    // Those about a shape file, of all objects: the module shows one in its life.
    static inline int ofShapeFiles = 0;

  private:
    static int Take(void* context, const char* text, unsigned int) {
        auto* self = static_cast<MessageBoxes*>(context);
        self->texts.append(text).append("|");
        ++self->count;
        if (std::strstr(text, "Symbol file does not exist") != nullptr) ++ofShapeFiles;
        return 1;
    }
};

}  // namespace vemrado_test
