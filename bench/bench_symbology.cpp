// Symbology tables far larger than any that is in use, and the lookups that an import makes for every
// element.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <unordered_map>
#include <vector>

#include "framework/framework.h"
#include "support/code_index.h"
#include "tables/kokes_tables.h"

namespace {

using vemrado::CKokesTables;

constexpr int codeCount = 1'000'000;
constexpr int collidingCodeCount = 20'000;
constexpr int colourCount = 100'000;
constexpr int drawingCount = 60'000;

std::string Word(int value) {
    return {static_cast<char>(value & 255), static_cast<char>(value >> 8 & 255)};
}

// A symbology directory with small files; each measurement puts one large file in.
class Symbology {
  public:
    Symbology() : root(std::filesystem::temp_directory_path() / "vemrado-bench-symbology") {
        std::filesystem::create_directories(root / "VKMSym");
        Write("WKOKES.COL", "[white]\n1=1,2,3\n[width]\n");
        Write("WKOKES.CAR", "1 1 -2\n-2 1 1\n");
        Write("DKM1_3.TB", ":L\n1 1\n:S\n1 1\n");
        Write("WKOKES.SYM", "a\n1\n");
        Write("a.ksh", "\xC4\x4A\xB1\x29");
        FrameworkSetDataDirectory(root.c_str());
        FrameworkSetMessageBoxHandler([](void*, const char*, unsigned int) { return 1; }, nullptr);
    }
    ~Symbology() { std::filesystem::remove_all(root); }
    Symbology(const Symbology&) = delete;
    Symbology& operator=(const Symbology&) = delete;

    void Write(const char* name, const std::string& text) {
        std::ofstream(root / "VKMSym" / name, std::ios::binary) << text;
    }

  private:
    std::filesystem::path root;
};

std::string CodeLines(int count = codeCount, int step = 1) {
    std::string text = ":L\n";
    for (int i = 1; i <= count; ++i) text += std::to_string(int64_t{i} * step) + " 1\n";
    return text;
}

// The step at which codes share one bucket of the standard map.
int CollidingStep() {
    std::unordered_map<int, int> codes;
    codes.rehash(vemrado::bucketCountWhenRead);
    for (int i = 0; i < collidingCodeCount; ++i) codes[i] = i;
    return static_cast<int>(codes.bucket_count());
}

void LoadCodeTable(benchmark::State& state) {
    Symbology symbology;
    symbology.Write("DKM1_3.TB",
                    state.range(0) == 0 ? CodeLines() : CodeLines(collidingCodeCount, CollidingStep()));
    for (auto _ : state) {
        CKokesTables tables;
        tables.Load(0);
    }
}
BENCHMARK(LoadCodeTable)->ArgName("colliding")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void LoadColours(benchmark::State& state) {
    const bool descending = state.range(0) != 0;
    std::string text = "[white]\n";
    for (int i = 0; i < colourCount; ++i) {
        text += std::to_string(descending ? colourCount - 1 - i : i) + "=1,2,3\n";
    }
    Symbology symbology;
    symbology.Write("WKOKES.COL", text + "[width]\n");
    for (auto _ : state) {
        CKokesTables tables;
        tables.Load(0);
    }
}
BENCHMARK(LoadColours)->ArgName("descending")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// What the same entries cost when each is inserted by itself.
void InsertDescendingColoursOneByOne(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<uint32_t> colours(256);
        colours.resize(colourCount);
        for (int i = 1; i < colourCount; ++i) colours.insert(colours.begin() + (colourCount - 1 - i), 1);
        benchmark::DoNotOptimize(colours.data());
    }
}
BENCHMARK(InsertDescendingColoursOneByOne)->Unit(benchmark::kMillisecond)->Iterations(1);

void LoadShapes(benchmark::State& state) {
    std::string bytes = "\xC4\x4A\xB1\x29";
    const std::string drawing = "SYM$=" + Word(6 + 2 + 40) + Word(0) + Word(0) + Word(1) + Word(10);
    for (int i = 0; i < drawingCount; ++i) {
        bytes += drawing;
        for (int j = 0; j < 10; ++j) bytes += Word(i + j) + Word(j);
    }
    Symbology symbology;
    symbology.Write("a.ksh", bytes);
    for (auto _ : state) {
        CKokesTables tables;
        tables.Load(1);
        if (tables.GetSymbolPattern(1) == 0) state.SkipWithError("no symbol");
    }
}
BENCHMARK(LoadShapes)->Unit(benchmark::kMillisecond)->Iterations(20);

// Random codes of a table.
void AskStyles(benchmark::State& state, const std::string& codeLines, int codes, int step) {
    Symbology symbology;
    if (!codeLines.empty()) symbology.Write("DKM1_3.TB", codeLines);
    CKokesTables tables;
    tables.Load(0);
    uint32_t random = 0;
    for (auto _ : state) {
        uint32_t colour = 0;
        int32_t pattern = 0;
        random = random * 1664525 + 1013904223;
        const auto code = static_cast<int32_t>(1 + random % static_cast<uint32_t>(codes)) * step;
        benchmark::DoNotOptimize(tables.GetLineStyle(code, colour, pattern));
    }
}

void LineStyle(benchmark::State& state) {
    AskStyles(state, "", 1, 1);
}
BENCHMARK(LineStyle);

void LineStyleOfManyCodes(benchmark::State& state) {
    AskStyles(state, CodeLines(), codeCount, 1);
}
BENCHMARK(LineStyleOfManyCodes);

void LineStyleOfCollidingCodes(benchmark::State& state) {
    const int step = CollidingStep();
    AskStyles(state, CodeLines(collidingCodeCount, step), collidingCodeCount, step);
}
BENCHMARK(LineStyleOfCollidingCodes);

void Symbol(benchmark::State& state) {
    Symbology symbology;
    symbology.Write("a.ksh", "\xC4\x4A\xB1\x29SYM$=" + Word(6) + Word(0) + Word(0) + Word(0));
    CKokesTables tables;
    tables.Load(1);
    for (auto _ : state) benchmark::DoNotOptimize(tables.GetSymbolPattern(1));
}
BENCHMARK(Symbol);

}  // namespace

BENCHMARK_MAIN();
