// Runs every file of a corpus through its target, without libFuzzer:
//
//   fuzz_replay CORPUS...
//
// Each CORPUS is a folder named as its target. Each file is handed over in a block of exactly its size.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "targets.h"

namespace {

int ReplayFolder(const std::filesystem::path& folder) {
    const std::string name = folder.filename().string();
    const vemrado_fuzz::Target* target = vemrado_fuzz::FindTarget(name);
    if (target == nullptr) {
        std::fprintf(stderr, "fuzz_replay: %s names no target\n", folder.string().c_str());
        return -1;
    }
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes(std::istreambuf_iterator<char>(file), {});
        const auto exact = std::make_unique<char[]>(bytes.size());
        bytes.copy(exact.get(), bytes.size());
        target->run(std::string_view(exact.get(), bytes.size()));
        ++count;
    }
    std::printf("%s: %d files\n", name.c_str(), count);
    return count;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: fuzz_replay CORPUS...\n", stderr);
        return 2;
    }
    for (int i = 1; i < argc; ++i) {
        if (ReplayFolder(argv[i]) <= 0) return 1;
    }
    return 0;
}
