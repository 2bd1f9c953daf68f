/* A number that stands for everything that an element says, the same from every host. C99 without a library.
 */

#include "vemrado/vkm.h"

typedef unsigned long long digest_t;

static digest_t add_bytes(digest_t digest, const void* bytes, size_t count) {
    const unsigned char* byte = (const unsigned char*)bytes;
    for (size_t i = 0; i < count; i++) digest = (digest ^ byte[i]) * 1099511628211ULL;
    return digest;
}

static digest_t add_text(digest_t digest, const char* text) {
    size_t length = 0;
    while (text[length] != 0) length++;
    return add_bytes(digest, text, length);
}

static digest_t add_element(digest_t digest, const vkm_element* e) {
    const size_t n = e->point_count;
    digest = add_bytes(digest, &e->layer, sizeof e->layer);
    digest = add_bytes(digest, e->points, n * 2 * sizeof(double));
    if (e->kind == VKM_TEXT) return add_bytes(add_text(digest, e->text), &e->height, sizeof e->height);
    digest = add_bytes(digest, e->types, n);
    for (size_t i = 0; i < n; i++) digest = add_text(digest, e->codes[i]);
    digest = add_bytes(digest, e->symbols, n * sizeof(int32_t));
    return add_bytes(digest, e->u_values, n * sizeof(double));
}

/* 0 when the map cannot be read. */
static digest_t digest_of(const char* path) {
    digest_t digest = 14695981039346656037ULL;
    const vkm_element* element;
    vkm_reader* reader = vkm_open(path, 0, 0);
    vkm_status status;
    while ((status = vkm_next(reader, &element, 0)) == VKM_OK) digest = add_element(digest, element);
    vkm_close(reader);
    return status == VKM_END ? digest : 0;
}
