"""vkm.h for the tests, by ctypes: structures and calls as the header has them, and an independent reading of Arrow's."""

import ctypes
import struct
from ctypes import POINTER, byref, c_char_p, c_double, c_int, c_int32, c_int64, c_size_t, c_uint32, c_uint64, c_void_p

OK, INCOMPLETE = 0, 3


class Stroke(ctypes.Structure):
    _fields_ = [("first", c_size_t), ("count", c_size_t), ("code", c_int32)]


class Element(ctypes.Structure):
    _fields_ = [
        ("kind", c_int32),
        ("layer", c_int32),
        ("layer_name", c_char_p),
        ("file_line", c_uint64),
        ("point_count", c_size_t),
        ("points", POINTER(c_double)),
        ("types", c_char_p),
        ("codes", POINTER(c_char_p)),
        ("code_numbers", POINTER(c_int32)),
        ("pen_codes", POINTER(c_int32)),
        ("symbols", POINTER(c_int32)),
        ("m_values", POINTER(c_double)),
        ("r_values", POINTER(c_double)),
        ("u_values", POINTER(c_double)),
        ("strokes", POINTER(Stroke)),
        ("stroke_count", c_size_t),
        ("text", c_char_p),
        ("text_length", c_size_t),
        ("code", c_int32),
        ("d_value", c_int32),
        ("f_value", c_int32),
        ("height", c_double),
        ("rotation", c_double),
        ("anchor", c_int32),
        ("face", c_int32),
    ]


OnWarning = ctypes.CFUNCTYPE(None, c_void_p, c_void_p)
OnProgress = ctypes.CFUNCTYPE(c_int32, c_void_p, c_double)
Release = ctypes.CFUNCTYPE(None, c_void_p)


class Options(ctypes.Structure):
    _fields_ = [
        ("size", c_size_t),
        ("encoding", c_char_p),
        ("orientation", c_char_p),
        ("symbology", c_char_p),
        ("crs", c_char_p),
        ("layers", POINTER(c_int32)),
        ("layer_count", c_size_t),
        ("split_by_code", c_int32),
        ("parcel_layer", c_int32),
        ("number_layer", c_int32),
        ("batch_rows", c_uint32),
        ("angle_unit", c_int32),
        ("on_warning", OnWarning),
        ("on_progress", OnProgress),
        ("callback_context", c_void_p),
    ]


class Source(ctypes.Structure):
    _fields_ = [
        ("size", c_size_t),
        ("context", c_void_p),
        ("open", ctypes.CFUNCTYPE(c_void_p, c_void_p)),
        ("read", ctypes.CFUNCTYPE(c_int64, c_void_p, c_void_p, c_size_t)),
        ("length", ctypes.CFUNCTYPE(c_int64, c_void_p)),
        ("close", ctypes.CFUNCTYPE(None, c_void_p)),
        ("release", Release),
    ]


class Header(ctypes.Structure):
    _fields_ = [
        ("size", c_size_t),
        ("scale", c_double),
        ("relative", c_int32),
        ("origin", c_double * 2),
        ("name", c_char_p),
        ("date", c_char_p),
        ("comments", c_char_p),
        ("crs", c_char_p),
    ]


class LineStyle(ctypes.Structure):
    _fields_ = [
        ("size", c_size_t),
        ("name", c_char_p),
        ("colour", c_uint32),
        ("visible", c_int32),
        ("width", c_double),
        ("dashes", POINTER(c_double)),
        ("dash_count", c_size_t),
    ]


class Picture(ctypes.Structure):
    _fields_ = [
        ("size", c_size_t),
        ("format", c_char_p),
        ("width", c_int32),
        ("dpi", c_double),
        ("legend", c_int32),
        ("title", c_char_p),
        ("box", POINTER(c_double)),
        ("symbols", c_int32),
    ]


class Finding(ctypes.Structure):
    _fields_ = [
        ("rule", c_char_p),
        ("severity", c_int32),
        ("file", c_char_p),
        ("line", c_uint64),
        ("column", c_uint64),
        ("message", c_char_p),
        ("field", c_char_p),
        ("has_point", c_int32),
        ("point", c_double * 2),
    ]


class Change(ctypes.Structure):
    _fields_ = [
        ("change", c_char_p),
        ("kind", c_char_p),
        ("layer", c_int32),
        ("old_line", c_uint64),
        ("new_line", c_uint64),
        ("old_json", c_char_p),
        ("new_json", c_char_p),
    ]


Write = ctypes.CFUNCTYPE(c_int32, c_void_p, c_void_p, c_size_t)
OnFinding = ctypes.CFUNCTYPE(c_int32, c_void_p, POINTER(Finding))
OnChange = ctypes.CFUNCTYPE(c_int32, c_void_p, POINTER(Change))


class ArrowSchema(ctypes.Structure):
    pass


