/* Reads a map element by element through the C interface. */

#include <stdio.h>

#include <vemrado/vkm.h>

int main(int argc, char** argv) {
    vkm_error* error = NULL;
    const vkm_element* element;
    vkm_reader* reader = vkm_open(argc > 1 ? argv[1] : "map.vkm", NULL, &error);
    while (reader && vkm_next(reader, &element, &error) == VKM_OK) {
        printf("layer %d: ", (int)element->layer);
        if (element->kind == VKM_TEXT) {
            printf("%s\n", element->text);
        } else if (element->point_count > 0) {
            const double* last = element->points + 2 * (element->point_count - 1);
            printf("%u points to %.2f %.2f\n", (unsigned)element->point_count, last[0], last[1]);
        }
    }
    const int failed = error != NULL;
    if (failed) fprintf(stderr, "%s\n", vkm_error_text(error)); /* with file and line */
    vkm_error_free(error);
    vkm_close(reader);
    return failed;
}
