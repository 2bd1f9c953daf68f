"""No input, type or order of calls ends the process; snippets of the documents run."""

from __future__ import annotations

import io
import os
import re
import subprocess
import sys
import warnings
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Callable

import pytest
import vemrado
from conftest import REPOSITORY, SMALL
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st


anything = st.one_of(
    st.none(), st.booleans(), st.integers(), st.floats(), st.text(max_size=20), st.binary(max_size=40),
    st.lists(st.integers(), max_size=3), st.just(SMALL), st.sampled_from(["lines", "-y,-x", "utf-8", "texts", "svg"]),
    st.just(io.BytesIO(SMALL)), st.builds(object), st.just((-740050, -1043050, -740010, -1043010)),
)  # fmt: skip
functions = [
    lambda a, b, c: vemrado.open(a, layer=b, encoding=c),
    lambda a, b, c: vemrado.open(a, orientation=b, symbology=c, strict=a, parcels=b),
    lambda a, b, c: vemrado.read_geopandas(a, layer=b, bbox=c),
    lambda a, b, c: vemrado.read_many(a, threads=b, layer=c, progress=False),
    lambda a, b, c: vemrado.check(a, only=b, ignore=c),
    lambda a, b, c: vemrado.diff(a, b, tolerance=c),
    lambda a, b, c: vemrado.render(a, format=b, width=c),
]
methods = [
    lambda shared, a: shared.close(), lambda shared, a: shared.table(a), lambda shared, a: shared.line_style(a),
    lambda shared, a: shared.symbol(a), lambda shared, a: shared.texts.rows_in(a), lambda shared, a: shared.texts[a],
    lambda shared, a: list(shared), lambda shared, a: shared.bounds, lambda shared, a: shared.complete,
    lambda shared, a: shared.render(format=a), lambda shared, a: vemrado.check(shared, only=a),
    lambda shared, a: shared.lines.__arrow_c_stream__(a), lambda shared, a: shared.parcels.to_geopandas(a),
    lambda shared, a: [shared._repr_svg_(), repr(shared)], lambda shared, a: vemrado.diff(shared, shared, tolerance=a),
]  # fmt: skip
EXPECTED = (OSError, ValueError, TypeError, LookupError, AttributeError, ArithmeticError, NotImplementedError)


def survive(call: Callable[[], object]) -> None:
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        try:
            call()
        except EXPECTED:
            pass
        except Exception as error:  # ctypes has a class of its own for arguments of a wrong type
            assert type(error).__name__ == "ArgumentError", repr(error)


@settings(max_examples=300, deadline=None, suppress_health_check=[HealthCheck.too_slow])
@given(st.sampled_from(functions), anything, anything, anything)
def test_everything_with_everything(call, a, b, c) -> None:  # type: ignore[no-untyped-def]
    survive(lambda: call(a, b, c))


@settings(max_examples=100, deadline=None, suppress_health_check=[HealthCheck.too_slow])
@given(st.lists(st.tuples(st.sampled_from(methods), anything), min_size=2, max_size=12), st.booleans())
def test_any_order_of_calls(steps, threads) -> None:  # type: ignore[no-untyped-def]
    """On one map, which is closed somewhere among them, one after the other or from threads."""
    shared = vemrado.open(SMALL)
    if threads:
        with ThreadPoolExecutor(4) as pool:
            list(pool.map(lambda step: survive(lambda: step[0](shared, step[1])), steps))
    else:
        for method, argument in steps:
            survive(lambda: method(shared, argument))


@pytest.mark.parametrize(
    ("call", "error", "sentence"),
    [
        (
            lambda: vemrado.read_many("a.vkm"),
            TypeError,
            "sheets are several: a list of them, not 'a.vkm' alone",
        ),
        (lambda: vemrado.check(SMALL, only="free-end"), TypeError, "rules are several"),
        (lambda: vemrado.read_many(["a.vkm"], threads=-1), ValueError, "not read by -1 threads"),
        (lambda: vemrado.open(SMALL).lines.rows_in((0, 1)), ValueError, "a box is four numbers"),
        (lambda: vemrado.open(SMALL, encoding="koi8-r"), ValueError, "koi8-r"),
    ],
)
def test_says_what_is_wrong(call: Callable[[], object], error: type[Exception], sentence: str) -> None:
    with pytest.raises(error, match=re.escape(sentence)):
        call()


