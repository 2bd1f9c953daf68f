"""What maps are read from: files, bytes, file objects, members of archives."""

from __future__ import annotations

import gzip
import os
import sys
import threading
import zipfile
from ctypes import byref, c_int32, sizeof
from pathlib import Path
from typing import IO, Any, Iterable, Optional, Union

from . import _library
from ._library import lib
from .errors import Call, OpenError, on_warning

Source = Union[str, "os.PathLike[str]", bytes, bytearray, memoryview, IO[bytes], zipfile.Path]
Layers = Union[None, int, Iterable[int]]

_SAMPLE_SYMBOLOGY = Path(__file__).resolve().parent / "symbology"
_GZIP = b"\x1f\x8b"


def _encoded(path: str) -> bytes:
    return path.encode() if sys.platform == "win32" else os.fsencode(path)


class _Kept:
    """Bytes that readers and streams of the library look into, until it says that it has done with them."""

    def __init__(self) -> None:
        self._lock = threading.Lock()
        self._next = 0
        self._data: dict[int, bytes] = {}

    def add(self, data: bytes) -> int:
        with self._lock:
            self._next += 1
            self._data[self._next] = data
            return self._next

    def drop(self, number: int) -> None:
        with self._lock:
            self._data.pop(number, None)


_kept = _Kept()
_release = _library.Release(_kept.drop)


class OpenedSource:
    """A source that readers can be opened on any number of times."""

    def __init__(self, source: Source) -> None:
        self.path: Optional[bytes] = None
        self.data: Optional[bytes] = None
        if isinstance(source, (bytes, bytearray, memoryview)):
            self.name, self.data = "memory", bytes(source)
        elif isinstance(source, zipfile.Path):
            self.name = str(source)
            self.data = _whole(source.open("rb"), self.name)
        elif hasattr(source, "read"):
            self.name = str(getattr(source, "name", "file object"))
            self.data = _whole(source, self.name)
        elif isinstance(source, (str, os.PathLike)):
            path = os.fspath(source)
            if not isinstance(path, str):
                raise TypeError("a path is a str or an os.PathLike of str")
            if "\0" in path:
                raise ValueError("embedded null character in the path")
            self.name = path
            if path == "-":
                path = "./-"  # the library takes the bare name for standard input
            if _is_gzip(path):
                self.data = _whole(gzip.open(path, "rb"), path)
            else:
                self.path = _encoded(path)
        else:
            raise TypeError(
                f"a map is read from a path, bytes or a binary file object, not from {type(source).__name__}"
            )
        if self.data is not None and self.data[:2] == _GZIP:
            self.data = _unpacked(self.data, self.name)

    def open(self, options: _library.Options) -> int:
        with Call() as call:
            if self.path is not None:
                reader = lib.vkm_open(self.path, byref(options), call.error)
            else:
                assert self.data is not None
                name = self.name.encode("utf-8", "replace")
                reader = lib.vkm_open_memory(
                    self.data,
                    len(self.data),
                    name,
                    byref(options),
                    _release,
                    _kept.add(self.data),
                    call.error,
                )
            return call.check_pointer(reader)


def _is_gzip(path: str) -> bool:
    try:
        with open(path, "rb") as file:
            return file.read(2) == _GZIP
    except OSError:
        return False  # the library says what is wrong


def _whole(file: Any, name: str) -> bytes:
    try:
        data = file.read()
    except (EOFError, zipfile.BadZipFile, OSError) as error:
        raise OpenError(f"{name}: {error}", name) from error
    if not isinstance(data, bytes):
        raise TypeError("the file object gives text; open it in binary mode")
    return data


def _unpacked(data: bytes, name: str) -> bytes:
    try:
        return gzip.decompress(data)
    except (EOFError, OSError) as error:
        raise OpenError(f"{name}: {error}", name) from error


def make_options(
    layer: Layers,
    encoding: str,
    orientation: str,
    symbology: Union[None, str, "os.PathLike[str]"],
    **more: int,
) -> _library.Options:
    """The library's options; what they point to lives as long as they do."""
    options = _library.Options()
    options.size = sizeof(options)
    lib.vkm_options_init(byref(options))
    options.encoding = encoding.encode()
    options.orientation = orientation.encode()
    if symbology is None and _SAMPLE_SYMBOLOGY.is_dir():
        symbology = _SAMPLE_SYMBOLOGY
    if symbology is not None:
        options.symbology = _encoded(os.fspath(symbology))
    if layer is not None:
        numbers = [layer] if isinstance(layer, int) else list(layer)
        options.layers = (c_int32 * len(numbers))(*numbers)
        options.layer_count = len(numbers)
    # One batch a table, so that its columns are views: as many rows as the library lets come.
    options.batch_rows = 0x7FFFFFFF
    options.on_warning = on_warning
    for name, value in more.items():
        setattr(options, name, value)
    return options
