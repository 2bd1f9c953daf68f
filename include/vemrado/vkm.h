/* Vemrado's C interface: reads VKM files, the text exchange format of digital cadastral maps.
 *
 *     vkm_error* error = NULL;
 *     vkm_reader* reader = vkm_open("map.vkm", NULL, &error);
 *     const vkm_element* element;
 *     while (vkm_next(reader, &element, &error) == VKM_OK)
 *         printf("layer %d, %zu points\n", (int)element->layer, element->point_count);
 *     if (error) fprintf(stderr, "%s\n", vkm_error_text(error));
 *     vkm_error_free(error);
 *     vkm_close(reader);
 *
 * Conventions
 *   strings      UTF-8, zero-terminated, names of files too. Texts and codes of a map are decoded from its
 *                encoding; a byte without a character becomes U+FFFD and is counted (vkm_bad_bytes).
 *   points       x and y in one array of doubles, in the map's unit (metres), turned by the axis orientation
 *   rotations    as they stand in the file: gons, counter-clockwise, where its writer keeps to the custom
 *   sizes        millimetres on paper at the map's own scale, unless said otherwise
 *   colour       red + green * 256 + blue * 65536
 *   structures   of options say their own size first, so that they can grow: the matching vkm_..._init sets
 * it and the defaults. Structures that a function fills in get their size from the caller: the library writes
 * no more than that. What the library hands out (vkm_element and so on) grows at its end.
 *
 * Failures
 *   A function that can fail returns a status, below 0 for a failure, or a null pointer. Where the last
 * argument `error` is not null and *error is null, *error becomes an object that says what happened in one
 * sentence with file and line; the caller frees it. *error is left alone on success, and when there is no
 * memory for an object. Nothing throws, aborts, prints, shows a box or changes a setting of the process;
 * every bad argument is VKM_ERROR_ARGUMENT. A null reader is one.
 *
 * Threads
 *   One reader, and one stream, serves one thread at a time; different ones run side by side, those of one
 * source too. There is no state of the process.
 *
 * Lifetimes
 *   What vkm_next hands out stays valid until the next call of vkm_next, vkm_rewind or vkm_close for this
 * reader; everything else that belongs to a reader until vkm_close. Streams live on their own: a reader may
 * be closed before they are released.
 *
 * See docs/c-and-cpp.md; the same for C++ is vkm.hpp.
 */

#ifndef VEMRADO_VKM_H
#define VEMRADO_VKM_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#if defined(VKM_BUILDING_LIBRARY)
#define VKM_API __declspec(dllexport)
#else
#define VKM_API __declspec(dllimport)
#endif
#else
#define VKM_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* --- The library --- */

/* Version of this header; vkm_version is that of the library, "1.0.0". */
#define VKM_VERSION_MAJOR 1
#define VKM_VERSION_MINOR 0
VKM_API const char* vkm_version(void);

typedef int32_t vkm_status;
enum {
    VKM_OK = 0,
    VKM_END = 1,     /* no element is left */
    VKM_NOTHING = 2, /* there is no such thing: a code that the symbology lacks, the extent of an empty map */
    VKM_INCOMPLETE = 3, /* of a warning alone: the closing record is missing, so the last element is lost */

    VKM_ERROR_ARGUMENT = -1,    /* a bad argument or order of calls */
    VKM_ERROR_MEMORY = -2,      /* out of memory */
    VKM_ERROR_OPEN = -3,        /* the source cannot be opened */
    VKM_ERROR_READ = -4,        /* reading failed in the middle of the source */
    VKM_ERROR_WRITE = -5,       /* an output cannot be written */
    VKM_ERROR_STOPPED = -6,     /* a callback asked to stop */
    VKM_ERROR_UNSUPPORTED = -7, /* this build of the library cannot do that; the text says what brings it */
    VKM_ERROR_INTERNAL = -8     /* a fault of the library */
};

/* "out of memory" and so on; never null. */
VKM_API const char* vkm_status_text(vkm_status status);

typedef struct vkm_error vkm_error;

/* Of null VKM_OK; the next ones give "" and 0 for it. Of a warning VKM_INCOMPLETE, or VKM_OK where there is
 * no status of its own. */