ArrowSchema._fields_ = [
    ("format", c_char_p),
    ("name", c_char_p),
    ("metadata", c_void_p),
    ("flags", c_int64),
    ("n_children", c_int64),
    ("children", POINTER(POINTER(ArrowSchema))),
    ("dictionary", c_void_p),
    ("release", ctypes.CFUNCTYPE(None, POINTER(ArrowSchema))),
    ("private_data", c_void_p),
]


class ArrowArray(ctypes.Structure):
    pass


ArrowArray._fields_ = [
    ("length", c_int64),
    ("null_count", c_int64),
    ("offset", c_int64),
    ("n_buffers", c_int64),
    ("n_children", c_int64),
    ("buffers", POINTER(c_void_p)),
    ("children", POINTER(POINTER(ArrowArray))),
    ("dictionary", c_void_p),
    ("release", ctypes.CFUNCTYPE(None, POINTER(ArrowArray))),
    ("private_data", c_void_p),
]


class ArrowStream(ctypes.Structure):
    pass


ArrowStream._fields_ = [
    ("get_schema", ctypes.CFUNCTYPE(c_int, POINTER(ArrowStream), POINTER(ArrowSchema))),
    ("get_next", ctypes.CFUNCTYPE(c_int, POINTER(ArrowStream), POINTER(ArrowArray))),
    ("get_last_error", ctypes.CFUNCTYPE(c_char_p, POINTER(ArrowStream))),
    ("release", ctypes.CFUNCTYPE(None, POINTER(ArrowStream))),
    ("private_data", c_void_p),
]

NUMBERS = {"i": (4, "i"), "l": (8, "q"), "g": (8, "d")}


