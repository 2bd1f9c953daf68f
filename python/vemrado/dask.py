"""Archives of sheets on many machines, through Dask.

A sheet is the unit of work: a partition of a dataframe, an item of a bag. Workers read the sheets by their paths, so
these must be the same for all.
"""

from __future__ import annotations

from typing import Any, Callable, Iterable, Optional, Sequence, TypeVar

from ._source import Layers
from .errors import MapError
from .many import Path, sheet_names
from .map import Map, open

Result = TypeVar("Result")


def _apply(
    name: str, work: Callable[[Map], Result], options: dict[str, Any]
) -> tuple[str, Optional[Result], str]:
    try:
        with open(name, **options) as sheet:
            return name, work(sheet), ""
    except MapError as error:
        return name, None, str(error)


def bag(paths: Iterable[Path], work: Callable[[Map], Any], **options: Any) -> Any:
    """A dask bag with an item for each sheet.

    Parameters
    ----------
    paths : iterable of path
    work : callable
        Gets the opened map, returns what can be sent between machines.
    **options
        As for `vemrado.open`.

    Returns
    -------
    dask.bag.Bag
        Of tuples (path, result, reason): result is None and reason a sentence for a sheet that cannot be read.
    """
    import dask.bag

    names = sheet_names(paths)
    return dask.bag.from_sequence(names, npartitions=len(names)).map(_apply, work, options)


def _read_frame(name: str, layer: str, columns: Sequence[str], options: dict[str, Any]) -> Any:
    with open(name, **options) as sheet:
        table = sheet.table(layer)
        frame = table.to_pandas()
        frame["wkb"] = table.geometry.to_wkb()
    frame["source"] = name
    return frame[list(columns)]


def dataframe(paths: Iterable[Path], layer: str = "lines", where_layer: Layers = None, **options: Any) -> Any:
    """A dask dataframe with a partition for each sheet.

    Parameters
    ----------
    paths : iterable of path
    layer : str
        ``"lines"``, ``"points"``, ``"texts"`` or ``"parcels"``.
    where_layer : int or iterable of int, optional
        Only rows of these layers of the files.
    **options
        As for `vemrado.open`.

    Returns
    -------
    dask.dataframe.DataFrame
        The table's columns, ``wkb`` with the geometry and ``source`` with the sheet's path.
    """
    import dask.dataframe
    from dask import delayed

    names = sheet_names(paths)
    options = dict(options, layer=where_layer)
    with open(b"&K\n", **options) as empty:
        table = empty.table(layer)
        meta = table.to_pandas()
    meta["wkb"] = meta["source"] = ""
    meta = meta.iloc[:0]
    columns = list(meta.columns)
    read = delayed(_read_frame)
    return dask.dataframe.from_delayed([read(name, layer, columns, options) for name in names], meta=meta)
