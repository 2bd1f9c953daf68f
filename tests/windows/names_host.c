/* A host whose process has the system's own code page gives names as UTF-8: reads a map, draws it, and counts
 * the point symbols of the symbology beside the library. */

#include <stdio.h>

#include "vemrado/vkm.h"

int main(void) {
    vkm_error* error = NULL;
    const int32_t* codes = NULL;
    size_t count = 0;
    vkm_reader* reader =
        vkm_open("p\xC5\x99\xC3\xADli\xC5\xA1 \xC5\xBElu\xC5\xA5ou\xC4\x8Dk\xC3\xBD.vkm", NULL, &error);
    if (reader) vkm_symbol_codes(reader, &codes, &count, &error);
    if (reader) vkm_render(reader, NULL, "m\xC4\x9Bsto.svg", &error);
    printf("%u symbols. %s\n", (unsigned)count, vkm_error_text(error));
    vkm_error_free(error);
    vkm_close(reader);
    return 0;
}
