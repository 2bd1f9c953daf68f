"""Finds libvkm and declares its functions, as vkm.h has them."""

from __future__ import annotations

import ctypes
import ctypes.util
import os
import sys
from ctypes import CFUNCTYPE, POINTER, Structure, c_char_p, c_double, c_int32, c_int64, c_size_t
from ctypes import c_uint32, c_uint64, c_void_p
from pathlib import Path
from typing import Any, Iterator

_HERE = Path(__file__).resolve().parent
_NAMES = ("vkm.dll",) if sys.platform == "win32" else ("libvkm.so.1", "libvkm.so")

OK, END, NOTHING, INCOMPLETE = 0, 1, 2, 3
(
    ERROR_ARGUMENT,
    ERROR_MEMORY,
    ERROR_OPEN,
    ERROR_READ,
    ERROR_WRITE,
    ERROR_STOPPED,
    ERROR_UNSUPPORTED,
    ERROR_INTERNAL,
) = range(-1, -9, -1)
LINE, TEXT = 1, 2
TABLES = {"lines": 0, "points": 1, "texts": 2, "parcels": 3}
SEVERITIES = ("note", "warning", "error")

OnWarning = CFUNCTYPE(None, c_void_p, c_void_p)
no_warning: Any = ctypes.cast(0, OnWarning)
OnProgress = CFUNCTYPE(c_int32, c_void_p, c_double)
Release = CFUNCTYPE(None, c_void_p)
Write = CFUNCTYPE(c_int32, c_void_p, c_void_p, c_size_t)


class Options(Structure):
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


class Header(Structure):
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


class Stroke(Structure):
    _fields_ = [("first", c_size_t), ("count", c_size_t), ("code", c_int32)]


class Element(Structure):
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


class LineStyle(Structure):
    _fields_ = [
        ("size", c_size_t),
        ("name", c_char_p),
        ("colour", c_uint32),
        ("visible", c_int32),
        ("width", c_double),
        ("dashes", POINTER(c_double)),
        ("dash_count", c_size_t),
    ]


class Symbol(Structure):
    _fields_ = [
        ("size", c_size_t),
        ("name", c_char_p),
        ("points", POINTER(c_double)),
        ("point_count", c_size_t),
        ("strokes", POINTER(c_uint32)),
        ("stroke_count", c_size_t),
        ("bounds", c_double * 4),
    ]


class Picture(Structure):
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


class Finding(Structure):
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


class CheckOptions(Structure):
    _fields_ = [
        ("size", c_size_t),
        ("only", POINTER(c_char_p)),
        ("only_count", c_size_t),
        ("ignore", POINTER(c_char_p)),
        ("ignore_count", c_size_t),
    ]


class Change(Structure):
    _fields_ = [
        ("change", c_char_p),
        ("kind", c_char_p),
        ("layer", c_int32),
        ("old_line", c_uint64),
        ("new_line", c_uint64),
        ("old_json", c_char_p),
        ("new_json", c_char_p),
    ]


class DiffOptions(Structure):
    _fields_ = [("size", c_size_t), ("tolerance", c_double)]


OnFinding = CFUNCTYPE(c_int32, c_void_p, POINTER(Finding))
OnChange = CFUNCTYPE(c_int32, c_void_p, POINTER(Change))

_ERROR = POINTER(c_void_p)
_READER = c_void_p
_FUNCTIONS: dict[str, tuple[Any, list[Any]]] = {
    "vkm_version": (c_char_p, []),
    "vkm_status_text": (c_char_p, [c_int32]),
    "vkm_error_status": (c_int32, [c_void_p]),
    "vkm_error_text": (c_char_p, [c_void_p]),
    "vkm_error_file": (c_char_p, [c_void_p]),
    "vkm_error_line": (c_uint64, [c_void_p]),
    "vkm_error_free": (None, [c_void_p]),
    "vkm_options_init": (None, [POINTER(Options)]),
    "vkm_open": (_READER, [c_char_p, POINTER(Options), _ERROR]),
    "vkm_open_memory": (
        _READER,
        [c_char_p, c_size_t, c_char_p, POINTER(Options), Release, c_void_p, _ERROR],
    ),
    "vkm_close": (None, [_READER]),
    "vkm_get_header": (c_int32, [_READER, POINTER(Header), _ERROR]),
    "vkm_next": (c_int32, [_READER, POINTER(POINTER(Element)), _ERROR]),
    "vkm_complete": (c_int32, [_READER]),
    "vkm_bad_bytes": (c_uint64, [_READER]),
    "vkm_left_out": (c_uint64, [_READER]),
    "vkm_extent": (c_int32, [_READER, POINTER(c_double), _ERROR]),
    "vkm_get_line_style": (c_int32, [_READER, c_int32, POINTER(LineStyle), _ERROR]),
    "vkm_get_symbol": (c_int32, [_READER, c_int32, POINTER(Symbol), _ERROR]),
    "vkm_stream": (c_int32, [_READER, c_int32, c_void_p, _ERROR]),
    "vkm_streams": (c_int32, [_READER, c_void_p, c_size_t, c_void_p, _ERROR]),
    "vkm_columns_read": (c_void_p, [c_void_p, _ERROR]),
    "vkm_columns_schema": (c_void_p, [c_void_p]),
    "vkm_columns_count": (c_size_t, [c_void_p]),
    "vkm_columns_batch": (c_void_p, [c_void_p, c_size_t]),
    "vkm_columns_stream": (
        c_int32,
        [POINTER(c_void_p), c_size_t, c_char_p, POINTER(c_char_p), c_void_p, _ERROR],
    ),
    "vkm_columns_free": (None, [c_void_p]),
    "vkm_picture_init": (None, [POINTER(Picture)]),
    "vkm_render": (c_int32, [_READER, POINTER(Picture), c_char_p, _ERROR]),
    "vkm_render_to": (c_int32, [_READER, POINTER(Picture), Write, c_void_p, _ERROR]),
    "vkm_check_options_init": (None, [POINTER(CheckOptions)]),
    "vkm_check": (c_int32, [_READER, POINTER(CheckOptions), OnFinding, c_void_p, _ERROR]),
    "vkm_diff_options_init": (None, [POINTER(DiffOptions)]),
    "vkm_diff": (c_int32, [_READER, _READER, POINTER(DiffOptions), OnChange, c_void_p, _ERROR]),
}


def _candidates() -> Iterator[str]:
    chosen = os.environ.get("VEMRADO_LIBRARY")
    if chosen:
        yield chosen
        return
    # In the wheel, then in a build tree, whose folder python/ holds this package.
    for folder in (_HERE / "lib", _HERE.parent.parent / "lib", _HERE.parent.parent / "bin"):
        for name in _NAMES:
            if (folder / name).is_file():
                yield str(folder / name)
    yield from _NAMES
    found = ctypes.util.find_library("vkm")
    if found:
        yield found


def _load() -> ctypes.CDLL:
    reasons = []
    for candidate in _candidates():
        try:
            library = ctypes.CDLL(candidate)
        except OSError as error:
            reasons.append(str(error))
            continue
        for name, (result, arguments) in _FUNCTIONS.items():
            function = getattr(library, name)
            function.restype = result
            function.argtypes = arguments
        return library
    raise ImportError(
        "vemrado: the library libvkm is not found; VEMRADO_LIBRARY can name it (" + "; ".join(reasons) + ")"
    )


lib: Any = _load()
