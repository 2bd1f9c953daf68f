// Measures the import of whole files against a pass over the same bytes that only finds the line ends.
//
//   bench_import [--repeat N] [--json] FILE...
//
// The import calls what a converter asks of every element, through the public headers: of a line its layer,
// and of each of its elements the point, the type, the code and the symbol code; of a text its layer, the
// text, the point, the code, size and rotation. The passes take turns, so that both meet the same page cache
// and the same clock; the ratio is the median of those of neighbouring passes.

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "samples.h"
#include "vemrado/vkm_details.h"
#include "vemrado/vkm_interface.h"

namespace {

struct LineEnds {
    int64_t bytes = 0;
    int64_t lines = 0;
};

LineEnds FindLineEnds(const char* path) {
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) throw std::runtime_error(std::string("cannot open ") + path);
    // On a page's start: to other places the system's copy is slower on some processors, up to four times.
    alignas(4096) static char buffer[262144];
    LineEnds result;
    ssize_t count;
    while ((count = read(file, buffer, sizeof buffer)) > 0) {
        const char* const end = buffer + count;
        const char* at = buffer;
        while ((at = static_cast<const char*>(std::memchr(at, '\n', static_cast<size_t>(end - at))))) {
            ++result.lines;
            ++at;
        }
        result.bytes += count;
    }
    close(file);
    if (count < 0) throw std::runtime_error(std::string("cannot read ") + path);
    return result;
}

struct Import {
    int64_t lines = 0;
    int64_t lineElements = 0;
    int64_t texts = 0;
    double sum = 0;  // of everything read, so that no call can be left out
};

void TakeLine(CVKMDetails& vkm, Import& result) {
    const int count = vkm.GetElementCount();
    for (int i = 0; i < count; ++i) {
        double point[3];
        vkm.GetElementPoint(i, point);
        const int numbers = vkm.GetElementType(i) + vkm.GetElementSymbolCode(i) + vkm.GetElementCode(i)[0];
        result.sum += point[0] + point[1] + numbers;
    }
    ++result.lines;
    result.lineElements += count;
}

void TakeText(CVKMDetails& vkm, Import& result) {
    double point[3];
    int valueD, valueF;
    double height, valueU;
    vkm.GetTextPoint(point);
    vkm.GetTextAttributes(&valueD, &valueF, &height, &valueU);
    result.sum +=
        point[0] + point[1] + valueD + valueF + height + valueU + vkm.GetTextCode() + vkm.GetText()[0];
    ++result.texts;
}

Import ImportAll(const char* path) {
    CVKMDetails* vkm = VkmDetails(CreateVKMInterface());
    if (!vkm || !vkm->Open(path, 0, "", 1, 0.0, CVKMInterface::flgSymbolsNone)) {
        throw std::runtime_error(std::string("cannot open ") + path);
    }
    Import result;
    while (const int kind = vkm->ReadNext()) {
        int layer;
        result.sum += vkm->GetLayer(&layer)[0] + layer;
        if (kind == 1) {
            TakeLine(*vkm, result);
        } else {
            TakeText(*vkm, result);
        }
    }
    if (!vkm->IsComplete()) throw std::runtime_error(std::string(path) + " has no closing record");
    vkm->Close();
    CVKMInterface::DestroyVKMInterface(vkm);
    return result;
}

// Of the resident set. The kernel's getrusage would count the program that started this one as well.
double PeakMegabytes() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        double kibibytes = 0;
        if (word == "VmHWM:" && status >> kibibytes) return kibibytes * 1024 / 1e6;
    }
    return 0;
}

struct Result {
    LineEnds lineEnds;
    Import import;
    Samples lineEndTimes, importTimes;
};

Result Measure(const char* path, int repetitions) {
    Result result;
    FindLineEnds(path);  // brings the file into the page cache
    for (int i = 0; i < repetitions; ++i) {
        result.lineEndTimes.Time([&] { result.lineEnds = FindLineEnds(path); });
        result.importTimes.Time([&] { result.import = ImportAll(path); });
    }
    return result;
}

void Print(const char* path, const Result& result) {
    const double megabytes = static_cast<double>(result.lineEnds.bytes) / 1e6;
    const auto elements = static_cast<double>(result.import.lineElements + result.import.texts);
    const Samples& lineEnds = result.lineEndTimes;
    const Samples& import = result.importTimes;
    std::printf("%s\n", path);
    std::printf("  %.1f MB, %lld file lines; %lld lines of %lld elements, %lld texts (sum %.6e)\n", megabytes,
                static_cast<long long>(result.lineEnds.lines), static_cast<long long>(result.import.lines),
                static_cast<long long>(result.import.lineElements),
                static_cast<long long>(result.import.texts), result.import.sum);
    std::printf("  line ends  %10.2f ms minimum %10.2f ms median %8.0f MB/s\n", lineEnds.Minimum() * 1e3,
                lineEnds.Median() * 1e3, megabytes / lineEnds.Minimum());
    std::printf("  import     %10.2f ms minimum %10.2f ms median %8.0f MB/s %.3g elements/s\n",
                import.Minimum() * 1e3, import.Median() * 1e3, megabytes / import.Minimum(),
                elements / import.Minimum());
    std::printf("  ratio      %10.2f; peak memory %.1f MB\n", import.MedianRatio(lineEnds), PeakMegabytes());
}

// One line for scripts. Times are minima in seconds.
void PrintJson(const Result& result) {
    std::printf(
        "{\"bytes\": %lld, \"elements\": %lld, \"line_ends\": %.9f, \"import\": %.9f, \"ratio\": %.3f, "
        "\"peak_megabytes\": %.1f}\n",
        static_cast<long long>(result.lineEnds.bytes),
        static_cast<long long>(result.import.lineElements + result.import.texts),
        result.lineEndTimes.Minimum(), result.importTimes.Minimum(),
        result.importTimes.MedianRatio(result.lineEndTimes), PeakMegabytes());
}

}  // namespace

int main(int argc, char** argv) {
    int repetitions = 5;
    bool json = false;
    std::vector<const char*> files;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--repeat" && i + 1 < argc) {
            repetitions = std::max(1, std::atoi(argv[++i]));
        } else if (argument == "--json") {
            json = true;
        } else {
            files.push_back(argv[i]);
        }
    }
    if (files.empty()) {
        std::fputs("usage: bench_import [--repeat N] [--json] FILE...\n", stderr);
        return 2;
    }
    try {
        for (const char* file : files) {
            const Result result = Measure(file, repetitions);
            if (json) {
                PrintJson(result);
            } else {
                Print(file, result);
            }
        }
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench_import: %s\n", failure.what());
        return 1;
    }
}
