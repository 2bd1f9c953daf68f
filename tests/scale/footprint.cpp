// Imports a file and prints its number of elements and the peak of the process's resident set in KiB.

#include <sys/resource.h>

#include <cstdio>

#include "vemrado/vkm_details.h"

int main(int argc, char** argv) {
    CVKMDetails* vkm = VkmDetails(CreateVKMInterface());
    if (argc < 2 || !vkm || !vkm->Open(argv[1], 0, "", 1, 0.0, CVKMInterface::flgSymbolsNone)) return 1;
    long long elements = 0;
    while (vkm->ReadNext() != 0) ++elements;
    const bool complete = vkm->IsComplete() != 0;
    CVKMInterface::DestroyVKMInterface(vkm);
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%lld %ld\n", elements, usage.ru_maxrss);
    return complete ? 0 : 1;
}
