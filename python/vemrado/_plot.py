"""Draws a map through matplotlib, in its own style."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Optional

import numpy as np
import numpy.typing as npt

from .elements import Text
from .table import without_mask

if TYPE_CHECKING:
    import matplotlib.axes

    from .map import Map

_POINTS_PER_MM = 72 / 25.4
_DEGREES_PER_GON = 0.9
_PLAIN_WIDTH = 0.13  # mm, of lines without a line type
_CAPITALS_PER_EM = 0.729
_ACROSS = ("left", "center", "right")
_UPRIGHT = ("baseline", "center", "top")


def _strokes_by_code(opened: Map) -> dict[int, list[npt.NDArray[np.float64]]]:
    table = opened.lines
    geometry = table.geometry
    ends = geometry.offsets[-1]
    codes = without_mask(table["code"])
    if len(geometry.offsets) == 2:
        codes = np.repeat(codes, np.diff(geometry.offsets[0]))
    strokes: dict[int, list[npt.NDArray[np.float64]]] = {}
    for code, begin, end in zip(codes.tolist(), ends[:-1].tolist(), ends[1:].tolist()):
        strokes.setdefault(code, []).append(geometry.points[begin:end])
    return strokes


def _draw_lines(opened: Map, ax: Any) -> None:
    from matplotlib.collections import LineCollection

    for code, strokes in _strokes_by_code(opened).items():
        style = opened.line_style(code)
        if style is not None and not style.visible:
            continue
        width = (style.width if style else _PLAIN_WIDTH) * _POINTS_PER_MM
        colour = tuple(part / 255 for part in style.colour) if style else (0, 0, 0)
        dashes: Any = "solid"
        if style is not None and style.dashes:
            # Lengths of dashes count in widths of the line there.
            dashes = (0, [length * _POINTS_PER_MM / width for length in style.dashes])
        ax.add_collection(LineCollection(strokes, linewidths=width, colors=[colour], linestyles=[dashes]))


def _draw_symbols(opened: Map, ax: Any) -> None:
    from matplotlib.collections import LineCollection

    table = opened.points
    metres = opened.scale / 1000  # on the ground for a millimetre on paper
    symbols = without_mask(table["symbol"])
    for number in np.unique(symbols[symbols != 0]).tolist():
        drawing = opened.symbol(number)
        if drawing is None:
            continue
        rows = np.flatnonzero(symbols == number)
        strokes = []
        for row in rows.tolist():
            angle = np.radians(table["rotation"][row] * _DEGREES_PER_GON)
            turn = np.array([[np.cos(angle), np.sin(angle)], [-np.sin(angle), np.cos(angle)]])
            size = metres * table["scale"][row]
            place = table.geometry.points[row]
            strokes += [np.asarray(stroke) @ turn * size + place for stroke in drawing.strokes]
        ax.add_collection(LineCollection(strokes, linewidths=_PLAIN_WIDTH * _POINTS_PER_MM, colors="black"))


def _draw_texts(opened: Map, ax: Any) -> None:
    for element in opened:
        if not isinstance(element, Text):
            continue
        key = element.anchor - 1
        ax.text(
            *element.point,
            element.text.replace("$", r"\$"),
            fontsize=element.height / _CAPITALS_PER_EM * 1000 / opened.scale * _POINTS_PER_MM,
            family="serif" if element.serif else "sans-serif",
            weight="bold" if element.bold else "normal",
            style="italic" if element.italic else "normal",
            rotation=element.rotation * _DEGREES_PER_GON,
            rotation_mode="anchor",
            ha=_ACROSS[key % 3],
            va=_UPRIGHT[key // 3],
            clip_on=True,
        )


def plot(opened: Map, ax: Optional[matplotlib.axes.Axes] = None) -> matplotlib.axes.Axes:
    if ax is None:
        import matplotlib.pyplot as plt

        ax = plt.subplots()[1]
    axes: Any = ax
    _draw_lines(opened, axes)
    _draw_symbols(opened, axes)
    _draw_texts(opened, axes)
    axes.set_aspect("equal")
    bounds = opened.bounds
    if bounds is not None:
        axes.set_xlim(bounds[0], bounds[2])
        axes.set_ylim(bounds[1], bounds[3])
    axes.ticklabel_format(useOffset=False, style="plain")
    return axes
