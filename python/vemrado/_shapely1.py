"""Shapes for shapely 1.8, which has no way to make many at once and takes twice as long to find out what each is."""

from __future__ import annotations

import struct
from ctypes import c_char_p
from typing import TYPE_CHECKING, Any, Iterable

import numpy as np
import numpy.typing as npt

if TYPE_CHECKING:
    from .geometry import Geometry

_CLASSES = {
    "point": "Point",
    "linestring": "LineString",
    "multilinestring": "MultiLineString",
    "polygon": "Polygon",
}
#: What stands before the points in the well-known binary of a shape of one part; but for a point their number follows.
_HEADS = {
    "point": struct.pack("<BI", 1, 1),
    "linestring": struct.pack("<BI", 1, 2),
    "multilinestring": struct.pack("<BI", 1, 2),  # one of one stroke is a LineString
    "polygon": struct.pack("<BII", 1, 3, 1),
}
_SLOT = 16  # bytes of a point


def shapes_of(geometry: Geometry) -> npt.NDArray[Any]:
    """Each row as a shapely geometry; a line of one stroke is a LineString."""
    shapes = np.empty(len(geometry), dtype=object)
    single = np.ones(len(geometry), np.bool_)
    if len(geometry.offsets) == 2:
        single = np.diff(geometry.offsets[0]) == 1
    name = "LineString" if geometry.kind == "multilinestring" else _CLASSES[geometry.kind]
    slots, places, sizes = _binaries_of_one_part(geometry, single)
    begins = (slots.ctypes.data + places).tolist()
    _fill(shapes, np.flatnonzero(single), name, map(c_char_p, begins), sizes.tolist())
    others = np.flatnonzero(~single)
    if others.size:
        binaries = geometry.take(others).to_wkb()
        _fill(shapes, others, _CLASSES[geometry.kind], binaries, map(len, binaries))
    return shapes


def _binaries_of_one_part(
    geometry: Geometry, single: npt.NDArray[np.bool_]
) -> tuple[npt.NDArray[np.complex128], npt.NDArray[np.int64], npt.NDArray[np.int64]]:
    """Well-known binary of the rows that have one part: the memory, where each begins, its size.

    Each begins in a slot as wide as a point, so that its points are in the slots that follow and all are written at once.
    """
    starts = geometry.point_offsets().astype(np.int64)
    lengths = np.diff(starts)
    counts = lengths[single]
    ends = np.cumsum(counts + 1)
    firsts = ends - counts - 1
    slots = np.empty(int(ends[-1]) if ends.size else 0, np.complex128)
    head = np.frombuffer(_HEADS[geometry.kind], np.uint8)
    number = 0 if geometry.kind == "point" else 4
    slots.view(np.uint8).reshape(-1, _SLOT)[firsts, _SLOT - number - head.size : _SLOT - number] = head
    if number:
        slots.view("<u4").reshape(-1, _SLOT // number)[firsts, -1] = counts
    is_point = np.ones(slots.size, np.bool_)
    is_point[firsts] = False
    points = np.ascontiguousarray(geometry.points[starts[0] : starts[-1]], "<f8").view(np.complex128).ravel()
    slots[is_point] = points[np.repeat(single, lengths)]
    size = head.size + number
    return slots, firsts * _SLOT + _SLOT - size, counts * _SLOT + size


def _fill(
    shapes: npt.NDArray[Any], rows: npt.NDArray[Any], name: str, binaries: Iterable[Any], sizes: Iterable[int]
) -> None:
    """What shapely.wkb.loads does."""
    from shapely import geometry
    from shapely.errors import WKBReadingError
    from shapely.geos import WKBReader, lgeos

    cls = getattr(geometry, name)
    reader = WKBReader(lgeos)
    read, handle, new, put = lgeos.GEOSWKBReader_read, reader._reader, cls.__new__, object.__setattr__
    for row, binary, size in zip(rows.tolist(), binaries, sizes):
        made = read(handle, binary, size)
        if not made:
            raise WKBReadingError(f"row {row} makes no {name}")
        shape = new(cls)
        put(shape, "__geom__", made)
        put(shape, "_ndim", 2)
        put(shape, "_is_empty", False)
        shapes[row] = shape
