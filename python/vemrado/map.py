"""One map: its header, its elements, its tables."""

from __future__ import annotations

import os
import threading
from contextlib import contextmanager
from ctypes import POINTER, addressof, byref, c_double, c_int32, sizeof
from functools import partial
from typing import TYPE_CHECKING, Any, Iterator, NoReturn, Optional, Sequence, Union

from . import _arrow, _library
from ._library import lib
from ._source import Layers, OpenedSource, Source, close_reader, make_options
from .elements import Line, Text, copy_element
from .errors import Call, IncompleteMapWarning, ReadError, UnsupportedError, _text
from .styles import LineStyle, Symbol, line_style, symbol
from .table import RowStream, Table

if TYPE_CHECKING:
    import matplotlib.axes

Element = Union[Line, Text]
_STREAMED_ROWS = 65536  # of a batch at most
_CELL_WIDTH = 900  # pixels of a map in a notebook


class Map:
    """An opened map. Use `open` to make one; it is a context manager.

    Iterating gives `Line` and `Text` objects in the order of the file. Every method may be called from any thread.

    Attributes
    ----------
    scale : float
        Map scale number: 1000 for 1:1000.
    relative : bool
        Whether the file's coordinates are relative to an origin; the points here are absolute.
    crs : str or None
        Reference system of the points, such as ``"EPSG:5514"``.
    metadata : dict
        Of the header: ``name``, ``date``, ``comments`` (a list) and ``origin``.
    """

    def __init__(self, source: OpenedSource, options: _library.Options, strict: bool) -> None:
        self._reader: Optional[int] = None
        self._lock = threading.RLock()
        self._tables: dict[str, Table] = {}
        self._incomplete = "error" if strict else "warn"
        self._source = source
        self._options = options
        self._reader = self._source.open(self._options)
        self._complete: Optional[bool] = None
        header = _library.Header(size=sizeof(_library.Header))
        with Call() as call:
            call.check(lib.vkm_get_header(self._reader, byref(header), call.error))
        self.scale: float = header.scale
        self.relative = bool(header.relative)
        self.crs: Optional[str] = _text(header.crs) or None
        self.metadata: dict[str, Any] = {
            "name": _text(header.name),
            "date": _text(header.date),
            "comments": _text(header.comments).splitlines(),
            "origin": (header.origin[0], header.origin[1]),
        }

    # --- Life ---

    @property
    def name(self) -> str:
        """The file's name, or what stands for one."""
        return self._source.name

    @property
    def closed(self) -> bool:
        return self._reader is None

    def close(self) -> None:
        """Gives the library's memory back. Tables that were read stay usable."""
        with self._lock:
            reader, self._reader = self._reader, None
        if reader:
            close_reader(reader)

    def __enter__(self) -> Map:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __del__(self) -> None:
        if getattr(self, "_reader", None):
            self.close()

    def __reduce__(self) -> NoReturn:
        raise TypeError("an opened map cannot be copied or sent to another process; its path can")

    def __repr__(self) -> str:
        return f"<vemrado.Map {self.name}{', closed' if self.closed else ''}>"

    @contextmanager
    def _using(self) -> Iterator[int]:
        with self._lock:
            if self._reader is None:
                raise ValueError(f"{self.name}: the map is closed")
            yield self._reader

    def _open_another(self) -> int:
        if self._reader is None:
            raise ValueError(f"{self.name}: the map is closed")
        return self._source.open(self._options)

    # --- Elements ---

    def _next(self, reader: int, element: Any, incomplete: str) -> bool:
        with Call(incomplete) as call:
            if call.check(lib.vkm_next(reader, byref(element), call.error)) == _library.OK:
                return True
            self._complete = bool(lib.vkm_complete(reader))
        return False

    def __iter__(self) -> Iterator[Element]:
        reader = self._open_another()
        element = POINTER(_library.Element)()
        try:
            while self._next(reader, element, self._incomplete):
                yield copy_element(element.contents)
                if self._reader is None:
                    raise ValueError(f"{self.name}: the map is closed")
        finally:
            close_reader(reader)

    @property
    def complete(self) -> bool:
        """Whether the closing record is there: no element was lost at the end of the file."""
        if self._complete is None:
            self._read_through("ignore")
        assert self._complete is not None
        return self._complete

    @property
    def bounds(self) -> Optional[tuple[float, float, float, float]]:
        """Smallest x and y, largest x and y of all points; None for a map without points."""
        box = (c_double * 4)()
        with self._using() as reader, Call() as call:
            if call.check(lib.vkm_extent(reader, box, call.error)) == _library.NOTHING:
                return None
        return box[0], box[1], box[2], box[3]

    # --- Symbology ---

    def line_style(self, code: int) -> Optional[LineStyle]:
        """How lines of a code are drawn; None for a code that the symbology lacks."""
        with self._using() as reader:
            return line_style(reader, code)

    def symbol(self, code: int) -> Optional[Symbol]:
        """The drawing of a symbol code; None for a code that the symbology lacks."""
        with self._using() as reader:
            return symbol(reader, code)

    # --- Tables ---

    def table(self, name: str) -> Table:
        """One of the tables ``"lines"``, ``"points"``, ``"texts"`` and ``"parcels"``, read at the first call.

        Raises
        ------
        ReadError
            When reading fails in the middle; with ``strict=True`` for an incomplete map too.
        """
        return self.tables(name)[0]

    def tables(self, *names: str) -> tuple[Table, ...]:
        """Several tables; those that have not been read yet come from one passage over the file.

        Raises
        ------
        ReadError
            As for `table`.
        """
        self._check_tables(names)
        with self._lock:
            missing = [name for name in dict.fromkeys(names) if name not in self._tables]
            if missing:
                self._read(missing)
            return tuple(self._tables[name] for name in names)

    @staticmethod
    def _check_tables(names: Sequence[str]) -> None:
        for name in names:
            if name not in _library.TABLES:
                raise ValueError(f"there is no table '{name}'; there are {', '.join(_library.TABLES)}")

    def _read(self, names: list[str]) -> None:
        streams = (_arrow.ArrowArrayStream * len(names))()
        wanted = (c_int32 * len(names))(*(_library.TABLES[name] for name in names))
        with self._using() as reader, Call() as call:
            call.check(lib.vkm_streams(reader, wanted, len(names), streams, call.error))
        read: dict[str, Table] = {}
        try:
            with Call(self._incomplete) as call:
                for name, stream in zip(names, streams):
                    read[name] = Table(name, [_arrow.read_stream(stream, call)])
                lost = any(isinstance(one, IncompleteMapWarning) for one in call.warnings)
                self._complete = not lost
        except ReadError as error:  # a stream does not say the file's name apart
            raise ReadError(error.reason, self.name, error.line) from None
        finally:
            for stream in streams:
                _arrow.release(stream)
        self._tables.update(read)

    def stream(self, name: str) -> RowStream:
        """A table for programs that take Arrow streams, read from the source in constant memory.

        Nobody tells what is wrong with the map while somebody else reads it: `complete` says whether it ends as it
        should, and with ``strict=True`` it is looked at before.
        """
        self._check_tables([name])
        self._refuse_incomplete()
        return RowStream(partial(self._new_stream, name))

    def _refuse_incomplete(self) -> None:
        """With ``strict=True``, before anything comes of an incomplete map."""
        if self._incomplete == "error" and not self._complete:
            self._read_through("error")

    def _read_through(self, incomplete: str) -> None:
        reader = self._open_another()
        element = POINTER(_library.Element)()
        try:
            while self._next(reader, element, incomplete):
                pass
        finally:
            close_reader(reader)

    def _new_stream(self, name: str) -> _arrow.ArrowArrayStream:
        options = _library.Options.from_buffer_copy(self._options)
        options.batch_rows = _STREAMED_ROWS
        # The thread that reads may not have Python's lock, and another may wait for it with the lock held.
        options.on_warning = _library.no_warning
        stream = _arrow.ArrowArrayStream()
        if self._reader is None:
            raise ValueError(f"{self.name}: the map is closed")
        reader = self._source.open(options)
        try:
            with Call() as call:
                call.check(lib.vkm_stream(reader, _library.TABLES[name], addressof(stream), call.error))
        finally:
            close_reader(reader)
        return stream

    @property
    def lines(self) -> Table:
        """Strokes of two points or more."""
        return self.table("lines")

    @property
    def points(self) -> Table:
        """Elements that carry a symbol or lie on no stroke."""
        return self.table("points")

    @property
    def texts(self) -> Table:
        return self.table("texts")

    @property
    def parcels(self) -> Table:
        """Areas that the boundary lines enclose, with their numbers."""
        return self.table("parcels")

    # --- Pictures ---

    def plot(self, ax: Optional[matplotlib.axes.Axes] = None) -> matplotlib.axes.Axes:
        """Draws the map in its own style.

        Parameters
        ----------
        ax : matplotlib.axes.Axes, optional
            Where to draw; a new figure by default.
        """
        from ._plot import plot

        return plot(self, ax)

    def render(self, out: Union[str, "os.PathLike[str]", None] = None, **options: Any) -> Optional[bytes]:
        """Draws the map as the command ``vkm render`` does; see `vemrado.render`."""
        from .picture import render

        return render(self, out, **options)

    def _repr_png_(self) -> Optional[bytes]:
        try:
            return None if self.closed else self.render(format="png", width=_CELL_WIDTH)
        except UnsupportedError:
            return None

    def _repr_svg_(self) -> Optional[str]:
        picture = None if self.closed else self.render(format="svg", width=_CELL_WIDTH)
        return picture.decode() if picture else None