VKM_API vkm_status vkm_error_status(const vkm_error* error);
/* One sentence that names file, line and reason: "map.vkm, line 812: Input/output error". */
VKM_API const char* vkm_error_text(const vkm_error* error);
VKM_API const char* vkm_error_file(const vkm_error* error); /* "" where no file has to do with it */
VKM_API uint64_t vkm_error_line(const vkm_error* error);    /* from 1; 0: none */
VKM_API void vkm_error_free(vkm_error* error);

/* --- Options --- */

/* Gets what is wrong with a map or its symbology but stops nothing: problems of the tables, a missing closing
 * record, bytes without a character, points left out. The object is valid during the call. */
typedef void (*vkm_on_warning)(void* context, const vkm_error* warning);
/* Called now and then while a source is read, with the part that has been read, 0 to 1, or below 0 where the
 * length is not known; not 0 stops with VKM_ERROR_STOPPED. */
typedef int32_t (*vkm_on_progress)(void* context, double part);

typedef int32_t vkm_angle_unit;
enum { VKM_GON = 0, VKM_DEGREE = 1, VKM_RADIAN = 2 };

/* Strings and arrays are copied by the functions that take options. */
typedef struct vkm_options {
    size_t size; /* of this structure */

    /* "windows-1250" (also for null), "cp852", "iso-8859-2", "utf-8". */
    const char* encoding;
    /* What a point (x, y) of the file becomes: "-y,-x" (also for null: x to the east, y to the north), "x,y"
     * and so on, or a code from 1 to 128 in digits. */
    const char* orientation;
    /* Directory that holds VKMSym; null: the sample symbology of the installation, whose absence is no
     * failure; "": none. */
    const char* symbology;
    /* Reference system of the columns, "EPSG:5514" or PROJJSON. Null: EPSG:5514 with the orientation "-y,-x",
     * otherwise none; "": none. */
    const char* crs;
    /* Layers of the file to read; null: all. */
    const int32_t* layers;
    size_t layer_count;

    int32_t split_by_code; /* 1: strokes are split where the code changes; 0: they have their first code */
    int32_t parcel_layer;  /* of the file, with the boundary lines: 1 */
    int32_t number_layer;  /* of the file, with the parcels' numbers: 2 */
    uint32_t batch_rows;   /* most rows of a batch of columns: 65536 */
    vkm_angle_unit angle_unit; /* of the file's rotations, for drawings: VKM_GON */

    /* Called by the thread that is in a function of the library, for streams too; null: nobody wants to know.
     * The context must be valid until reader and streams are gone. */
    vkm_on_warning on_warning;
    vkm_on_progress on_progress;
    void* callback_context;
} vkm_options;

VKM_API void vkm_options_init(vkm_options* options);

/* --- Sources --- */

typedef struct vkm_reader vkm_reader;

/* Opens a file. Null options are the defaults. Null on failure. */
VKM_API vkm_reader* vkm_open(const char* path, const vkm_options* options, vkm_error** error);

/* Reads from memory, which is not copied. The name stands in messages; null: "memory". Release, unless null,
 * is called with the context once reader and streams have done with the memory; at once on failure. */
VKM_API vkm_reader* vkm_open_memory(const void* data, size_t length, const char* name,
                                    const vkm_options* options, void (*release)(void* context), void* context,
                                    vkm_error** error);

/* A source of the caller's own, which can be opened again: each of reader, streams and the functions that
 * read the whole map has a file of its own. The functions are called by the thread that is in the library. */
typedef struct vkm_source {
    size_t size; /* of this structure */
    void* context;
    void* (*open)(void* context);                                  /* a file; null: it cannot be opened */
    int64_t (*read)(void* file, void* destination, size_t length); /* bytes read, 0 at the end, -1: failed */
    int64_t (*length)(void* file);                                 /* 0: not known; null: never */
    void (*close)(void* file);                                     /* may be null */
    void (*release)(void* context);                                /* as for vkm_open_memory; may be null */
} vkm_source;

VKM_API vkm_reader* vkm_open_source(const vkm_source* source, const char* name, const vkm_options* options,
                                    vkm_error** error);

