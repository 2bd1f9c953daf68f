"""Tables, their geometry, and the stream that other programs take."""

from __future__ import annotations

import ctypes
import gc
from pathlib import Path
from typing import Any

import numpy as np
import pytest
import vemrado
import vkm  # of the tests of the C interface
from conftest import SMALL


def read_capsule(capsule: Any, most: Any = None) -> list[dict[str, Any]]:
    """Its rows, by a reading of the structures that knows nothing of the package; of the first batches only."""
    pointer = ctypes.pythonapi.PyCapsule_GetPointer
    pointer.restype, pointer.argtypes = ctypes.c_void_p, [ctypes.py_object, ctypes.c_char_p]
    stream = vkm.ArrowStream.from_address(pointer(capsule, b"arrow_array_stream"))
    return list(vkm.Library.rows_of(None, stream, most)[0])


@pytest.mark.parametrize("name", ["lines", "points", "texts", "parcels"])
def test_streams_have_what_the_tables_have(name: str, town: Path, tmp_path: Path) -> None:
    path = tmp_path / "town.vkm"
    path.write_bytes(town.read_bytes())
    with vemrado.open(path) as opened:
        table, stream = opened.table(name), opened.stream(name)
        rows = read_capsule(stream.__arrow_c_stream__())
        assert read_capsule(stream.__arrow_c_stream__()) == rows
        dropped = [source.__arrow_c_stream__() for source in (table, stream)]
    path.unlink()
    assert read_capsule(table.__arrow_c_stream__()) == rows == read_capsule(table.__arrow_c_stream__())
    assert set(rows[0]) == {*table.columns, "geometry"}
    for column in table.columns:
        assert table[column].tolist() == [row[column] for row in rows]
    del dropped  # unread, after their map was closed
    gc.collect()


def test_many_sheets_are_one_stream(town: Path, tmp_path: Path) -> None:
    empty, small = tmp_path / "empty.vkm", tmp_path / "malý.vkm"
    empty.write_bytes(b"&K\n")
    small.write_bytes(SMALL)
    for paths in ([small, empty, town], [empty], [small] * 300):
        table = vemrado.read_many(paths, layer="texts", progress=False)
        rows = read_capsule(table.__arrow_c_stream__())
        assert [row["source"] for row in rows] == table["source"].tolist()
        assert [row["text"] for row in rows] == table["text"].tolist()
    with vemrado.open(town) as opened:
        assert len(rows) == 600 and rows[0]["source"] == str(small) and len(opened.texts) > 600
    assert len(read_capsule(table.__arrow_c_stream__(), most=7)) == 14  # dropped half read
    capsule = table.__arrow_c_stream__()
    del table
    gc.collect()
    assert read_capsule(capsule) == rows


def test_a_stream_of_a_map_that_is_cut_or_closed() -> None:
    with vemrado.open(SMALL[:-3], strict=True) as opened:
        with pytest.raises(vemrado.ReadError, match="closing record"):
            opened.stream("texts")
    with vemrado.open(SMALL) as opened:
        stream = opened.stream("texts")
    with pytest.raises(ValueError, match="closed"):
        stream.__arrow_c_stream__()


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


def test_shapes_are_the_rows(town: Path) -> None:
    """Of one part and of more, as the well-known binary has them, which is made another way."""
    wkb = pytest.importorskip("shapely.wkb")
    island = b" L 20.00 10.00\n P 30.00 20.00\n L 32.00 20.00\n L 32.00 24.00\n L 30.00 20.00\n"
    found = set()
    for source in (town, SMALL.replace(b" L 20.00 10.00\n", island)):
        with vemrado.open(source) as opened:
            for table in opened.tables("lines", "points", "texts", "parcels"):
                for shape, binary in zip(table.geometry.to_shapely(), table.geometry.to_wkb()):
                    expected = wkb.loads(binary)
                    if table.name == "lines" and len(expected.geoms) == 1:
                        expected = expected.geoms[0]
                    assert type(shape) is type(expected) and shape.wkb == expected.wkb
                    found.add((shape.geom_type, len(getattr(shape, "interiors", []))))
    assert found == {("Point", 0), ("LineString", 0), ("MultiLineString", 0), ("Polygon", 0), ("Polygon", 1)}


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