def values_of(schema, array):
    """The rows of an array as Python values, read from its buffers by the letters of its format."""
    form = schema.format.decode()
    assert array.offset == 0 and array.dictionary is None
    count = array.length

    def buffer(place, size):
        return ctypes.string_at(array.buffers[place], size) if size else b""

    valid = [True] * count
    if array.n_buffers and array.buffers[0]:
        bits = buffer(0, (count + 7) // 8)
        valid = [bool(bits[i // 8] >> i % 8 & 1) for i in range(count)]
    assert array.null_count == valid.count(False) and (all(valid) or schema.flags & 2)
    if form in NUMBERS:
        width, letter = NUMBERS[form]
        rows = list(struct.unpack(f"={count}{letter}", buffer(1, width * count)))
    elif form == "+s":
        fields = [(s[0].name.decode(), values_of(s[0], a[0])) for s, a in children(schema, array)]
        assert all(len(values) == count for _, values in fields)
        rows = [{name: values[i] for name, values in fields} for i in range(count)]
    elif form == "+w:2":
        ((item, numbers),) = children(schema, array)
        flat = values_of(item[0], numbers[0])
        rows = [tuple(flat[2 * i : 2 * i + 2]) for i in range(count)]
    else:
        places = struct.unpack(f"={count + 1}i", buffer(1, 4 * (count + 1)))
        if form == "u":
            letters = buffer(2, places[-1])
            rows = [letters[places[i] : places[i + 1]].decode() for i in range(count)]
        else:
            assert form == "+l"
            ((item, entries),) = children(schema, array)
            flat = values_of(item[0], entries[0])
            assert len(flat) == places[-1]
            rows = [flat[places[i] : places[i + 1]] for i in range(count)]
    return [row if here else None for row, here in zip(rows, valid)]


def children(schema, array):
    assert schema.n_children == array.n_children
    return [(schema.children[i], array.children[i]) for i in range(array.n_children)]


def metadata_of(schema):
    pairs = {}
    if not schema.metadata:
        return pairs
    place = schema.metadata

    def take():
        nonlocal place
        length = c_int32.from_address(place).value
        text = ctypes.string_at(place + 4, length).decode()
        place += 4 + length
        return text

    place += 4
    for _ in range(c_int32.from_address(schema.metadata).value):
        key = take()
        pairs[key] = take()
    return pairs


class Failed(Exception):
    def __init__(self, status, text, line):
        super().__init__(text)
        self.status, self.line = status, line


class Library:
    def __init__(self, path):
        self.lib = lib = ctypes.CDLL(path)
        for name in ["vkm_version", "vkm_error_text", "vkm_status_text"]:
            getattr(lib, name).restype = c_char_p
        lib.vkm_error_text.argtypes = lib.vkm_error_status.argtypes = [c_void_p]
        lib.vkm_error_line.argtypes = [c_void_p]
        lib.vkm_error_line.restype = c_uint64
        lib.vkm_error_free.argtypes = [c_void_p]
        lib.vkm_open.argtypes = [c_char_p, POINTER(Options), POINTER(c_void_p)]
        lib.vkm_open_memory.argtypes = [
            c_char_p,
            c_size_t,
            c_char_p,
            POINTER(Options),
            Release,
            c_void_p,
            POINTER(c_void_p),
        ]
        lib.vkm_open_source.argtypes = [POINTER(Source), c_char_p, POINTER(Options), POINTER(c_void_p)]
        for name in ["vkm_open", "vkm_open_memory", "vkm_open_source"]:
            getattr(lib, name).restype = c_void_p
        lib.vkm_close.argtypes = [c_void_p]
        lib.vkm_next.argtypes = [c_void_p, POINTER(POINTER(Element)), POINTER(c_void_p)]
        lib.vkm_rewind.argtypes = [c_void_p, POINTER(c_void_p)]
        lib.vkm_complete.argtypes = [c_void_p]
        lib.vkm_bad_bytes.argtypes = lib.vkm_left_out.argtypes = [c_void_p]
        lib.vkm_bad_bytes.restype = lib.vkm_left_out.restype = c_uint64
        lib.vkm_extent.argtypes = [c_void_p, POINTER(c_double), POINTER(c_void_p)]
        lib.vkm_get_header.argtypes = [c_void_p, POINTER(Header), POINTER(c_void_p)]
        lib.vkm_get_line_style.argtypes = [c_void_p, c_int32, POINTER(LineStyle), POINTER(c_void_p)]
        lib.vkm_line_codes.argtypes = [c_void_p, POINTER(POINTER(c_int32)), POINTER(c_size_t), POINTER(c_void_p)]
        lib.vkm_render_to.argtypes = [c_void_p, POINTER(Picture), Write, c_void_p, POINTER(c_void_p)]
        lib.vkm_check.argtypes = [c_void_p, c_void_p, OnFinding, c_void_p, POINTER(c_void_p)]
        lib.vkm_diff.argtypes = [c_void_p, c_void_p, c_void_p, OnChange, c_void_p, POINTER(c_void_p)]
        lib.vkm_stream.argtypes = [c_void_p, c_int32, POINTER(ArrowStream), POINTER(c_void_p)]
        lib.vkm_columns_read.argtypes = [POINTER(ArrowStream), POINTER(c_void_p)]
        lib.vkm_columns_read.restype = c_void_p
        lib.vkm_columns_stream.argtypes = [
            POINTER(c_void_p),
            c_size_t,
            c_char_p,
            POINTER(c_char_p),
            POINTER(ArrowStream),
            POINTER(c_void_p),
        ]
        lib.vkm_columns_free.argtypes = [c_void_p]
        lib.vkm_streams.argtypes = [c_void_p, POINTER(c_int32), c_size_t, POINTER(ArrowStream), POINTER(c_void_p)]

    def options(self, **members):
        options = Options()
        self.lib.vkm_options_init(byref(options))
        for name, value in members.items():
            setattr(options, name, value)
        return options

    def call(self, name, *arguments):
        """Calls a function whose last argument is an error; raises Failed when it gives one."""
        error = c_void_p()
        result = getattr(self.lib, name)(*arguments, byref(error))
        if error:
            failed = Failed(result, self.lib.vkm_error_text(error).decode(), self.lib.vkm_error_line(error))
            self.lib.vkm_error_free(error)
            raise failed
        return result

    def elements(self, reader):
        """Every element, copied."""
        element = POINTER(Element)()
        found = []
        while self.call("vkm_next", reader, byref(element)) == 0:
            e = element[0]
            points = [(e.points[2 * i], e.points[2 * i + 1]) for i in range(e.point_count)]
            if e.kind == 1:
                strokes = [(s.first, s.count, s.code) for s in e.strokes[: e.stroke_count]]
                codes = [code.decode() for code in e.codes[: e.point_count]]
                found.append((e.layer, points, e.types.decode(), codes, e.symbols[: e.point_count], strokes))
            else:
                found.append((e.layer, points, e.text.decode(), e.code, e.height))
        return found

    def rows(self, reader, table, most=None):
        stream = ArrowStream()
        self.call("vkm_stream", reader, table, byref(stream))
        return self.rows_of(stream, most)

    def streams(self, reader, *tables):
        """Those of several tables in one passage."""
        streams = (ArrowStream * len(tables))()
        self.call("vkm_streams", reader, (c_int32 * len(tables))(*tables), len(tables), streams)
        return streams

    def rows_of(self, stream, most=None):
        """Rows of a stream and its schema's metadata; stops after so many batches."""
        schema = ArrowSchema()
        assert stream.get_schema(byref(stream), byref(schema)) == 0
        rows, sizes = [], []
        while most is None or len(sizes) < most:
            batch = ArrowArray()
            status = stream.get_next(byref(stream), byref(batch))
            if status != 0:
                text = stream.get_last_error(byref(stream)).decode()
                stream.release(byref(stream))
                schema.release(byref(schema))
                raise Failed(status, text, 0)
            if not batch.release:
                break
            sizes.append(batch.length)
            rows += values_of(schema, batch)
            batch.release(byref(batch))
            assert not batch.release
        geometry = schema.children[schema.n_children - 1][0]
        described = (geometry.name.decode(), metadata_of(geometry))
        schema.release(byref(schema))
        stream.release(byref(stream))
        assert not stream.release and not schema.release
        return rows, sizes, described
