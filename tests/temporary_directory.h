// A directory of a test's own, with files in it, that goes with the object.

#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace vemrado_test {

class TemporaryDirectory {
  public:
    TemporaryDirectory() {
        std::random_device random;
        path = std::filesystem::temp_directory_path() / ("vemrado_test_" + std::to_string(random()));
        std::filesystem::create_directories(path);
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    std::string Path(const std::string& name) const { return (path / name).string(); }
    // Writes a file, with the directories that it stands in, and returns its path.
    std::string Write(const std::string& name, const std::string& bytes) const {
        std::filesystem::create_directories((path / name).parent_path());
        std::ofstream(path / name, std::ios::binary) << bytes;
        return Path(name);
    }

  private:
    std::filesystem::path path;
};

}  // namespace vemrado_test
