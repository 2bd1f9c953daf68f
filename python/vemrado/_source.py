"""What maps are read from: files, bytes, file objects, members of archives."""

from __future__ import annotations

import codecs
import gzip
import itertools
import operator
import os
import stat
import sys
import zipfile
import zlib
from contextlib import nullcontext
from functools import partial
from ctypes import byref, c_int32, sizeof
from pathlib import Path
from typing import IO, Any, Callable, Iterable, Optional, Sequence, TypeVar, Union

from . import _library
from ._library import lib
from ._exit import calls
from .errors import Call, OpenError, on_warning

Source = Union[str, "os.PathLike[str]", bytes, bytearray, memoryview, IO[bytes], zipfile.Path]
Layers = Union[None, int, Iterable[int]]
Item = TypeVar("Item")

_SAMPLE_SYMBOLOGY = Path(__file__).resolve().parent / "symbology"
_GZIP = b"\x1f\x8b"
#: The library's names of encodings by those of Python.
_ENCODINGS = {"cp1250": "windows-1250", "cp852": "cp852", "iso8859-2": "iso-8859-2", "utf-8": "utf-8"}


def encoded(path: str) -> bytes:
    return path.encode() if sys.platform == "win32" else os.fsencode(path)


# Bytes that readers and streams of the library look into, until it says that it has done with them. No lock: a map may be
# collected, and its bytes dropped, between any two steps of the thread that adds some; each step is whole by itself.
_kept: dict[int, bytes] = {}
_numbers = itertools.count(1)


def _keep(data: bytes) -> int:
    number = next(_numbers)
    _kept[number] = data
    return number


def _drop(number: int) -> None:
    _kept.pop(number, None)


_release = _library.Release(_drop)


def close_reader(reader: Optional[int]) -> None:
    """Gives a reader back to the library; None is left alone."""
    with calls:
        lib.vkm_close(reader)


class OpenedSource:
    """A source that readers can be opened on any number of times."""

    def __init__(self, source: Source) -> None:
        self.path: Optional[bytes] = None
        self.data: Optional[bytes] = None
        if isinstance(source, (bytes, bytearray, memoryview)):
            self.name, self.data = "memory", bytes(source)
        elif isinstance(source, zipfile.Path):
            self.name = str(source)
            self.data = _whole(partial(source.open, "rb"), self.name)
        elif hasattr(source, "read"):
            self.name = str(getattr(source, "name", "file object"))
            self.data = _whole(partial(nullcontext, source), self.name)
        elif isinstance(source, (str, os.PathLike)):
            self.name = path_text(source)
            self._take_path(self.name)
        else:
            raise TypeError(
                f"a map is read from a path, bytes or a binary file object, not from {type(source).__name__}"
            )
        if self.data is not None and self.data[:2] == _GZIP:
            self.data = _unpacked(self.data, self.name)

    def _take_path(self, path: str) -> None:
        if path == "-":
            path = "./-"  # the library takes the bare name for standard input
        member = _zip_member(path)
        if member is not None:
            self.data = _whole(partial(member.open, "rb"), path)
        elif _needs_python(path):
            self.data = _whole(partial(open, path, "rb"), path)
        else:
            self.path = encoded(path)

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
                    _keep(self.data),
                    call.error,
                )
            return call.check_pointer(reader)


def path_text(path: Union[str, "os.PathLike[str]"]) -> str:
    text = os.fspath(path)
    if not isinstance(text, str):
        raise TypeError("a path is a str or an os.PathLike of str")
    if "\0" in text:
        raise ValueError("embedded null character in the path")
    return text


def _needs_python(path: str) -> bool:
    """Whether the file is gzipped, or a pipe, which can be read only once."""
    try:
        if not stat.S_ISREG(os.stat(path).st_mode):
            return not os.path.isdir(path)
        with open(path, "rb") as file:
            return file.read(2) == _GZIP
    except OSError:
        return False  # the library says what is wrong