/* Null is ignored. */
VKM_API void vkm_close(vkm_reader* reader);

/* What the header of the map says. */
typedef struct vkm_header {
    size_t size;      /* set by the caller */
    double scale;     /* map scale number; 1000 when the file gives none */
    int32_t relative; /* 1: the file's coordinates are relative to an origin (the points here are absolute) */
    double origin[2]; /* added to the file's first and second coordinate where they are relative */
    const char* name; /* the word of the V record; "" without it */
    const char* date; /* what stands behind the mark of the D record; "" without it */
    const char* comments; /* a line each, without the mark; "" without any */
    const char* crs;      /* reference system as in vkm_options: "" when there is none */
} vkm_header;

VKM_API vkm_status vkm_get_header(vkm_reader* reader, vkm_header* header, vkm_error** error);

/* --- Elements --- */

typedef int32_t vkm_kind;
enum { VKM_LINE = 1, VKM_TEXT = 2 };

/* A run of two points or more, which straight segments connect. Type P begins one. */
typedef struct vkm_stroke {
    size_t first; /* place of its first point */
    size_t count;
    int32_t code; /* code in force on it as a number, 0 for none; with split_by_code 0 that of its first
                     segment */
} vkm_stroke;

/* One line, or one text. Arrays have point_count entries and are null when that is 0, and those that are for
 * the other kind are null too. Elements without a type letter have no point of their own in the file: their
 * values are those of the element before. */
typedef struct vkm_element {
    vkm_kind kind;
    int32_t layer;
    const char* layer_name;
    uint64_t file_line; /* line of the file on which it begins, from 1 */

    size_t point_count;
    const double* points; /* x, y, x, y, ...; of a text its insertion point */

    /* Of lines. */
    const char* types;           /* type letters C, K, L, P, R, '?' for any other; zero-terminated */
    const char* const* codes;    /* code as it stands in the file [K]; "" for none */
    const int32_t* code_numbers; /* the same as numbers; 0 for none */
    const int32_t* pen_codes;    /* code in force: the vertex's own or the last one before; 0 for none */
    const int32_t* symbols;      /* symbol code [S], 0 for none */
    const double* m_values;      /* scale of the symbol [M], 1 for none */
    const double* r_values;      /* R value [R], 0 for none */
    const double* u_values;      /* rotation of the symbol [U], 0 for none */
    const vkm_stroke* strokes;   /* null when there are none */
    size_t stroke_count;

    /* Of texts. */
    const char* text;   /* null for a line */
    size_t text_length; /* bytes */
    int32_t code;       /* [K], 0 for none */
    int32_t d_value;    /* [D] */
    int32_t f_value;    /* [F] */
    double height;      /* on the ground in metres: size [H] times map scale / 1000 */
    double rotation;    /* [U] */
    int32_t anchor;     /* side or corner of the text at its point, 1 to 9 as on a numeric keypad */
    int32_t face;       /* bits: 1 serif, 2 bold, 4 italic */
} vkm_element;

/* The next element of the layers that were asked for: VKM_OK, or VKM_END. After a failure every further call
 * fails in the same way. */
VKM_API vkm_status vkm_next(vkm_reader* reader, const vkm_element** element, vkm_error** error);

/* Goes back before the first element. */
VKM_API vkm_status vkm_rewind(vkm_reader* reader, vkm_error** error);

/* 1 once the closing record has been read: no element was lost at the end of the file. */
VKM_API int32_t vkm_complete(const vkm_reader* reader);
/* Bytes of texts and codes read by vkm_next that make no character of the encoding. */
VKM_API uint64_t vkm_bad_bytes(const vkm_reader* reader);
/* Points left out by vkm_next because a coordinate is no finite number. */
VKM_API uint64_t vkm_left_out(const vkm_reader* reader);

/* Smallest and largest x and y of all points, { min x, min y, max x, max y }, by a pass of its own over the
 * source, after which it is known. VKM_NOTHING, and the box untouched, when there are no points. */
VKM_API vkm_status vkm_extent(vkm_reader* reader, double box[4], vkm_error** error);

