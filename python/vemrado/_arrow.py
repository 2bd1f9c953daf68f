"""Reads Arrow's C structures into numpy arrays without a copy, and hands streams on as capsules."""

from __future__ import annotations

import ctypes
from ctypes import CFUNCTYPE, POINTER, Structure, byref, c_char_p, c_int, c_int64, c_void_p
from dataclasses import dataclass, field
from typing import Any, Callable, NoReturn, Optional, Sequence

import numpy as np
import numpy.typing as npt

from ._exit import calls
from ._library import lib
from .errors import Call


class ArrowSchema(Structure):
    pass


ArrowSchema._fields_ = [
    ("format", c_char_p),
    ("name", c_char_p),
    ("metadata", c_void_p),
    ("flags", c_int64),
    ("n_children", c_int64),
    ("children", POINTER(POINTER(ArrowSchema))),
    ("dictionary", POINTER(ArrowSchema)),
    ("release", c_void_p),
    ("private_data", c_void_p),
]


class ArrowArray(Structure):
    pass


ArrowArray._fields_ = [
    ("length", c_int64),
    ("null_count", c_int64),
    ("offset", c_int64),
    ("n_buffers", c_int64),
    ("n_children", c_int64),
    ("buffers", POINTER(c_void_p)),
    ("children", POINTER(POINTER(ArrowArray))),
    ("dictionary", POINTER(ArrowArray)),
    ("release", c_void_p),
    ("private_data", c_void_p),
]


class ArrowArrayStream(Structure):
    pass


ArrowArrayStream._fields_ = [
    ("get_schema", CFUNCTYPE(c_int, POINTER(ArrowArrayStream), POINTER(ArrowSchema))),
    ("get_next", CFUNCTYPE(c_int, POINTER(ArrowArrayStream), POINTER(ArrowArray))),
    ("get_last_error", CFUNCTYPE(c_char_p, POINTER(ArrowArrayStream))),
    ("release", c_void_p),
    ("private_data", c_void_p),
]

_RELEASE = CFUNCTYPE(None, c_void_p)
_NULLABLE = 2

#: Element types of the fixed-width formats.
_DTYPES = {
    "c": "i1",
    "C": "u1",
    "s": "<i2",
    "S": "<u2",
    "i": "<i4",
    "I": "<u4",
    "l": "<i8",
    "L": "<u8",
    "f": "<f4",
    "g": "<f8",
}


def release(structure: Any) -> None:
    """Ends the life of a schema, an array or a stream; a released one is left alone."""
    if structure.release:
        _RELEASE(structure.release)(ctypes.addressof(structure))


@dataclass
class Field:
    """A column's type. ``kind`` is its format, ``metadata`` holds texts."""

    name: str
    kind: str
    nullable: bool
    metadata: dict[str, str]
    children: list[Field] = field(default_factory=list)


def dtype_of(kind: Field) -> str:
    """What numpy calls the values; objects where they are texts or lists."""
    return _DTYPES.get(kind.kind, "O")


_NAMES = {"i": "int32", "l": "int64", "g": "float64", "u": "text", "U": "text"}


def type_name(kind: Field) -> str:
    """``"int32"``, ``"text"``, ``"list of float64"`` and so on."""
    if kind.kind in ("+l", "+L"):
        return "list of " + type_name(kind.children[0])
    return _NAMES.get(kind.kind, kind.kind)


def _metadata(address: Optional[int]) -> dict[str, str]:
    if not address:
        return {}
    place = address

    def number() -> int:
        nonlocal place
        value = ctypes.c_int32.from_address(place).value
        place += 4
        return value

    def text() -> str:
        nonlocal place
        length = number()
        value = ctypes.string_at(place, length).decode("utf-8", "replace")
        place += length
        return value

    return {text(): text() for _ in range(number())}


def read_field(schema: ArrowSchema) -> Field:
    return Field(
        (schema.name or b"").decode(),
        schema.format.decode(),
        bool(schema.flags & _NULLABLE),
        _metadata(schema.metadata),
        [read_field(schema.children[i].contents) for i in range(schema.n_children)],
    )


