"""A layer as columns."""

from __future__ import annotations

import gc
import html
import json
from contextlib import contextmanager
from typing import TYPE_CHECKING, Any, Callable, Iterator, Optional, Sequence

import numpy as np
import numpy.typing as npt

from . import _arrow
from ._arrow import Array
from ._source import four_numbers
from .geometry import Geometry

if TYPE_CHECKING:
    import geopandas
    import pandas

_SHOWN_ROWS = 10


class RowStream:
    """A table that is read while it is taken, batch by batch, by whoever takes an Arrow stream.

    Each taking reads the source anew, from its beginning.
    """

    def __init__(self, make: Callable[[], _arrow.ArrowArrayStream]) -> None:
        self._make = make

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        """A capsule with the stream."""
        return _arrow.capsule_of(self._make())


class Table:
    """Rows of lines, points, texts or parcels, by columns.

    ``table["layer"]`` is a numpy array: a view into the library's memory for numbers, a masked array where
    values are missing, an array of objects for texts and lists. ``table.geometry`` has the geometry.

    pyarrow, polars, duckdb, geopandas and others take the table as it is, through ``__arrow_c_stream__``.

    Attributes
    ----------
    name : str
        ``"lines"``, ``"points"``, ``"texts"`` or ``"parcels"``.
    crs : str or None
        Reference system.
    columns : list of str
        Names of the columns but the geometry, as docs/gis.md has them.
    """

    def __init__(
        self,
        name: str,
        parts: Sequence[_arrow.Columns],
        source: Optional[str] = None,
        names: Sequence[str] = (),
    ) -> None:
        self.name = name
        self._parts = list(parts)
        self._source, self._names = source, names  # a column more, and its text for each part
        self._kind = kind = parts[0].kind
        self._batches = [batch for part in parts for batch in part.batches]
        self._cache: dict[str, npt.NDArray[Any]] = {}
        self._geometry: Optional[Geometry] = None
        self._places = {field.name: i for i, field in enumerate(kind.children)}
        self._length: int = sum(batch.length for batch in self._batches)
        self.columns = [field.name for field in kind.children if not _is_geometry(field)]
        if source is not None:
            self.columns.append(source)
        self.crs = _crs_of(kind)

    def __len__(self) -> int:
        return self._length

    def __iter__(self) -> Iterator[str]:
        return iter(self.columns)

    def __contains__(self, column: object) -> bool:
        return column in self.columns

    def __getitem__(self, column: str) -> npt.NDArray[Any]:
        if column not in self._cache:
            if column not in self.columns:
                raise KeyError(column)
            self._cache[column] = self._told() if column == self._source else self._read(column)
        return self._cache[column]

    def _read(self, column: str) -> npt.NDArray[Any]:
        place = self._places[column]
        parts = [_to_numpy(batch.children[place]) for batch in self._batches]
        return _joined(parts) if parts else _empty(self._kind.children[place])

    def _told(self) -> npt.NDArray[Any]:
        rows = [sum(batch.length for batch in part.batches) for part in self._parts]
        return np.repeat(np.array(self._names, dtype=object), rows)

    @property
    def types(self) -> dict[str, str]:
        """What each column holds: ``"int32"``, ``"float64"``, ``"text"``, ``"list of int32"`` and so on."""
        named = {field.name: _arrow.type_name(field) for field in self._kind.children}
        return {column: named.get(column, "text") for column in self.columns}

    @property
    def geometry(self) -> Geometry:
        """The geometry of the rows."""
        if self._geometry is None:
            place = next(i for i, field in enumerate(self._kind.children) if _is_geometry(field))
            parts = [Geometry.of_column(batch.children[place]) for batch in self._batches]
            if not parts:
                name = self._kind.children[place].metadata["ARROW:extension:name"].rpartition(".")[2]
                depth = {"point": 0, "linestring": 1}.get(name, 2)
                parts = [Geometry(name, np.empty((0, 2)), [np.zeros(1, np.int32)] * depth)]
            self._geometry = Geometry.joined(parts)
        return self._geometry

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        """A capsule with a stream of the record batches that the table holds, without a copy."""
        return _arrow.capsule_of(_arrow.stream_of(self._parts, self._source, self._names))

    def to_arrow(self) -> Any:
        """The table as a pyarrow.Table."""
        import pyarrow

        return pyarrow.table(self)

    def to_pandas(self, rows: Optional[npt.NDArray[Any]] = None) -> pandas.DataFrame:
        """The columns without the geometry, missing values as None or NaN.

        Parameters
        ----------
        rows : array of int, optional
            Numbers of the rows to take; all by default.
        """
        import pandas

        data = {}
        for column in self.columns:
            values = self[column] if rows is None else self[column][rows]
            place = self._places.get(column)
            nullable = place is not None and self._kind.children[place].nullable
            data[column] = _for_pandas(values, nullable)
        return pandas.DataFrame(data)

    def to_geopandas(self, rows: Optional[npt.NDArray[Any]] = None) -> geopandas.GeoDataFrame:
        """The columns with the geometry and its reference system."""
        with no_collection():
            return self._to_geopandas(rows)

    def _to_geopandas(self, rows: Optional[npt.NDArray[Any]]) -> geopandas.GeoDataFrame:
        import geopandas

        geometry = self.geometry if rows is None else self.geometry.take(rows)
        # The shapes are known to be shapes: taken as they are, without a look at each.
        shapes = geopandas.array.GeometryArray(geometry.to_shapely(), crs=self.crs)
        return geopandas.GeoDataFrame(self.to_pandas(rows), geometry=shapes)

    def rows_in(self, bbox: Sequence[float]) -> npt.NDArray[Any]:
        """Numbers of the rows whose bounds meet a box (min x, min y, max x, max y)."""
        low_x, low_y, high_x, high_y = four_numbers(bbox)
        box = self.geometry.bounds()
        with np.errstate(invalid="ignore"):
            meets = (
                (box[:, 0] <= high_x) & (box[:, 2] >= low_x) & (box[:, 1] <= high_y) & (box[:, 3] >= low_y)
            )
        return np.flatnonzero(meets)

    def __copy__(self) -> Table:
        return self  # nothing of it can be changed

    def __deepcopy__(self, memo: object) -> Table:
        return self

    def __repr__(self) -> str:
        return f"<{len(self)} {self.name}: {', '.join(self.columns)}>"

    def _repr_html_(self) -> str:
        shown = min(len(self), _SHOWN_ROWS)
        head = "".join(f"<th>{html.escape(column)}</th>" for column in self.columns)
        body = ""
        for row in range(shown):
            cells = (_shown(self[column][row]) for column in self.columns)
            body += "<tr>" + "".join(f"<td>{html.escape(cell)}</td>" for cell in cells) + "</tr>"
        more = f"<p>{len(self)} {html.escape(self.name)}</p>"
        return f"<table><thead><tr>{head}</tr></thead><tbody>{body}</tbody></table>{more}"

    @staticmethod
    def joined(tables: Sequence[Table], column: str, values: Sequence[str]) -> Table:
        """The rows of several tables of one kind, with a column that tells them apart."""
        parts = [(part, value) for table, value in zip(tables, values) for part in table._parts]
        return Table(tables[0].name, [part for part, _ in parts], column, [value for _, value in parts])


