// The reader's parts and the pool, one at a time, each beside what it is to be compared with.

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "support/numbers.h"
#include "vkm/element_loop.h"

namespace {

using namespace vemrado;

// A map's lines in the mixture that files have: mostly elements with two coordinates and a code.
std::string MapText() {
    std::string text = "&V S-JTSK 744300.00 1040000.00\n&R 1 1 0 0 1000 A\n&U 1\n";
    for (int i = 0; text.size() < 4'000'000; ++i) {
        char line[100];
        const double y = 700000 + i * 0.37, x = 1000000 + i * 0.41;
        const char* form = i % 8 == 0   ? "&L P %.2f %.2f K=21900\n"
                           : i % 8 == 7 ? "&T %.2f %.2f \"1044/2\" K=1014 U=12.5\n"
                                        : " L %.2f %.2f K=21900\n";
        std::snprintf(line, sizeof line, form, y, x);
        text += line;
    }
    return text + "&K\n";
}

const std::string& Map() {
    static const std::string text = MapText();
    return text;
}

// The same in a file.
class MapFile {
  public:
    MapFile() : path((std::filesystem::temp_directory_path() / "vemrado-bench-micro.vkm").string()) {
        std::ofstream(path, std::ios::binary) << Map();
    }
    MapFile(const MapFile&) = delete;
    MapFile& operator=(const MapFile&) = delete;
    ~MapFile() { std::filesystem::remove(path); }
    const char* Path() const { return path.c_str(); }

  private:
    std::string path;
};

void CountBytes(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(Map().size()));
}

// --- Lines, fields, records ---

void LineEnds(benchmark::State& state) {
    const std::string& text = Map();
    for (auto _ : state) {
        int64_t lines = 0;
        const char* at = text.data();
        const char* const end = at + text.size();
        while ((at = static_cast<const char*>(std::memchr(at, '\n', static_cast<size_t>(end - at))))) {
            ++lines;
            ++at;
        }
        benchmark::DoNotOptimize(lines);
    }
    CountBytes(state);
}
BENCHMARK(LineEnds);

bool GoOn(void*) {
    return true;
}

// Runs a job on a reader that has just opened the file.
template <class Job>
void ReadMap(benchmark::State& state, Job job) {
    static const MapFile file;
    for (auto _ : state) {
        CVKMLineReader reader(GoOn, nullptr);
        if (!reader.inputFile.Open(file.Path())) {
            state.SkipWithError("cannot open the file");
            break;
        }
        job(reader);
    }
    CountBytes(state);
}

void Lines(benchmark::State& state) {
    ReadMap(state, [](CVKMLineReader& reader) {
        int64_t lines = 0;
        for (CVKMTokenizer line; reader.ReadLine(line) == LineResult::line;) ++lines;
        benchmark::DoNotOptimize(lines);
    });
}
BENCHMARK(Lines);

void Fields(benchmark::State& state) {
    ReadMap(state, [](CVKMLineReader& reader) {
        int64_t fields = 0;
        for (CVKMTokenizer line; reader.ReadLine(line) == LineResult::line;) {
            while (!IsNone(line.NextToken())) ++fields;
        }
        benchmark::DoNotOptimize(fields);
    });
}
BENCHMARK(Fields);

void Elements(benchmark::State& state) {
    ReadMap(state, [](CVKMLineReader& reader) {
        auto import = std::make_unique<CVKMReaderState>();
        int64_t elements = 0;
        if (!ReadHeader(*import, reader)) return;
        while (ReadNextElement(*import, reader) > ElementKind::none) ++elements;
        benchmark::DoNotOptimize(elements);
    });
}
BENCHMARK(Elements);

// --- Numbers: coordinates as files have them, and numbers with all digits that a double can need ---

// Zero-terminated, in one buffer with room on either side, as the reader has them.
class Numbers {
  public:
    explicit Numbers(bool coordinates) : buffer(room, ' ') {
        for (int i = 0; i < count; ++i) {
            char text[40];
            const int length = std::snprintf(text, sizeof text, coordinates ? "%.2f" : "%.17g",
                                             coordinates ? 700000 + i * 41.13 : 1.0 / (3 + i));
            places[i] = {buffer.size(), static_cast<size_t>(length)};
            buffer.append(text, static_cast<size_t>(length) + 1);
        }
        buffer.append(room, ' ');
    }
    static constexpr int count = 1000;
    std::string_view operator[](int i) const {
        return std::string_view(buffer).substr(places[i].start, places[i].length);
    }

  private:
    static constexpr size_t room = 64;
    struct Place {
        size_t start, length;
    };
    std::string buffer;
    Place places[count];
};

template <class Convert>
void ConvertAll(benchmark::State& state, Convert convert) {
    const Numbers numbers(state.range(0) == 0);
    for (auto _ : state) {
        double sum = 0;
        for (int i = 0; i < Numbers::count; ++i) sum += convert(numbers[i]);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * Numbers::count);
}

void NumbersInReader(benchmark::State& state) {
    ConvertAll(state, [](std::string_view text) { return ParseBufferedReal(text); });
}
BENCHMARK(NumbersInReader)->Arg(0)->Arg(1);

// Two by two, as the reader takes points.
void PointsInReader(benchmark::State& state) {
    const Numbers numbers(true);
    for (auto _ : state) {
        double sum = 0;
        for (int i = 0; i < Numbers::count; i += 2) {
            double first = 0, second = 0;
            if (!numbers::ParsePlainPair(numbers[i], numbers[i + 1], first, second)) std::abort();
            sum += first + second;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * Numbers::count);
}
BENCHMARK(PointsInReader);

void NumbersAnywhere(benchmark::State& state) {
    ConvertAll(state, [](std::string_view text) { return ParseReal(text); });
}
BENCHMARK(NumbersAnywhere)->Arg(0)->Arg(1);

void NumbersStrtod(benchmark::State& state) {
    ConvertAll(state, [](std::string_view text) { return std::strtod(text.data(), nullptr); });
}
BENCHMARK(NumbersStrtod)->Arg(0)->Arg(1);

void NumbersFromChars(benchmark::State& state) {
    ConvertAll(state, [](std::string_view text) {
        double value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        return value;
    });
}
BENCHMARK(NumbersFromChars)->Arg(0)->Arg(1);

}  // namespace

BENCHMARK_MAIN();
