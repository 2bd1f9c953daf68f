// vkm-generate: writes made-up cadastral maps of any size as VKM files.

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "options.h"
#include "sheet_writer.h"

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#endif

namespace generate {
namespace {

constexpr int exitDone = 0;
constexpr int exitFailed = 1;
constexpr int exitUsage = 2;

class OutputFile {
  public:
    explicit OutputFile(const std::string& path)
        : name(path.empty() ? "standard output" : path),
          file(path.empty() ? stdout : std::fopen(path.c_str(), "wb")) {
#if defined(_WIN32)
        if (file == stdout) _setmode(_fileno(stdout), _O_BINARY);
#endif
    }
    ~OutputFile() {
        if (file && file != stdout) std::fclose(file);
    }
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    bool IsOpen() const {
        return file != nullptr;
    }
    const std::string& Name() const {
        return name;
    }
    uint64_t Written() const {
        return written;
    }
    bool Write(const std::string& text) {
        written += text.size();
        return std::fwrite(text.data(), 1, text.size(), file) == text.size();
    }
    bool Finish() {
        return std::fflush(file) == 0;
    }

  private:
    std::string name;
    std::FILE* file;
    uint64_t written = 0;
};

// Makes a run of sheets, on several threads when there are several.
std::vector<std::string> MakeSheets(const MapWriter& map, int64_t first, int64_t count, unsigned threads) {
    std::vector<std::string> sheets(static_cast<std::size_t>(count));
    std::atomic<int64_t> next{0};
    const auto work = [&] {
        for (int64_t i = next++; i < count; i = next++)
            sheets[static_cast<std::size_t>(i)] = map.Sheet(first + i);
    };
    std::vector<std::thread> helpers;
    for (unsigned i = 1; i < threads && i < count; ++i) helpers.emplace_back(work);
    work();
    for (std::thread& helper : helpers) helper.join();
    return sheets;
}

// Sheets are made a few at a time: memory does not depend on the size of the file.
bool WriteSheets(const MapWriter& map, const Options& options, OutputFile& output) {
    const unsigned threads =
        options.threads > 0 ? options.threads : std::max(1u, std::thread::hardware_concurrency());
    const int64_t most = options.sheets > 0 ? options.sheets : map.SheetLimit();
    for (int64_t first = 0; first < most;) {
        const int64_t count = std::min<int64_t>(most - first, first == 0 ? 1 : 8 * threads);
        for (const std::string& sheet : MakeSheets(map, first, count, threads)) {
            if (!output.Write(sheet)) return false;
            if (options.size > 0 && output.Written() >= options.size) return true;
        }
        first += count;
    }
    return true;
}

int Run(const Options& options) {
    const MapWriter map(options);
    if (options.sheets > map.SheetLimit()) {
        std::fprintf(stderr, "vkm-generate: at most %lld sheets at this scale\n",
                     static_cast<long long>(map.SheetLimit()));
        return exitUsage;
    }
    OutputFile output(options.output);
    if (!output.IsOpen()) {
        std::perror(("vkm-generate: " + output.Name()).c_str());
        return exitFailed;
    }
    if (!output.Write(map.Header()) || !WriteSheets(map, options, output) || !output.Write(map.Closing()) ||
        !output.Finish()) {
        std::perror(("vkm-generate: " + output.Name()).c_str());
        return exitFailed;
    }
    if (output.Written() < options.size) {
        std::fprintf(stderr, "vkm-generate: the whole country has only %llu bytes\n",
                     static_cast<unsigned long long>(output.Written()));
        return exitFailed;
    }
    return exitDone;
}

}  // namespace
}  // namespace generate

int main(int count, char** arguments) {
    generate::Options options;
    std::string error;
    if (!generate::ParseOptions(count, arguments, options, error)) {
        std::fprintf(stderr, "vkm-generate: %s\n%s", error.c_str(), generate::usageText);
        return generate::exitUsage;
    }
    if (options.help) {
        std::fputs(generate::usageText, stdout);
        return generate::exitDone;
    }
    return generate::Run(options);
}