def open(
    source: Source,
    *,
    layer: Layers = None,
    encoding: str = "windows-1250",
    orientation: str = "-y,-x",
    symbology: Union[None, str, "os.PathLike[str]"] = None,
    parcels: bool = False,
    strict: bool = False,
) -> Map:
    """Opens a map.

    Parameters
    ----------
    source : path, bytes, binary file object or zipfile.Path
        Where the map is read from; gzipped ones are unpacked.
    layer : int or iterable of int, optional
        Layers of the file to read; all by default.
    encoding : str
        ``"windows-1250"``, ``"cp852"``, ``"iso-8859-2"`` or ``"utf-8"``.
    orientation : str
        What a point (x, y) of the file becomes; the default gives x to the east and y to the north.
    symbology : path, optional
        Directory that holds VKMSym; by default the sample symbology, ``""`` for none.
    parcels : bool
        Build the parcels at once, so that what is wrong with them is told now.
    strict : bool
        An incomplete map is a `ReadError` instead of an `IncompleteMapWarning`.

    Returns
    -------
    Map

    Raises
    ------
    OpenError
        When the source cannot be opened; it names file and reason.
    """
    options = make_options(layer, encoding, orientation, symbology)
    opened = Map(OpenedSource(source), options, strict)
    if parcels:
        opened.table("parcels")
    return opened


@contextmanager
def opened_map(source: Union[Source, Map], **options: Any) -> Iterator[Map]:
    """A map that is open already, or one that is opened for a while."""
    if isinstance(source, Map):
        if options:
            raise TypeError("an opened map has its options: " + ", ".join(options))
        yield source
        return
    with open(source, **options) as opened:
        yield opened


def read_geopandas(
    path: Source,
    layer: str = "parcels",
    bbox: Optional[Sequence[float]] = None,
    where_layer: Layers = None,
    **options: Any,
) -> Any:
    """One table of a map as a geopandas.GeoDataFrame.

    Parameters
    ----------
    path : path, bytes or file object
    layer : str
        ``"lines"``, ``"points"``, ``"texts"`` or ``"parcels"``.
    bbox : sequence of four float, optional
        Only rows whose bounds meet the box: min x, min y, max x, max y.
    where_layer : int or iterable of int, optional
        Only rows of these layers of the file; of parcels those that are made of these.
    **options
        As for `open`.
    """
    with open(path, layer=where_layer, **options) as opened:
        table = opened.table(layer)
        return table.to_geopandas(None if bbox is None else table.rows_in(bbox))
