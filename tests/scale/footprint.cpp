// Imports a file and prints its number of elements and the peak of the process's resident set in KiB.

#include <cstdio>
#include <fstream>
#include <string>

#include "vemrado/vkm_details.h"

// The kernel's getrusage would count the program that started this one as well.
static long PeakKibibytes() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        long peak = 0;
        if (word == "VmHWM:" && status >> peak) return peak;
    }
    return -1;
}

int main(int argc, char** argv) {
    CVKMDetails* vkm = VkmDetails(CreateVKMInterface());
    if (argc < 2 || !vkm || !vkm->Open(argv[1], 0, "", 1, 0.0, CVKMInterface::flgSymbolsNone)) return 1;
    long long elements = 0;
    while (vkm->ReadNext() != 0) ++elements;
    const bool complete = vkm->IsComplete() != 0;
    CVKMInterface::DestroyVKMInterface(vkm);
    std::printf("%lld %ld\n", elements, PeakKibibytes());
    return complete ? 0 : 1;
}
