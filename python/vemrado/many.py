"""Many sheets as one table."""

from __future__ import annotations

import os
from concurrent.futures import ThreadPoolExecutor
from typing import Any, Iterable, Iterator, Optional, TypeVar, Union

from ._source import Layers, int32, path_text, several
from .errors import MapError, MapWarning, tell
from .map import open
from .table import Table

Item = TypeVar("Item")
Path = Union[str, "os.PathLike[str]"]


def _with_progress(items: Iterator[Item], total: int, shown: bool) -> Iterable[Item]:
    if not shown:
        return items
    try:
        from tqdm.auto import tqdm
    except ImportError:
        return items
    bar: Iterable[Item] = tqdm(items, total=total, unit="sheet")
    return bar


def sheet_names(paths: Iterable[Path]) -> list[str]:
    names = [path_text(path) for path in several(paths, "sheets")]
    if not names:
        raise ValueError("there are no sheets to read")
    return names


def read_many(
    paths: Iterable[Path],
    threads: Optional[int] = None,
    *,
    layer: str = "lines",
    where_layer: Layers = None,
    on_error: str = "raise",
    progress: bool = True,
    **options: Any,
) -> Table:
    """Reads one table of many sheets, in parallel.

    Parameters
    ----------
    paths : iterable of path
    threads : int, optional
        Sheets read at the same time; one for each processor by default.
    layer : str
        ``"lines"``, ``"points"``, ``"texts"`` or ``"parcels"``, of each sheet by itself.
    where_layer : int or iterable of int, optional
        Only rows of these layers of the files.
    on_error : str
        ``"raise"``: the first sheet that cannot be read ends it with its exception; ``"warn"``: it becomes a
        `MapWarning` and is left out.
    progress : bool
        A progress bar, where tqdm is installed.
    **options
        As for `open`.

    Returns
    -------
    Table
        The rows in the order of the paths, with the column ``source`` that has each row's file.
    """
    if on_error not in ("raise", "warn"):
        raise ValueError(f"on_error is 'raise' or 'warn', not {on_error!r}")
    names = sheet_names(paths)

    def read(name: str) -> Union[Table, MapError]:
        try:
            with open(name, layer=where_layer, **options) as sheet:
                return sheet.table(layer)
        except MapError as error:
            if on_error == "raise":
                raise
            return error

    tables, sources = [], []
    if threads is not None and int32(threads, "threads") < 0:
        raise ValueError(f"sheets are not read by {threads} threads")
    with ThreadPoolExecutor(threads or os.cpu_count() or 1) as pool:
        try:
            # The bar comes first, so that it sees its end.
            for made, name in zip(_with_progress(pool.map(read, names), len(names), progress), names):
                if isinstance(made, Table):
                    tables.append(made)
                    sources.append(name)
                else:
                    tell(MapWarning(f"{made}; left out"))
        except BaseException:
            pool.shutdown(wait=False, cancel_futures=True)
            raise
    if not tables:
        raise MapError("none of the sheets can be read")
    return Table.joined(tables, "source", sources)
