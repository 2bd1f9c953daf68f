"""Pictures of maps, drawn as the command ``vkm render`` draws them."""

from __future__ import annotations

import ctypes
import os
from ctypes import byref, c_double, sizeof
from typing import Any, Optional, Sequence, Union

from . import _library
from ._library import lib
from ._source import Source, encoded, four_numbers, int32, path_text
from .errors import Call
from .map import Map, opened_map


def render(
    source: Union[Source, Map],
    out: Union[str, "os.PathLike[str]", None] = None,
    *,
    format: Optional[str] = None,
    width: int = 0,
    dpi: float = 150,
    legend: bool = False,
    title: Optional[str] = None,
    bbox: Optional[Sequence[float]] = None,
    symbols: bool = True,
    **options: Any,
) -> Optional[bytes]:
    """Draws a map.

    Parameters
    ----------
    source : path, bytes, file object or Map
    out : path, optional
        The picture, whose ending says its format. It appears whole or not at all. None: the picture is returned.
    format : str, optional
        ``"png"``, ``"svg"`` or ``"pdf"``.
    width : int
        In pixels; 0: as large as on paper.
    dpi : float
        Pixels per inch of a PNG picture without a width.
    legend : bool
        Frame, title, grid, scale bar, north arrow and legend around the map.
    title : str, optional
        The file's name by default.
    bbox : sequence of four float, optional
        What the map shows: min x, min y, max x, max y.
    symbols : bool
    **options
        As for `open`.

    Raises
    ------
    ReadError
        With ``strict=True`` for an incomplete map, of which no picture is made.
    WriteError
        When the picture cannot be written.
    UnsupportedError
        When the library was built without what the format needs.
    """
    picture = _library.Picture(size=sizeof(_library.Picture))
    lib.vkm_picture_init(byref(picture))
    picture.format = format.encode() if format else None
    picture.width = int32(width, "the width")
    picture.dpi = dpi
    picture.legend = bool(legend)
    picture.title = title.encode() if title is not None else None
    if bbox is not None:
        picture.box = (c_double * 4)(*four_numbers(bbox))
    picture.symbols = bool(symbols)
    with opened_map(source, **options) as opened:
        opened._refuse_incomplete()
        if out is not None:
            with opened._using() as reader, Call() as call:
                call.check(lib.vkm_render(reader, byref(picture), encoded(path_text(out)), call.error))
            return None
        if format is None:
            raise ValueError("a picture in memory needs a format: png, svg or pdf")
        return _in_memory(opened, picture)


def _in_memory(opened: Map, picture: _library.Picture) -> bytes:
    parts: list[bytes] = []

    def write(_: Any, data: int, length: int) -> int:
        parts.append(ctypes.string_at(data, length))
        return 0

    with opened._using() as reader, Call() as call:
        call.check(lib.vkm_render_to(reader, byref(picture), _library.Write(write), None, call.error))
    return b"".join(parts)
