"""Maps, elements, sources and errors."""

from __future__ import annotations

import copy
import gzip
import io
import os
import pickle
import threading
import time
import zipfile
from pathlib import Path

import numpy as np
import pytest
import vemrado
from conftest import SMALL


def test_header_and_elements() -> None:
    with vemrado.open(SMALL) as small:
        assert (small.scale, small.relative, small.complete, small.crs) == (1000, True, True, "EPSG:5514")
        assert small.metadata == {
            "name": "Lhota",
            "date": "S=2024-05-01",
            "comments": ["one parcel with its number"],
            "origin": (740000.0, 1043000.0),
        }
        line, number, word = list(small)
        assert (
            isinstance(line, vemrado.Line)
            and isinstance(number, vemrado.Text)
            and isinstance(word, vemrado.Text)
        )
        assert line.points.tolist()[0] == [-740020.0, -1043010.0]
        assert (line.layer, line.types, line.codes) == (1, "PLLLL", ("21900", "", "", "21910", ""))
        assert line.pen_codes.tolist() == [21900, 21900, 21900, 21910, 21910]
        assert (line.symbols.tolist(), line.u_values.tolist()) == ([0, 101, 0, 0, 0], [0, 50, 0, 0, 0])
        assert (number.text, number.code, number.layer) == ("114/2", 1014, 2)
        assert (word.text, word.anchor, word.serif, word.bold, word.italic) == ("část", 5, True, True, False)
        assert small.bounds == (-740045.5, -1043038.25, -740020.0, -1043010.0)
        style = small.line_style(21900)
        assert style is not None and style.width > 0
        assert small.line_style(123456) is None and small.symbol(123456) is None


@pytest.mark.parametrize("kind", ["path", "bytes", "file", "gzip", "member", "inside", "pipe"])
def test_every_source_gives_the_same(kind: str, tmp_path: Path) -> None:
    path = tmp_path / "žluťoučký.vkm"
    path.write_bytes(SMALL)
    (tmp_path / "map.vkm.gz").write_bytes(gzip.compress(SMALL))
    with zipfile.ZipFile(tmp_path / "maps.zip", "w") as archive:
        archive.writestr("sheets/one.vkm", SMALL)
    if kind == "pipe":
        os.mkfifo(tmp_path / "pipe")
        threading.Thread(target=(tmp_path / "pipe").write_bytes, args=[SMALL]).start()
    source = {
        "path": path,
        "bytes": SMALL,
        "file": io.BytesIO(SMALL),
        "gzip": tmp_path / "map.vkm.gz",
        "pipe": str(tmp_path / "pipe"),
        "inside": tmp_path / "maps.zip" / "sheets" / "one.vkm",
        "member": zipfile.Path(tmp_path / "maps.zip", "sheets/one.vkm"),
    }[kind]
    with vemrado.open(source) as opened:
        assert opened.lines["code"].tolist() == [21900, 21910]
        assert [text for text in opened.texts["text"]] == ["114/2", "část"]
        assert (opened.parcels["number"].tolist(), len(list(opened))) == (["114/2"], 3)


def test_failures_are_told(tmp_path: Path) -> None:
    with pytest.raises(vemrado.OpenError, match="nothing.vkm") as caught:
        vemrado.open(tmp_path / "nothing.vkm")
    assert str(caught.value.filename).endswith("nothing.vkm")
    assert pickle.loads(pickle.dumps(caught.value)).reason == caught.value.reason
    zipfile.ZipFile(tmp_path / "maps.zip", "w").close()
    (tmp_path / "broken.vkm.gz").write_bytes(gzip.compress(SMALL)[:-20])
    for call in (
        lambda: vemrado.open(tmp_path),
        lambda: vemrado.open(tmp_path / "broken.vkm.gz"),
        lambda: vemrado.open(tmp_path / "maps.zip" / "none.vkm"),
    ):
        with pytest.raises(OSError):
            call()
    for options, reason in (
        ({"encoding": "kilo"}, "kilo"),
        ({"layer": 2**32 + 1}, "range"),
        ({"layer": []}, "no layer"),
    ):
        with pytest.raises(ValueError, match=reason):
            vemrado.open(SMALL, **options)  # type: ignore[arg-type]
    with pytest.raises(TypeError):
        vemrado.open(io.StringIO("text"))  # type: ignore[arg-type]