def test_python_s_names_of_encodings_are_taken() -> None:
    for name in ("windows-1250", "cp1250", "Windows_1250"):
        assert len(vemrado.open(SMALL, encoding=name).texts) == len(vemrado.open(SMALL).texts)


@settings(max_examples=150, deadline=None)
@given(st.integers(0, len(SMALL)), st.binary(max_size=12))
def test_any_bytes_are_a_map(place: int, more: bytes) -> None:
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        try:
            with vemrado.open(SMALL[:place] + more + SMALL[place:]) as opened:
                rows = [len(opened.table(name)) for name in ("lines", "points", "texts", "parcels")]
                assert rows[2] == sum(isinstance(element, vemrado.Text) for element in opened)
        except vemrado.OpenError as error:
            assert "not a VKM file" in str(error)


EXIT = f"""
import sys, threading, time, vemrado, warnings
warnings.simplefilter("ignore")
opened = vemrado.open({SMALL!r})
capsule = opened.lines.__arrow_c_stream__()
elements = iter(opened); next(elements)
cut = {SMALL[:-3]!r}  # warns, by a callback
def work():
    while True:
        vemrado.check(cut), vemrado.open(cut).lines, list(vemrado.open(cut)), vemrado.render(cut, format="svg")
for _ in range(4): threading.Thread(target=work, daemon=True).start()
time.sleep(float(sys.argv[1]))
"""


def test_exit_with_everything_open_and_threads_at_work() -> None:
    for wait in range(6):
        run = subprocess.run(
            [sys.executable, "-c", EXIT, str(wait / 40)], timeout=25, capture_output=True, text=True
        )
        assert (run.returncode, run.stderr) == (0, "")


def test_another_interpreter_is_refused() -> None:
    interpreters = pytest.importorskip("_xxsubinterpreters")
    other = interpreters.create()
    with pytest.raises(interpreters.RunFailedError, match="main interpreter"):
        interpreters.run_string(other, f"import sys; sys.path[:] = {sys.path!r}; import vemrado")
    interpreters.destroy(other)


def test_snippets_of_the_guide_run(town_folder: Path) -> None:
    matplotlib = pytest.importorskip("matplotlib")
    matplotlib.use("Agg")
    guide = (REPOSITORY / "docs" / "python.md").read_text()
    names: dict[str, object] = {}
    snippets = re.findall(r"```python\n(.*?)```", guide, re.DOTALL)
    assert len(snippets) >= 8
    for snippet in snippets:
        exec(compile(snippet, "docs/python.md", "exec"), names)
    assert (town_folder / "parcels.png").stat().st_size > 5000


def test_the_notebook_runs(town_folder: Path) -> None:
    nbclient = pytest.importorskip("nbclient")
    nbformat = pytest.importorskip("nbformat")
    book = nbformat.read(REPOSITORY / "samples" / "notebook.ipynb", as_version=4)
    nbclient.NotebookClient(book, timeout=120, kernel_name="python3").execute()
    kinds = {
        kind for cell in book.cells for output in cell.get("outputs", []) for kind in output.get("data", {})
    }
    assert "text/html" in kinds and kinds & {"image/png", "image/svg+xml"}


def test_a_bag_tells_the_sheets_that_cannot_be_read(town_folder: Path) -> None:
    pytest.importorskip("dask.bag")
    import vemrado.dask

    Path("sheets/c.vkm").write_bytes(b"no map")
    bag = vemrado.dask.bag(sorted(Path("sheets").glob("*.vkm")), lambda sheet: len(sheet.texts))
    *good, (name, result, reason) = bag.compute(scheduler="synchronous")
    assert good == [("sheets/a.vkm", 2, ""), ("sheets/b.vkm", 2, "")]
    assert (name, result) == ("sheets/c.vkm", None) and "sheets/c.vkm" in reason
