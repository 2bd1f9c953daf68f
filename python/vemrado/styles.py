"""How lines and points of a code are drawn."""

from __future__ import annotations

from ctypes import byref, sizeof
from dataclasses import dataclass
from typing import Optional

from . import _library
from ._library import lib
from ._source import int32
from .errors import Call, _text


@dataclass(frozen=True)
class LineStyle:
    """How lines of a code are drawn: sizes in millimetres on paper.

    Attributes
    ----------
    name : str
        Empty when the tables give none.
    colour : tuple of int
        Red, green and blue, 0 to 255.
    width : float
    dashes : tuple of float
        Drawn, gap, drawn, gap, ...; empty: continuous.
    visible : bool
    """

    name: str
    colour: tuple[int, int, int]
    width: float
    dashes: tuple[float, ...]
    visible: bool


@dataclass(frozen=True)
class Symbol:
    """A point symbol around its insertion point, y up, in millimetres on paper.

    Attributes
    ----------
    name : str
    strokes : tuple of tuple of (float, float)
    """

    name: str
    strokes: tuple[tuple[tuple[float, float], ...], ...]


def line_style(reader: int, code: int) -> Optional[LineStyle]:
    style = _library.LineStyle(size=sizeof(_library.LineStyle))
    number = int32(code, "a code")
    with Call() as call:
        if call.check(lib.vkm_get_line_style(reader, number, byref(style), call.error)) != _library.OK:
            return None
    return LineStyle(
        _text(style.name),
        (style.colour & 255, style.colour >> 8 & 255, style.colour >> 16 & 255),
        style.width,
        tuple(style.dashes[: style.dash_count]),
        bool(style.visible),
    )


def symbol(reader: int, code: int) -> Optional[Symbol]:
    drawing = _library.Symbol(size=sizeof(_library.Symbol))
    number = int32(code, "a code")
    with Call() as call:
        if call.check(lib.vkm_get_symbol(reader, number, byref(drawing), call.error)) != _library.OK:
            return None
    points = [(drawing.points[2 * i], drawing.points[2 * i + 1]) for i in range(drawing.point_count)]
    begins = [*drawing.strokes[: drawing.stroke_count], drawing.point_count]
    strokes = tuple(tuple(points[a:b]) for a, b in zip(begins, begins[1:]))
    return Symbol(_text(drawing.name), strokes)
