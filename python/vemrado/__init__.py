"""Vemrado for Python: digital cadastral maps in VKM files as columns, tables and pictures.

>>> import vemrado
>>> with vemrado.open("town.vkm") as town:  # doctest: +SKIP
...     print(town.scale, len(town.lines), len(town.parcels))
>>> parcels = vemrado.read_geopandas("town.vkm", layer="parcels")  # doctest: +SKIP
"""

from ._exit import refuse_subinterpreters as _refuse_subinterpreters

_refuse_subinterpreters()

from ._library import lib as _lib
from .checks import Change, Finding, Records, check, diff
from .elements import Line, Stroke, Text
from .errors import (
    IncompleteMapWarning,
    MapError,
    MapWarning,
    OpenError,
    ReadError,
    UnsupportedError,
    WriteError,
)
from .geometry import Geometry
from .many import read_many
from .map import Map, open, read_geopandas
from .picture import render
from .styles import LineStyle, Symbol
from .table import RowStream, Table

__version__: str = _lib.vkm_version().decode()

__all__ = [
    "Change",
    "Finding",
    "Geometry",
    "IncompleteMapWarning",
    "Line",
    "LineStyle",
    "Map",
    "MapError",
    "MapWarning",
    "OpenError",
    "ReadError",
    "Records",
    "RowStream",
    "Stroke",
    "Symbol",
    "Table",
    "Text",
    "UnsupportedError",
    "WriteError",
    "check",
    "diff",
    "open",
    "read_geopandas",
    "read_many",
    "render",
]
