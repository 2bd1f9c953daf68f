"""Geometry columns: points in one array, with the places where parts begin."""

from __future__ import annotations

import struct
from typing import Any

import numpy as np
import numpy.typing as npt

from ._arrow import Array

_DEPTH = {"point": 0, "linestring": 1, "multilinestring": 2, "polygon": 2}
_WKB_TYPES = {"point": 1, "linestring": 2, "polygon": 3, "multilinestring": 5}


class Geometry:
    """The geometry of a table's rows.

    Attributes
    ----------
    kind : str
        ``"point"``, ``"linestring"``, ``"multilinestring"`` or ``"polygon"``.
    points : numpy.ndarray, shape (n, 2), float64
        x and y of all points in metres, a view where the library has them side by side.
    offsets : list of numpy.ndarray
        From the outside in: where the parts of each row begin (strokes, rings), then where the points of each
        part begin. Each has one more entry than there are rows or parts. Empty for points.
    """

    def __init__(self, kind: str, points: npt.NDArray[np.float64], offsets: list[npt.NDArray[Any]]) -> None:
        self.kind = kind
        self.points = points
        self.offsets = offsets

    @classmethod
    def of_column(cls, column: Array) -> Geometry:
        kind = column.field.metadata["ARROW:extension:name"].rpartition(".")[2]
        offsets = []
        for _ in range(_DEPTH[kind]):
            assert column.offsets is not None
            offsets.append(column.offsets)
            column = column.children[0]
        if column.field.kind.startswith("+w:"):
            values = column.children[0].values
            assert values is not None
            points = values.reshape(-1, 2)
        else:
            points = np.column_stack([np.asarray(child.values) for child in column.children])
        return cls(kind, points, offsets)

    @classmethod
    def joined(cls, parts: list[Geometry]) -> Geometry:
        """The rows of several, one after the other."""
        if len(parts) == 1:
            return parts[0]
        offsets = []
        for level in range(len(parts[0].offsets)):
            pieces: list[npt.NDArray[Any]] = [np.zeros(1, np.int64)]
            before = 0
            for part in parts:
                inner = part.offsets[level].astype(np.int64)
                pieces.append(inner[1:] - inner[0] + before)
                before += int(inner[-1] - inner[0])
            offsets.append(np.concatenate(pieces))
        return cls(parts[0].kind, np.concatenate([part.points for part in parts]), offsets)

    def __len__(self) -> int:
        return len(self.offsets[0]) - 1 if self.offsets else len(self.points)

    def point_offsets(self) -> npt.NDArray[Any]:
        """Where the points of each row begin, one more than there are rows."""
        if not self.offsets:
            return np.arange(len(self.points) + 1)
        places = self.offsets[0]
        for inner in self.offsets[1:]:
            places = inner[places]
        return places

    def bounds(self) -> npt.NDArray[np.float64]:
        """Smallest and largest x and y of each row, shape (rows, 4); NaN for a row without points."""
        starts = self.point_offsets()
        box = np.full((len(self), 4), np.nan)
        filled = np.flatnonzero(starts[1:] > starts[:-1])
        if filled.size:
            begins = starts[filled]
            end = starts[filled[-1] + 1]
            box[filled, :2] = np.minimum.reduceat(self.points[:end], begins)
            box[filled, 2:] = np.maximum.reduceat(self.points[:end], begins)
        return box

    def take(self, rows: npt.NDArray[Any]) -> Geometry:
        """The geometry of some rows, by their numbers."""
        offsets = []
        wanted = rows
        for level in self.offsets:
            starts, ends = level[wanted], level[np.asarray(wanted) + 1]
            counts = ends - starts
            offsets.append(np.concatenate(([0], np.cumsum(counts))))
            total = int(offsets[-1][-1])
            shift = np.repeat(starts - offsets[-1][:-1], counts)
            wanted = np.arange(total) + shift
        return Geometry(self.kind, self.points[wanted], offsets)

    def to_wkb(self) -> list[bytes]:
        """Each row as well-known binary."""
        data = memoryview(np.ascontiguousarray(self.points, "<f8").tobytes())
        number = _WKB_TYPES[self.kind]
        if self.kind == "point":
            head = struct.pack("<BI", 1, number)
            return [head + data[i : i + 16] for i in range(0, len(data), 16)]
        ends = self.offsets[-1].tolist()

        def run(part: int) -> bytes:
            return (
                struct.pack("<I", ends[part + 1] - ends[part]) + data[16 * ends[part] : 16 * ends[part + 1]]
            )

        head = struct.pack("<BI", 1, number)
        if self.kind == "linestring":
            return [head + run(row) for row in range(len(ends) - 1)]
        part_head = struct.pack("<BI", 1, _WKB_TYPES["linestring"]) if self.kind == "multilinestring" else b""
        rows = self.offsets[0].tolist()
        return [
            head + struct.pack("<I", b - a) + b"".join(part_head + run(part) for part in range(a, b))
            for a, b in zip(rows, rows[1:])
        ]

    def to_shapely(self) -> npt.NDArray[Any]:
        """Each row as a shapely geometry; a line of one stroke is a LineString."""
        import shapely

        if not hasattr(shapely, "from_ragged_array"):
            from ._shapely1 import shapes_of

            return shapes_of(self)
        shapes = np.empty(len(self), dtype=object)
        kind = shapely.GeometryType[self.kind.upper()]
        shapes[:] = shapely.from_ragged_array(kind, self.points, tuple(reversed(self.offsets)) or None)
        if self.kind == "multilinestring":
            single = np.diff(self.offsets[0]) == 1
            shapes[single] = shapely.get_geometry(shapes[single], 0)
        return shapes