def test_an_incomplete_map_is_a_warning_or_an_error(tmp_path: Path) -> None:
    cut = SMALL.replace(b"&K\n", b"")
    with vemrado.open(cut) as opened:
        with pytest.warns(vemrado.IncompleteMapWarning) as told:
            assert len(opened.texts) == 1
            vemrado.render(cut, format="svg")
        assert [one.filename for one in told] == [__file__] * 2
        assert not opened.complete
    with vemrado.open(cut, strict=True) as opened:
        readings = lambda: opened.texts, lambda: list(opened), lambda: opened.render(format="svg")
        for read in readings:
            with pytest.raises(vemrado.ReadError, match="closing record") as caught:
                read()
            assert caught.value.line == 13
    drawn = tmp_path / "cut.svg"
    with pytest.raises(vemrado.ReadError):
        vemrado.render(cut, drawn, strict=True)
    assert not drawn.exists()
    with vemrado.open(SMALL.replace(b"\xe8", b"\x81")) as opened:
        with pytest.warns(vemrado.MapWarning):
            assert opened.texts["text"][1] == "\ufffdást"


def test_a_closed_map_and_what_outlives_it() -> None:
    opened = vemrado.open(SMALL)
    lines, elements = opened.lines, iter(opened)
    next(elements)
    opened.close()
    opened.close()
    assert lines.geometry.points.shape == (6, 2)
    for call in (lambda: opened.texts, lambda: opened.bounds, lambda: next(elements), lambda: list(opened)):
        with pytest.raises(ValueError, match="closed"):
            call()


def test_what_the_library_holds_is_not_copied() -> None:
    """Two that give the same memory back would end the process."""
    opened = vemrado.open(SMALL, encoding="cp1250")  # as Python calls it
    lines = opened.lines
    for copied in (copy.copy, copy.deepcopy, pickle.dumps):
        with pytest.raises(TypeError, match="copied"):
            copied(opened)
    assert copy.copy(lines) is lines and copy.deepcopy(lines) is lines
    with pytest.raises(TypeError, match="copied"):
        pickle.dumps(lines)


def test_others_run_while_the_library_reads(town: Path) -> None:
    """Python's lock is free in the middle of one call of the library."""
    text = town.read_bytes()
    body = text[text.index(b"&U") : text.index(b"&K")]
    ticks = 0
    gone = threading.Event()

    def tick() -> None:
        nonlocal ticks
        while not gone.is_set():
            ticks += 1
            time.sleep(0)

    other = threading.Thread(target=tick)
    with vemrado.open(text[: text.index(b"&U")] + body * 20 + b"&K\n") as large:
        other.start()
        before = ticks
        large.bounds  # one call of the library
        counted = ticks - before
    gone.set()
    other.join()
    assert counted > 20


def test_threads_share_a_map_and_read_many_sheets(town: Path, town_folder: Path) -> None:
    found = []
    with vemrado.open(town) as shared:

        def look() -> None:
            found.append((len(shared.lines), len(shared.texts), sum(1 for _ in shared), shared.bounds))

        threads = [threading.Thread(target=look) for _ in range(8)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    assert len(found) == 8 and len(set(found)) == 1
    sheets = sorted(Path("sheets").glob("*.vkm")) * 5
    table = vemrado.read_many(sheets, threads=4, layer="texts", progress=False)
    assert len(table) == 20 and table["source"].tolist() == [str(sheet) for sheet in sheets for _ in range(2)]
    with pytest.raises(vemrado.OpenError):
        vemrado.read_many([*sheets, "missing.vkm"], progress=False)
    with pytest.warns(vemrado.MapWarning, match="missing.vkm"):
        left = vemrado.read_many([*sheets, "missing.vkm"], layer="texts", on_error="warn", progress=False)
    assert len(left) == 20
    assert np.array_equal(left["height"], table["height"])
