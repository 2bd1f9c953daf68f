// The sample symbology and the sample map: opening, lookups, and the pool against malloc on the allocations
// that the module makes while it loads the one and reads the other.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "framework/framework.h"
#include "interface/importer.h"
#include "support/memory_pool.h"
#include "vemrado/vkm_details.h"

using vemrado::CMemoryPool;

// The pool's own Alloc and Free: the linker leads all other calls of them to the recorder (--wrap).
extern "C" {
void* __real__ZN7vemrado11CMemoryPool5AllocEj(CMemoryPool* pool, uint32_t size);
int __real__ZN7vemrado11CMemoryPool4FreeEPv(CMemoryPool* pool, void* block);
}

namespace {

const std::string dataDirectory = VEMRADO_DATA_DIRECTORY;

class SampleMap {
  public:
    SampleMap() : vkm(VkmDetails(vemrado::CreateImporter())) {
        FrameworkSetDataDirectory((dataDirectory + "/symbology").c_str());
        if (vkm == nullptr || vkm->Open((dataDirectory + "/sample-town.vkm").c_str(), 1, "", 1, 0.0,
                                        CVKMInterface::flgSymbols) == 0) {
            throw std::runtime_error("cannot open the sample map");
        }
    }
    ~SampleMap() { vemrado::DestroyImporter(vkm); }
    SampleMap(const SampleMap&) = delete;
    SampleMap& operator=(const SampleMap&) = delete;
    CVKMDetails* operator->() const { return vkm; }

  private:
    CVKMDetails* vkm;
};

// Everything that a program which draws the map asks of it.
void DrawAll(SampleMap& map) {
    while (const int kind = map->ReadNext()) {
        for (int i = 0; kind == 1 && i < map->GetElementCount(); ++i) {
            unsigned int colour = 0;
            int pattern = 0;
            benchmark::DoNotOptimize(map->GetElementLineStyle(i, &colour, &pattern));
            benchmark::DoNotOptimize(map->GetElementSymbol(i));
        }
    }
}

// --- Opening and lookups ---

void Open(benchmark::State& state) {
    for (auto _ : state) SampleMap map;
}
BENCHMARK(Open)->Unit(benchmark::kMicrosecond);

// The first element of the map for which the lookup finds something, and then that lookup again and again.
template <class Lookup>
void LookUpAgain(benchmark::State& state, Lookup lookup) {
    SampleMap map;
    int index = -1;
    while (index < 0) {
        const int kind = map->ReadNext();
        if (kind == 0) return state.SkipWithError("the map has no such element");
        for (int i = 0; kind == 1 && index < 0 && i < map->GetElementCount(); ++i) {
            if (lookup(*map.operator->(), i) != 0) index = i;
        }
    }
    for (auto _ : state) benchmark::DoNotOptimize(lookup(*map.operator->(), index));
}

void Style(benchmark::State& state) {
    LookUpAgain(state, [](CVKMDetails& vkm, int index) {
        unsigned int colour = 0;
        int pattern = 0;
        return vkm.GetElementLineStyle(index, &colour, &pattern);
    });
}
BENCHMARK(Style);

void Symbol(benchmark::State& state) {
    LookUpAgain(state, [](CVKMDetails& vkm, int index) { return vkm.GetElementSymbol(index); });
}
BENCHMARK(Symbol);

// --- The pool on the module's own allocations ---

struct Step {
    int32_t pool;   // 0: mainPool, 1: stringPool
    uint32_t size;  // 0: a block is given back
    size_t block;   // by its number in the order of allocation
};

class Recorder {
  public:
    void Allocated(const CMemoryPool* pool, uint32_t size, const void* block) {
        if (block == nullptr) return;
        living[block] = blocks;
        steps.push_back({PoolNumber(pool), size, blocks++});
    }
    void Freed(const CMemoryPool* pool, const void* block) {
        const auto found = living.find(block);
        if (found == living.end()) return;
        steps.push_back({PoolNumber(pool), 0, found->second});
        living.erase(found);
    }

    std::vector<Step> steps;
    size_t blocks = 0;

  private:
    static int32_t PoolNumber(const CMemoryPool* pool) { return pool == &vemrado::mainPool ? 0 : 1; }

    std::unordered_map<const void*, size_t> living;
};

Recorder* recorder = nullptr;

const Recorder& SampleSteps() {
    static const Recorder recorded = [] {
        Recorder steps;
        recorder = &steps;
        {
            SampleMap map;
            DrawAll(map);
        }
        recorder = nullptr;
        return steps;
    }();
    return recorded;
}

template <class Allocate, class Free>
void Replay(benchmark::State& state, Allocate allocate, Free free) {
    const Recorder& recorded = SampleSteps();
    std::vector<void*> blocks(recorded.blocks);
    for (auto _ : state) {
        for (const Step& step : recorded.steps) {
            if (step.size != 0) {
                blocks[step.block] = allocate(step.pool, step.size);
            } else {
                free(step.pool, blocks[step.block]);
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(recorded.steps.size()));
    state.counters["blocks"] = static_cast<double>(recorded.blocks);
}

void ReplayInPools(benchmark::State& state, CMemoryPool* pools) {
    Replay(
        state,
        [&](int32_t pool, uint32_t size) {
            return __real__ZN7vemrado11CMemoryPool5AllocEj(&pools[pool], size);
        },
        [&](int32_t pool, void* block) { __real__ZN7vemrado11CMemoryPool4FreeEPv(&pools[pool], block); });
}

void PoolOnSample(benchmark::State& state) {
    CMemoryPool pools[] = {CMemoryPool("main"), CMemoryPool("string")};
    ReplayInPools(state, pools);
}
BENCHMARK(PoolOnSample)->Unit(benchmark::kMicrosecond);

// Without the system's part: a small block keeps a region with room for everything, so that none is asked for
// and none goes back.
void HeldPoolOnSample(benchmark::State& state) {
    constexpr uint32_t room = 1 << 20;
    CMemoryPool pools[] = {CMemoryPool("main"), CMemoryPool("string")};
    for (CMemoryPool& pool : pools) {
        void* all = pool.Alloc(room);
        pool.Alloc(4);
        pool.Free(all);
    }
    ReplayInPools(state, pools);
}
BENCHMARK(HeldPoolOnSample)->Unit(benchmark::kMicrosecond);

void MallocOnSample(benchmark::State& state) {
    Replay(
        state,
        [](int32_t, uint32_t size) {
            void* block = std::malloc(size);
            benchmark::DoNotOptimize(block);
            return block;
        },
        [](int32_t, void* block) { std::free(block); });
}
BENCHMARK(MallocOnSample)->Unit(benchmark::kMicrosecond);

}  // namespace

extern "C" {
void* __wrap__ZN7vemrado11CMemoryPool5AllocEj(CMemoryPool* pool, uint32_t size) {
    void* block = __real__ZN7vemrado11CMemoryPool5AllocEj(pool, size);
    if (recorder != nullptr) recorder->Allocated(pool, size, block);
    return block;
}

int __wrap__ZN7vemrado11CMemoryPool4FreeEPv(CMemoryPool* pool, void* block) {
    if (recorder != nullptr) recorder->Freed(pool, block);
    return __real__ZN7vemrado11CMemoryPool4FreeEPv(pool, block);
}
}

BENCHMARK_MAIN();