/* --- Symbology --- */

/* How lines of a code are drawn. */
typedef struct vkm_line_style {
    size_t size;      /* set by the caller */
    const char* name; /* "" when the tables give none */
    uint32_t colour;
    int32_t visible; /* 0: its dash pattern is all gaps */
    double width;
    const double* dashes; /* drawn, gap, drawn, gap, ...; even in number */
    size_t dash_count;    /* 0: continuous */
} vkm_line_style;

/* A point symbol around its insertion point at 0 0, y up. */
typedef struct vkm_symbol {
    size_t size; /* set by the caller */
    const char* name;
    const double* points; /* x, y, ... of all strokes */
    size_t point_count;
    const uint32_t* strokes; /* places of their first points */
    size_t stroke_count;
    double bounds[4]; /* { min x, min y, max x, max y }, the insertion point among them */
} vkm_symbol;

/* VKM_NOTHING, and the structure untouched but for its size, for a code that the symbology lacks. */
VKM_API vkm_status vkm_get_line_style(vkm_reader* reader, int32_t code, vkm_line_style* style,
                                      vkm_error** error);
VKM_API vkm_status vkm_get_symbol(vkm_reader* reader, int32_t code, vkm_symbol* symbol, vkm_error** error);
/* All codes of the symbology, in the order of its tables. */
VKM_API vkm_status vkm_line_codes(vkm_reader* reader, const int32_t** codes, size_t* count,
                                  vkm_error** error);
VKM_API vkm_status vkm_symbol_codes(vkm_reader* reader, const int32_t** codes, size_t* count,
                                    vkm_error** error);

/* --- Columns --- */

/* Of the Arrow C data and stream interfaces; vkm_arrow.h has them for those who have no other. */
struct ArrowSchema;
struct ArrowArray;
struct ArrowArrayStream;

typedef int32_t vkm_table;
enum { VKM_LINES = 0, VKM_POINTS = 1, VKM_TEXTS = 2, VKM_PARCELS = 3 };

/* Fills in a stream of record batches over one of the tables, with the columns of docs/gis.md (and the
 * geometry in the column "geometry" as GeoArrow). It reads the source from its beginning, apart from the
 * reader, and in constant memory, but parcels. The caller releases it as the Arrow interface says. It warns
 * of what the table takes: of bytes in texts only where it has texts. */
VKM_API vkm_status vkm_stream(vkm_reader* reader, vkm_table table, struct ArrowArrayStream* stream,
                              vkm_error** error);

/* The same for several tables in one passage over the source, which takes the time of one: streams[i] is that
 * of tables[i]. What one stream reads past, the others keep until they are asked for it, so take batches in
 * turn where the map is large. A stream that is released keeps nothing. The streams of one passage may be
 * used by different threads; they wait for each other, so a warning or progress callback must not call one of
 * them. */
VKM_API vkm_status vkm_streams(vkm_reader* reader, const vkm_table* tables, size_t count,
                               struct ArrowArrayStream* streams, vkm_error** error);

/* A table that has been read: batches in memory. */
typedef struct vkm_columns vkm_columns;

/* Reads a stream to its end and releases it, whatever comes of it. Null on failure. */
VKM_API vkm_columns* vkm_columns_read(struct ArrowArrayStream* stream, vkm_error** error);
/* What it has, to look at: valid until vkm_columns_free, and the caller's to leave as it is. Null for null,
 * and for a batch that is not there. */
VKM_API const struct ArrowSchema* vkm_columns_schema(const vkm_columns* columns);
VKM_API size_t vkm_columns_count(const vkm_columns* columns); /* of batches */
VKM_API const struct ArrowArray* vkm_columns_batch(const vkm_columns* columns, size_t number);

/* Fills in a stream over the batches of one or more tables that have the same columns, without a copy: what
 * it hands out keeps the memory of its batch, for itself, whatever is freed before. A name adds a column of
 * texts, the last, which has texts[i] in all rows of tables[i]: "u", or "U" where a batch would have 2 GB of
 * them. Any number of streams may be made of one table, in any thread. */
