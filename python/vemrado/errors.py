"""What can go wrong, as exceptions and warnings."""

from __future__ import annotations

import contextlib
import errno
import os
import sys
import threading
import warnings
from ctypes import byref, c_void_p
from typing import Any, Optional

from . import _library
from ._exit import calls
from ._library import lib


class MapError(OSError):
    """A map that cannot be used.

    Attributes
    ----------
    filename : str
        The map's file, or the name of what stands for one.
    line : int or None
        Line of the file, from 1.
    reason : str
        One sentence that names file, line and reason.
    """

    def __init__(self, reason: str, filename: str = "", line: Optional[int] = None) -> None:
        super().__init__(errno.EIO, reason, filename or None)
        self.reason = reason
        self.line = line

    def __str__(self) -> str:
        return self.reason

    def __reduce__(self) -> tuple[Any, ...]:
        return type(self), (self.reason, self.filename or "", self.line)


class OpenError(MapError):
    """The source cannot be opened."""


class ReadError(MapError):
    """Reading failed in the middle of the source; with ``strict=True`` an incomplete map too."""


class WriteError(MapError):
    """An output cannot be written."""


class UnsupportedError(NotImplementedError):
    """This build of the library cannot do that; the text says what brings it."""


class MapWarning(UserWarning):
    """Something is wrong with a map or its symbology but stops nothing.

    Attributes
    ----------
    filename, line, reason
        As those of `MapError`.
    """

    def __init__(self, reason: str, filename: str = "", line: Optional[int] = None) -> None:
        super().__init__(reason)
        self.reason = reason
        self.filename = filename
        self.line = line


class IncompleteMapWarning(MapWarning):
    """The closing record is missing: the last element of the map is lost."""


_CLASSES: dict[int, type[MapError]] = {
    _library.ERROR_OPEN: OpenError,
    _library.ERROR_READ: ReadError,
    _library.ERROR_WRITE: WriteError,
}


def _exception(status: int, text: str, file: str, line: Optional[int]) -> Exception:
    if status in _CLASSES:
        return _CLASSES[status](text, file, line)
    if status == _library.ERROR_ARGUMENT:
        return ValueError(text)
    if status == _library.ERROR_MEMORY:
        return MemoryError(text)
    if status == _library.ERROR_UNSUPPORTED:
        return UnsupportedError(text)
    return RuntimeError(text)


def _text(value: Optional[bytes]) -> str:
    return (value or b"").decode("utf-8", "replace")


_PACKAGE = os.path.join(os.path.dirname(__file__), "")


def tell(warning: MapWarning) -> None:
    """Warns of the line that uses the package, through however many functions of it."""
    level = 2
    frame = sys._getframe(1)
    while frame.f_back is not None and frame.f_code.co_filename.startswith((_PACKAGE, contextlib.__file__)):
        level += 1
        frame = frame.f_back
    warnings.warn(warning, stacklevel=level)


class Call:
    """One call of the library: its error becomes an exception, its warnings are told after it.

    Parameters
    ----------
    incomplete : str
        What a missing closing record is: ``"warn"``, ``"error"`` (a `ReadError`) or ``"ignore"``.

    >>> with Call() as call:  # doctest: +SKIP
    ...     call.check(lib.vkm_get_header(reader, byref(header), call.error))
    """

    def __init__(self, incomplete: str = "warn") -> None:
        self._error = c_void_p()
        self._incomplete = incomplete
        self.warnings: list[MapWarning] = []
        self.raised: Optional[BaseException] = None  # by a callback of ours

    @property
    def error(self) -> Any:
        return byref(self._error)

    def __enter__(self) -> Call:
        calls.begin()
        _collected.stack.append(self.warnings)
        return self

    def __exit__(self, failed: object, *_: object) -> None:
        _collected.stack.pop()
        calls.end()
        if failed is not None:
            return
        for warning in self.warnings:
            if isinstance(warning, IncompleteMapWarning):
                if self._incomplete == "ignore":
                    continue
                if self._incomplete == "error":
                    raise ReadError(warning.reason, warning.filename, warning.line)
            tell(warning)

    def check(self, status: int) -> int:
        """Returns the status when it is no failure."""
        if self.raised is not None:
            self._free()
            raise self.raised
        if status < 0:
            raise self._take(status)
        return status

    def check_pointer(self, pointer: Optional[int]) -> int:
        if self.raised is not None or not pointer:
            self.check(lib.vkm_error_status(self._error) or _library.ERROR_MEMORY)
        assert pointer is not None
        return pointer

    def _take(self, status: int) -> Exception:
        text = _text(lib.vkm_error_text(self._error)) or _text(lib.vkm_status_text(status))
        file = _text(lib.vkm_error_file(self._error))
        line = lib.vkm_error_line(self._error) or None
        self._free()
        return _exception(status, text, file, line)

    def _free(self) -> None:
        lib.vkm_error_free(self._error)
        self._error = c_void_p()


class _Collected(threading.local):
    """Warnings of the calls that the thread is in; the library tells them in the thread that called it."""

    def __init__(self) -> None:
        self.stack: list[list[MapWarning]] = []


_collected = _Collected()


def _on_warning(_: Any, warning: Any) -> None:
    if not _collected.stack:
        return  # a stream that somebody else reads
    text = _text(lib.vkm_error_text(warning))
    incomplete = lib.vkm_error_status(warning) == _library.INCOMPLETE
    kind = IncompleteMapWarning if incomplete else MapWarning
    file, line = _text(lib.vkm_error_file(warning)), lib.vkm_error_line(warning) or None
    _collected.stack[-1].append(kind(text, file, line))


#: Lives as long as the interpreter: streams may outlive the maps that they come from.
on_warning = _library.OnWarning(_on_warning)