def _is_geometry(field: _arrow.Field) -> bool:
    return "ARROW:extension:name" in field.metadata


def _crs_of(kind: _arrow.Field) -> Optional[str]:
    for field in kind.children:
        text = field.metadata.get("ARROW:extension:metadata")
        if text:
            crs = json.loads(text).get("crs")
            return crs if crs is None or isinstance(crs, str) else json.dumps(crs)
    return None


@contextmanager
def no_collection() -> Iterator[None]:
    """Many objects in a row are made twice as fast when nobody looks for cycles among them meanwhile."""
    was = gc.isenabled()
    gc.disable()
    try:
        yield
    finally:
        if was:
            gc.enable()


# numpy 1 has no types for masked arrays.
_masked: Any = np.ma.MaskedArray
_mask_array: Any = np.ma.getmaskarray


def _mask_of(values: npt.NDArray[Any]) -> npt.NDArray[np.bool_]:
    mask: npt.NDArray[np.bool_] = _mask_array(values)
    return mask


def without_mask(values: npt.NDArray[Any]) -> npt.NDArray[Any]:
    """Numbers with 0 where there is none."""
    return np.where(_mask_of(values), 0, np.asarray(values))


def _to_numpy(column: Array) -> npt.NDArray[Any]:
    if column.values is None or column.offsets is not None:
        objects = np.empty(column.length, dtype=object)
        for row, value in zip(column.rows(), column.objects()):
            objects[row] = value
        return objects
    if column.valid is None:
        return column.values
    masked: npt.NDArray[Any] = _masked(column.values, ~column.valid)
    return masked


def _joined(parts: list[npt.NDArray[Any]]) -> npt.NDArray[Any]:
    if len(parts) == 1:
        return parts[0]
    if any(isinstance(part, np.ma.MaskedArray) for part in parts):
        masks = np.concatenate([_mask_of(part) for part in parts])
        joined: npt.NDArray[Any] = _masked(np.concatenate([np.asarray(part) for part in parts]), masks)
        return joined
    return np.concatenate(parts)


def _empty(field: _arrow.Field) -> npt.NDArray[Any]:
    return np.empty(0, _arrow.dtype_of(field))


def _for_pandas(values: npt.NDArray[Any], nullable: bool) -> Any:
    """Whole numbers that may be missing get pandas' own kind, whether one is missing or not."""
    import pandas

    if nullable and values.dtype.kind in "iu":
        return pandas.arrays.IntegerArray(np.ascontiguousarray(np.asarray(values)), _mask_of(values).copy())
    if isinstance(values, np.ma.MaskedArray):
        return np.where(_mask_of(values), np.nan, values.data)
    return values


def _shown(value: Any) -> str:
    return "" if value is None or value is np.ma.masked else str(value)
