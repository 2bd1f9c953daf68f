/* A host in C99: writes the digest of a map. */

#include <stdio.h>

#include "digest.h"

int main(int argc, char** argv) {
    printf("%llu\n", argc > 1 ? digest_of(argv[1]) : 0);
    return 0;
}
