// libFuzzer's entry points. The environment variable VEMRADO_FUZZ_TARGET names the target.

#include <cstddef>
#include <cstdint>

#include "targets.h"

namespace {

const vemrado_fuzz::Target* chosen = nullptr;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    const char* name = std::getenv("VEMRADO_FUZZ_TARGET");
    chosen = vemrado_fuzz::FindTarget(name != nullptr ? name : "");
    if (chosen != nullptr) return 0;
    std::fprintf(stderr, "VEMRADO_FUZZ_TARGET must be one of:\n");
    for (const auto* target = vemrado_fuzz::Target::first; target != nullptr; target = target->next) {
        std::fprintf(stderr, "  %s\n", target->name);
    }
    std::exit(2);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    chosen->run(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