VKM_API vkm_status vkm_columns_stream(const vkm_columns* const* tables, size_t count, const char* name,
                                      const char* const* texts, struct ArrowArrayStream* stream,
                                      vkm_error** error);

/* Null is ignored. */
VKM_API void vkm_columns_free(vkm_columns* columns);

/* --- Pictures --- */

/* Takes the next bytes of an output; not 0 ends with VKM_ERROR_WRITE. */
typedef int32_t (*vkm_write)(void* context, const void* bytes, size_t length);

typedef struct vkm_picture {
    size_t size;        /* of this structure */
    const char* format; /* "svg", "png" or "pdf"; null: by the ending of the output's name */
    int32_t width;      /* pixels; 0: as large as on paper */
    double dpi;         /* 150 */
    int32_t legend;     /* 1: frame, title, grid, scale bar, north arrow and legend around the map */
    const char* title;  /* null: the name of the source */
    const double* box;  /* what the map shows, { min x, min y, max x, max y }; null: everything */
    int32_t symbols;    /* 1; 0: none are drawn */
} vkm_picture;

VKM_API void vkm_picture_init(vkm_picture* picture);

/* Draws the map as `vkm render` does. A file appears whole or not at all. SVG needs nothing; PNG
 * and PDF need vkm-draw.so beside this library and cairo on the machine, and are VKM_ERROR_UNSUPPORTED
 * without them. */
VKM_API vkm_status vkm_render(vkm_reader* reader, const vkm_picture* picture, const char* path,
                              vkm_error** error);
VKM_API vkm_status vkm_render_to(vkm_reader* reader, const vkm_picture* picture, vkm_write write,
                                 void* context, vkm_error** error);

/* --- Check and comparison --- */

typedef int32_t vkm_severity;
enum { VKM_NOTE = 0, VKM_WARNING = 1, VKM_FAULT = 2 };

typedef struct vkm_finding {
    const char* rule; /* "number-cut" */
    vkm_severity severity;
    const char* file;
    uint64_t line;   /* from 1; 0: of the map as a whole */
    uint64_t column; /* in bytes, from 1; 0: none */
    const char* message;
    const char* field; /* null: none */
    int32_t has_point;
    double point[2]; /* as the orientation "x,y" has it */
} vkm_finding;

/* Not 0 stops with VKM_ERROR_STOPPED. The finding is valid during the call. */
typedef int32_t (*vkm_on_finding)(void* context, const vkm_finding* finding);

typedef struct vkm_check_options {
    size_t size;             /* of this structure */
    const char* const* only; /* rules to look for; null: all */
    size_t only_count;
    const char* const* ignore; /* rules to leave out */
    size_t ignore_count;
} vkm_check_options;

VKM_API void vkm_check_options_init(vkm_check_options* options);

/* Looks for what is wrong with the map, as `vkm check` does: every finding in the order of the file, then
 * those of the map. Null options look for everything. An unknown rule is VKM_ERROR_ARGUMENT. */
VKM_API vkm_status vkm_check(vkm_reader* reader, const vkm_check_options* options, vkm_on_finding on_finding,
                             void* context, vkm_error** error);

typedef struct vkm_change {
    const char* change; /* "added", "removed", "changed", "moved" */
    const char* kind;   /* "line", "text", "symbol" */
    int32_t layer;
    uint64_t old_line; /* lines of the files; 0 where there is none */
    uint64_t new_line;
    const char*
        old_json; /* what it was and is, as the members `old` and `new` of `vkm diff --json`; null: nothing */
    const char* new_json;
} vkm_change;

typedef int32_t (*vkm_on_change)(void* context, const vkm_change* change);

typedef struct vkm_diff_options {
    size_t size;      /* of this structure */
    double tolerance; /* metres by which a text may have moved, 0.05 */
} vkm_diff_options;

VKM_API void vkm_diff_options_init(vkm_diff_options* options);

/* Compares two states of a map, as `vkm diff` does. */
VKM_API vkm_status vkm_diff(vkm_reader* old_map, vkm_reader* new_map, const vkm_diff_options* options,
                            vkm_on_change on_change, void* context, vkm_error** error);

#ifdef __cplusplus
}
#endif

#endif
