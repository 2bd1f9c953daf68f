// A host in C++17: writes the digest of a map, element by element through the C++ interface.

#include <cstdio>

#include "digest.h"
#include "vemrado/vkm.hpp"

int main(int argc, char** argv) {
    digest_t digest = 14695981039346656037ULL;
    try {
        for (const vkm::Element& element : vkm::Reader(argc > 1 ? argv[1] : ""))
            digest = add_element(digest, &element.Raw());
    } catch (const vkm::Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        digest = digest_of("");
    }
    std::printf("%llu\n", digest);
}
