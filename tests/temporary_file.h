// A file with given content for as long as the object lives.

#pragma once

#include <atomic>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

class TemporaryFile {
  public:
    explicit TemporaryFile(std::string_view content, const char* extension = ".vkm") {
        static const unsigned int run = std::random_device()();
        static std::atomic<int> count = 0;
        const std::string name =
            "vemrado-test-" + std::to_string(run) + "-" + std::to_string(++count) + extension;
        path = (std::filesystem::temp_directory_path() / name).string();
        std::ofstream file(path, std::ios::binary);
        file.write(content.data(), static_cast<std::streamsize>(content.size()));
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }

    const char* Path() const { return path.c_str(); }

  private:
    std::string path;
};