class _Owner:
    """Keeps a table in the library's memory until no array looks into it any more."""

    def __init__(self, handle: int) -> None:
        self.handle = handle

    def __del__(self, free: Callable[[int], None] = lib.vkm_columns_free) -> None:
        free(self.handle)

    def __reduce__(self) -> NoReturn:
        raise TypeError(
            "a table is in the library's memory and cannot be copied or sent; its frames and arrays can"
        )


class Array:
    """One column of one record batch: views into its buffers.

    Attributes
    ----------
    field : Field
    valid : numpy.ndarray of bool, or None
        None where no value is missing.
    values : numpy.ndarray or None
        Of numbers; the bytes of a text column.
    offsets : numpy.ndarray or None
        Of lists and texts, one more than there are rows.
    children : list of Array
        Of lists (one) and structures.
    """

    def __init__(self, kind: Field, array: ArrowArray, owner: _Owner) -> None:
        self.field = kind
        self.length = array.length
        self._owner = owner
        self.valid = self._valid(array)
        self.values: Optional[npt.NDArray[Any]] = None
        self.offsets: Optional[npt.NDArray[Any]] = None
        self.children = [
            Array(child, array.children[i].contents, owner) for i, child in enumerate(kind.children)
        ]
        format_ = kind.kind
        if format_ in _DTYPES:
            self.values = self._buffer(array, 1, _DTYPES[format_], array.offset + array.length)[
                array.offset :
            ]
        elif format_ in ("u", "U", "z", "Z", "+l", "+L"):
            width = "<i4" if format_ in ("u", "z", "+l") else "<i8"
            offsets = self._buffer(array, 1, width, array.offset + array.length + 1)
            self.offsets = offsets[array.offset :] if offsets.size else np.zeros(1, width)
            if format_[0] != "+":
                self.values = self._buffer(array, 2, "u1", int(self.offsets[-1]))

    def _buffer(self, array: ArrowArray, number: int, dtype: str, count: int) -> npt.NDArray[Any]:
        address = array.buffers[number]
        size = count * np.dtype(dtype).itemsize
        if not address or size == 0:
            return np.empty(0, dtype)
        memory: Any = (ctypes.c_char * size).from_address(address)
        memory.owner = self._owner  # the view keeps the memory, which keeps the batch
        view = np.frombuffer(memory, dtype)
        view.flags.writeable = False
        return view

    def _valid(self, array: ArrowArray) -> Optional[npt.NDArray[np.bool_]]:
        if array.null_count == 0 or array.n_buffers == 0 or not array.buffers[0]:
            return None
        end = array.offset + array.length
        bits = self._buffer(array, 0, "u1", (end + 7) // 8)
        return np.unpackbits(bits, bitorder="little")[array.offset : end].astype(np.bool_)

    def rows(self) -> list[int]:
        """Numbers of the rows that have a value."""
        if self.valid is None:
            return list(range(self.length))
        numbers: list[int] = np.flatnonzero(self.valid).tolist()
        return numbers

    def objects(self) -> list[Any]:
        """The values of these rows as Python objects."""
        items = self._items()
        if self.field.kind in ("+l", "+L"):
            return [items[a:b] for a, b in zip(*self._spans())]
        return items if self.valid is None else [items[row] for row in self.rows()]

    def _items(self) -> list[Any]:
        """Numbers or texts of all rows, or what is in lists, None where there is none."""
        if self.field.kind in ("u", "U"):
            return self._texts()
        if self.offsets is None:
            assert self.values is not None
            return list(self.values.tolist())
        inner = self.children[0]
        if inner.valid is None:
            return inner.objects()
        items: list[Any] = [None] * inner.length
        for row, value in zip(inner.rows(), inner.objects()):
            items[row] = value
        return items

    def _texts(self) -> list[str]:
        """Of all rows. A split gives them in half the time of as many slices; none has a zero of its own."""
        assert self.values is not None and self.offsets is not None
        if self.length == 0:
            return []
        places = self.offsets
        data = self.values[places[0] : places[-1]]
        parted = np.zeros(data.size + self.length - 1, np.uint8)
        letters = np.ones(parted.size, np.bool_)
        letters[places[1:-1] - places[0] + np.arange(self.length - 1)] = False
        parted[letters] = data
        return parted.tobytes().decode().split("\0")

    def _spans(self) -> tuple[list[int], list[int]]:
        """Where the lists of the rows that have one begin and end."""
        assert self.offsets is not None
        if self.valid is None:
            places = self.offsets.tolist()
            return places[:-1], places[1:]
        return self.offsets[:-1][self.valid].tolist(), self.offsets[1:][self.valid].tolist()


class Columns:
    """A table that the library holds, for as long as anything looks into it.

    Attributes
    ----------
    kind : Field
    batches : list of Array
    """

    def __init__(self, handle: int) -> None:
        self._owner = _Owner(handle)
        self.kind = read_field(ArrowSchema.from_address(lib.vkm_columns_schema(handle)))
        places = [lib.vkm_columns_batch(handle, i) for i in range(lib.vkm_columns_count(handle))]
        self.batches = [Array(self.kind, ArrowArray.from_address(place), self._owner) for place in places]

    @property
    def handle(self) -> int:
        return self._owner.handle


def read_stream(stream: ArrowArrayStream, call: Call) -> Columns:
    """Reads a stream to its end and releases it.

    Raises
    ------
    ReadError
        When the stream fails; the text is its own.
    """
    return Columns(call.check_pointer(lib.vkm_columns_read(byref(stream), call.error)))


def stream_of(
    tables: Sequence[Columns], column: Optional[str] = None, texts: Sequence[str] = ()
) -> ArrowArrayStream:
    """A stream over what tables of one kind hold; it keeps that alive.

    Parameters
    ----------
    column : str, optional
        A column more, which has ``texts[i]`` in the rows of ``tables[i]``.
    """
    stream = ArrowArrayStream()
    handles = (c_void_p * len(tables))(*(table.handle for table in tables))
    name = told = None
    if column is not None:
        name = column.encode()
        told = (c_char_p * len(tables))(*(text.encode("utf-8", "replace") for text in texts))
    with Call() as call:
        call.check(lib.vkm_columns_stream(handles, len(tables), name, told, byref(stream), call.error))
    return stream


_STREAM_NAME = b"arrow_array_stream"
# Functions of our own over the interpreter's: those of ctypes.pythonapi are everybody's.
_new_capsule: Any = ctypes.PYFUNCTYPE(ctypes.py_object, c_void_p, c_char_p, c_void_p)(
    ("PyCapsule_New", ctypes.pythonapi)
)
_is_valid: Any = ctypes.PYFUNCTYPE(c_int, c_void_p, c_char_p)(("PyCapsule_IsValid", ctypes.pythonapi))
_pointer_of: Any = ctypes.PYFUNCTYPE(c_void_p, c_void_p, c_char_p)(("PyCapsule_GetPointer", ctypes.pythonapi))

#: Streams in capsules, by their address.
_exported: dict[int, ArrowArrayStream] = {}


def _drop_capsule(capsule: int) -> None:
    if not _is_valid(capsule, _STREAM_NAME):
        return
    stream = _exported.pop(_pointer_of(capsule, _STREAM_NAME), None)
    if stream is not None:
        with calls:
            release(stream)


# A destructor runs while its object goes: it takes the plain address, for a reference would bring it back to life.
_destructor = ctypes.PYFUNCTYPE(None, c_void_p)(_drop_capsule)


def capsule_of(stream: ArrowArrayStream) -> Any:
    """A capsule that owns the stream until a consumer moves it out."""
    address = ctypes.addressof(stream)
    _exported[address] = stream
    return _new_capsule(address, _STREAM_NAME, ctypes.cast(_destructor, c_void_p))
