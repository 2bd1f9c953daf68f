"""Tables, their geometry, and the stream that other programs take."""

from __future__ import annotations

import ctypes
import gc
import struct
from pathlib import Path
from typing import Any

import numpy as np
import pytest
import vemrado
from conftest import SMALL

SLOT = 8  # bytes of a pointer or a 64-bit number


def words(address: int, count: int) -> tuple[int, ...]:
    return struct.unpack(f"<{count}q", ctypes.string_at(address, count * SLOT))


def call(function: int, *arguments: int) -> int:
    types = [ctypes.c_void_p] * len(arguments)
    return int(ctypes.CFUNCTYPE(ctypes.c_int, *types)(function)(*arguments))


def read_capsule(capsule: Any) -> tuple[list[str], int]:
    """Names of the columns and number of rows, by the words of the structures as the interface lays them out."""
    pointer = ctypes.pythonapi.PyCapsule_GetPointer
    pointer.restype, pointer.argtypes = ctypes.c_void_p, [ctypes.py_object, ctypes.c_char_p]
    stream = pointer(capsule, b"arrow_array_stream")
    get_schema, get_next, _, release, _ = words(stream, 5)
    schema, array = ctypes.create_string_buffer(9 * SLOT), ctypes.create_string_buffer(10 * SLOT)
    assert call(get_schema, stream, ctypes.addressof(schema)) == 0
    kind, _, _, _, count, children, _, end, _ = words(ctypes.addressof(schema), 9)
    assert ctypes.string_at(kind) == b"+s"
    names = [ctypes.string_at(words(child, 2)[1]).decode() for child in words(children, count)]
    call(end, ctypes.addressof(schema))
    assert words(ctypes.addressof(schema), 9)[7] == 0, "a released schema says so"
    rows = 0
    while True:
        assert call(get_next, stream, ctypes.addressof(array)) == 0
        length, _, _, _, _, _, _, _, end, _ = words(ctypes.addressof(array), 10)
        if end == 0:
            break
        rows += length
        call(end, ctypes.addressof(array))
    call(release, stream)
    assert words(stream, 5)[3] == 0
    return names, rows


@pytest.mark.parametrize("name", ["lines", "points", "texts", "parcels"])
def test_streams_have_what_the_tables_have(name: str, town: Path) -> None:
    with vemrado.open(town) as opened:
        table = opened.table(name)
        dropped = table.__arrow_c_stream__()
        names, rows = read_capsule(table.__arrow_c_stream__())
    assert set(names) == {*table.columns, "geometry"} and rows == len(table) > 0
    del dropped  # unread, after its map was closed
    gc.collect()


def test_tables_of_one_passage_are_those_of_their_own(town: Path) -> None:
    names = ("texts", "parcels", "lines", "texts")
    with vemrado.open(town) as apart, vemrado.open(town) as together:
        tables = together.tables(*names)
        for name, table in zip(names, tables):
            assert table is together.table(name) and len(table) == len(apart.table(name)) > 0
            assert np.array_equal(table.geometry.points, apart.table(name).geometry.points)


def test_columns_are_views_and_agree_with_the_elements(town: Path) -> None:
    with vemrado.open(town) as opened:
        texts = [element for element in opened if isinstance(element, vemrado.Text)]
        table = opened.texts
        assert table["text"].tolist() == [text.text for text in texts]
        assert np.array_equal(table.geometry.points, [text.point for text in texts])
        assert np.array_equal(table["height"], [text.height for text in texts])
        assert table["layer"] is table["layer"] and not table["layer"].flags.owndata
        missing = np.ma.getmaskarray(table["code"])
        assert missing.tolist() == [text.code == 0 for text in texts]
        strokes = [stroke for line in opened if isinstance(line, vemrado.Line) for stroke in line.strokes]
        geometry = opened.lines.geometry
        assert np.diff(geometry.offsets[-1]).tolist() == [stroke.count for stroke in strokes]
        with pytest.raises(KeyError):
            table["nothing"]


def test_frames(town: Path) -> None:
    geopandas = pytest.importorskip("geopandas")
    parcels = vemrado.read_geopandas(town, layer="parcels")
    assert isinstance(parcels, geopandas.GeoDataFrame) and parcels.crs.to_epsg() == 5514
    assert np.allclose(parcels.area, parcels["area"]) and parcels.is_valid.all()
    low_x, low_y, high_x, high_y = parcels.total_bounds
    box = (low_x, low_y, (low_x + high_x) / 2, (low_y + high_y) / 2)
    near = vemrado.read_geopandas(town, layer="lines", bbox=box)
    whole = vemrado.read_geopandas(town, layer="lines")
    bounds = whole.bounds
    meets = (
        (bounds.minx <= box[2]) & (bounds.maxx >= box[0]) & (bounds.miny <= box[3]) & (bounds.maxy >= box[1])
    )
    assert near.equals(whole[meets].reset_index(drop=True)) and 0 < len(near) < len(whole)
    only = vemrado.read_geopandas(town, layer="lines", where_layer=1)
    assert set(only["layer"]) == {1} and len(only) == (whole["layer"] == 1).sum()


def test_pictures_and_cells(town: Path, tmp_path: Path) -> None:
    with vemrado.open(town) as opened:
        svg = opened._repr_svg_()
        assert svg is not None and "Hrušov" in svg
        assert "<table>" in opened.texts._repr_html_()
        with pytest.raises(vemrado.WriteError, match="nowhere"):
            opened.render(tmp_path / "nowhere" / "map.svg")
    vemrado.render(town, tmp_path / "map.svg", legend=True, title="<&>")
    assert "&lt;&amp;&gt;" in (tmp_path / "map.svg").read_text()
    matplotlib = pytest.importorskip("matplotlib")
    matplotlib.use("Agg")
    with vemrado.open(SMALL) as small:
        ax = small.plot()
    assert len(ax.collections) == 3 and [text.get_text() for text in ax.texts] == ["114/2", "část"]


def test_check_and_diff() -> None:
    assert vemrado.check(SMALL.replace(b"K=1014", b"K=10x4"), only=["number-cut"])[0].line == 12
    with pytest.raises(ValueError):
        vemrado.check(SMALL, only=["no-such-rule"])
    changes = vemrado.diff(SMALL, SMALL.replace(b'"114/2"', b'"114/3"'))
    assert [(change.kind, change.new_line) for change in changes][-1] == ("text", 12)
    assert len(vemrado.diff(SMALL, SMALL).to_pandas()) == 0