def _zip_member(path: str) -> Optional[zipfile.Path]:
    """``archive.zip/folder/sheet.vkm`` as a member; a member alone of an archive needs no name."""
    place = Path(path)
    for folder in (place, *place.parents):
        if folder.is_file():
            break
    else:
        return None
    if folder.suffix.lower() != ".zip" or not zipfile.is_zipfile(folder):
        return None
    try:
        archive = zipfile.ZipFile(folder)
    except (zipfile.BadZipFile, OSError) as error:
        raise OpenError(f"{path}: {error}", path) from error
    maps = [name for name in archive.namelist() if name.lower().endswith((".vkm", ".vkm.gz"))]
    if folder != place:
        name = place.relative_to(folder).as_posix()
        if name not in archive.namelist():
            raise OpenError(f"{path}: the archive has no such member", path)
    elif len(maps) == 1:
        name = maps[0]
    else:
        raise OpenError(f"{path}: the archive holds {len(maps)} maps; name one, {path}/SHEET", path)
    return zipfile.Path(archive, name)


def _whole(opener: Callable[[], Any], name: str) -> bytes:
    try:
        with opener() as file:
            data = file.read()
    except (EOFError, zipfile.BadZipFile, zlib.error, OSError, RuntimeError, NotImplementedError) as error:
        raise OpenError(
            f"{name}: {error}", name
        ) from error  # of members the last two: encrypted, unknown method
    if not isinstance(data, bytes):
        raise TypeError("the file object gives text; open it in binary mode")
    return data


def _unpacked(data: bytes, name: str) -> bytes:
    try:
        return gzip.decompress(data)
    except (EOFError, zlib.error, OSError) as error:
        raise OpenError(f"{name}: {error}", name) from error


def int32(value: Any, what: str) -> int:
    """A whole number, numpy's too, that the library's own kind holds; ctypes would cut it."""
    try:
        number = operator.index(value)
    except TypeError:
        raise TypeError(f"{what} is a whole number, not {type(value).__name__}") from None
    if not -(2**31) <= number < 2**31:
        raise ValueError(f"{what} is out of range: {number}")
    return number


def four_numbers(bbox: Sequence[float]) -> tuple[float, float, float, float]:
    """A box as smallest x and y, largest x and y."""
    try:
        low_x, low_y, high_x, high_y = (float(value) for value in bbox)
    except (TypeError, ValueError):
        raise ValueError("a box is four numbers: min x, min y, max x, max y") from None
    return low_x, low_y, high_x, high_y


def several(values: Iterable[Item], what: str) -> list[Item]:
    """A list of what is no text alone, whose letters nobody means."""
    if isinstance(values, (str, bytes, os.PathLike)):
        raise TypeError(f"{what} are several: a list of them, not {values!r} alone")
    return list(values)


def _encoding_name(encoding: str) -> bytes:
    try:
        name = codecs.lookup(encoding).name
    except LookupError:
        name = encoding  # the library says that there is none
    return _ENCODINGS.get(name, encoding).encode()


def _layer_numbers(layer: Union[int, Iterable[int]]) -> list[int]:
    asked: Iterable[Any] = layer if isinstance(layer, Iterable) else [layer]
    numbers = [int32(number, "a layer") for number in asked]
    if not numbers:
        raise ValueError("no layer is asked for; None asks for all")
    return numbers


def make_options(
    layer: Layers,
    encoding: str,
    orientation: str,
    symbology: Union[None, str, "os.PathLike[str]"],
) -> _library.Options:
    """The library's options; what they point to lives as long as they do."""
    options = _library.Options()
    options.size = sizeof(options)
    lib.vkm_options_init(byref(options))
    options.encoding = _encoding_name(encoding)
    options.orientation = orientation.encode()
    if symbology is None and _SAMPLE_SYMBOLOGY.is_dir():
        symbology = _SAMPLE_SYMBOLOGY
    if symbology is not None:
        options.symbology = encoded(os.fspath(symbology))
    if layer is not None:
        numbers = _layer_numbers(layer)
        options.layers = (c_int32 * len(numbers))(*numbers)
        options.layer_count = len(numbers)
    # One batch a table, so that its columns are views: as many rows as the library lets come.
    options.batch_rows = 0x7FFFFFFF
    options.on_warning = on_warning
    return options
