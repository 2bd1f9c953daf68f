"""Lines and texts, one at a time."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any, Union

import numpy as np
import numpy.typing as npt

from . import _library
from .errors import _text


@dataclass(frozen=True)
class Stroke:
    """A run of points of a line: ``line.points[stroke.first : stroke.first + stroke.count]``.

    Attributes
    ----------
    first, count : int
    code : int
        The code that holds on it, 0 for none.
    """

    first: int
    count: int
    code: int


@dataclass(frozen=True, eq=False)
class Line:
    """A line with its vertices.

    Attributes
    ----------
    layer : int
    layer_name : str
    file_line : int
        Line of the file, from 1.
    points : numpy.ndarray, shape (n, 2), float64
        x and y in metres.
    types : str
        A type letter for each vertex: C, K, L, P, R, or ``?`` for any other.
    codes : tuple of str
        Code of each vertex as it stands in the file, empty for none.
    pen_codes : numpy.ndarray of int32
        The code in force at each vertex: its own, or the last one before; 0 for none.
    symbols : numpy.ndarray of int32
        Symbol code of each vertex, 0 for none.
    m_values, r_values, u_values : numpy.ndarray of float64
        Scale of the symbol (1 for none), R value and rotation as in the file.
    strokes : tuple of Stroke
        Runs of two points or more, which straight segments connect.
    """

    layer: int
    layer_name: str
    file_line: int
    points: npt.NDArray[np.float64]
    types: str
    codes: tuple[str, ...]
    pen_codes: npt.NDArray[np.int32]
    symbols: npt.NDArray[np.int32]
    m_values: npt.NDArray[np.float64]
    r_values: npt.NDArray[np.float64]
    u_values: npt.NDArray[np.float64]
    strokes: tuple[Stroke, ...]

    @property
    def values(self) -> npt.NDArray[np.float64]:
        """M, R and U of each vertex, shape (n, 3)."""
        return np.column_stack((self.m_values, self.r_values, self.u_values))


@dataclass(frozen=True, eq=False)
class Text:
    """A text at its insertion point.

    Attributes
    ----------
    layer : int
    layer_name : str
    file_line : int
        Line of the file, from 1.
    text : str
    point : numpy.ndarray, shape (2,), float64
    height : float
        On the ground in metres.
    rotation : float
        As in the file: gons, counter-clockwise.
    code : int
        0 for none.
    d_value, f_value : int
    anchor : int
        Side or corner of the text at its point, 1 to 9 as on a numeric keypad.
    serif, bold, italic : bool
    """

    layer: int
    layer_name: str
    file_line: int
    text: str
    point: npt.NDArray[np.float64]
    height: float
    rotation: float
    code: int
    d_value: int
    f_value: int
    anchor: int
    serif: bool
    bold: bool
    italic: bool


def _array(pointer: Any, count: int) -> npt.NDArray[Any]:
    """A copy: the library uses its memory again for the next element."""
    return np.ctypeslib.as_array(pointer, (count,)).copy()


def copy_element(element: _library.Element) -> Union[Line, Text]:
    if element.kind == _library.TEXT:
        return Text(
            element.layer,
            _text(element.layer_name),
            element.file_line,
            _text(element.text),
            _array(element.points, 2),
            element.height,
            element.rotation,
            element.code,
            element.d_value,
            element.f_value,
            element.anchor,
            bool(element.face & 1),
            bool(element.face & 2),
            bool(element.face & 4),
        )
    count = element.point_count
    if count == 0:
        none, real = np.empty(0, np.int32), np.empty(0)
        place = (element.layer, _text(element.layer_name), element.file_line)
        return Line(*place, real.reshape(0, 2), "", (), none, none, real, real, real, ())
    return Line(
        element.layer,
        _text(element.layer_name),
        element.file_line,
        _array(element.points, 2 * count).reshape(count, 2),
        _text(element.types),
        tuple(_text(code) for code in element.codes[:count]),
        _array(element.pen_codes, count),
        _array(element.symbols, count),
        _array(element.m_values, count),
        _array(element.r_values, count),
        _array(element.u_values, count),
        tuple(
            Stroke(stroke.first, stroke.count, stroke.code)
            for stroke in element.strokes[: element.stroke_count]
        ),
    )
