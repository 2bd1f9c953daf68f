"""An archive on a cluster of processes, one of which is killed in the middle: nothing lost, nothing twice."""

from __future__ import annotations

import json
import os
import signal
import subprocess
import sys
import time
from pathlib import Path
from typing import Any, Callable, Iterator

import pytest
import vemrado
from conftest import REPOSITORY, SMALL

SHEETS, BAD, CUT = 24, 7, 9
pytest.importorskip("distributed")


def wait_for(what: Callable[[], Any], process: Any = None) -> None:
    end = time.monotonic() + 60
    while not what():
        assert time.monotonic() < end and (process is None or process.poll() is None), "nothing happens"
        time.sleep(0.02)


@pytest.fixture()
def cluster(tmp_path: Path) -> Iterator[tuple[str, list[Any]]]:
    """The address of a scheduler, and its two workers."""
    environment = dict(os.environ, PATH=f"{os.environ.get('VKM_PROGRAMS', '')}:{os.environ['PATH']}")
    place = tmp_path / "scheduler.json"
    quiet = {
        "stdout": subprocess.DEVNULL,
        "stderr": subprocess.DEVNULL,
        "env": environment,
        "cwd": tmp_path,
    }
    module = [sys.executable, "-m"]
    scheduler = [
        *module,
        "distributed.cli.dask_scheduler",
        "--port",
        "0",
        "--no-dashboard",
        "--host",
        "127.0.0.1",
    ]
    worker = [
        *module,
        "distributed.cli.dask_worker",
        "--no-nanny",
        "--nthreads",
        "1",
        "--no-dashboard",
    ]
    processes = [subprocess.Popen([*scheduler, "--scheduler-file", str(place)], **quiet)]  # type: ignore[call-overload]
    wait_for(lambda: place.exists() and place.stat().st_size > 0)
    for _ in range(2):
        processes.append(subprocess.Popen([*worker, "--scheduler-file", str(place)], **quiet))  # type: ignore[call-overload]
    yield json.loads(place.read_text())["address"], processes[1:]
    for process in processes:
        process.kill()
        process.wait()


@pytest.fixture()
def sheets(tmp_path: Path, town: Path) -> Path:
    folder = tmp_path / "sheets"
    folder.mkdir()
    whole = town.read_bytes()
    for number in range(SHEETS):
        text = b"\x1f\x8bbroken" if number == BAD else SMALL[:-3] if number == CUT else whole
        (folder / f"{number:02}.vkm").write_bytes(text)
    return folder


def run_killed_and_again(cluster: tuple[str, list[Any]], sheets: Path, output: str) -> None:
    """Converts; a worker is killed after some sheets, the program itself after some more, and started again."""
    address, workers = cluster
    journal = sheets.parent / "journal"
    command = [
        sys.executable,
        REPOSITORY / "samples" / "archive.py",
        "--scheduler",
        address,
    ]
    command += ["--journal", journal, sheets, output]

    def done() -> int:
        return journal.read_bytes().count(b"}") if journal.exists() else 0

    first = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    wait_for(lambda: done() >= 3, first)
    workers[0].send_signal(signal.SIGKILL)
    wait_for(lambda: done() >= 9, first)
    first.kill()
    first.wait()
    before = done()
    again = subprocess.run(command, capture_output=True, text=True, timeout=120)
    assert again.returncode == 4, again.stderr
    told = [line for line in again.stderr.splitlines() if str(sheets) in line]
    assert len(told) == 1 and f"{BAD:02}.vkm" in told[0]
    assert f"{SHEETS - 1} made, 1 of them incomplete, 1 not made" in again.stdout
    assert f"of them done before" in again.stdout and 9 <= before < SHEETS


def test_into_a_database(cluster: tuple[str, list[Any]], sheets: Path) -> None:
    pytest.importorskip("psycopg2")
    sys.path.append(str(REPOSITORY / "tests" / "gdal"))
    if not list(Path("/usr/lib/postgresql").glob("*/bin/initdb")):
        pytest.skip("no PostgreSQL here")
    from postgis_server import Server  # type: ignore[import]

    server = Server()
    try:
        run_killed_and_again(cluster, sheets, "PG:" + server.connection)
        sources = [str(sheets / f"{number:02}.vkm") for number in range(SHEETS) if number != BAD]
        assert [row[0] for row in server.sql("SELECT source FROM cadastre.sheets ORDER BY 1")] == sources
        for name in ("lines", "points", "texts"):
            rows = server.sql(
                f"SELECT source, count(*), count(DISTINCT fid) FROM cadastre.{name} GROUP BY 1 ORDER BY 1"
            )
            found = {source: (int(count), int(different)) for source, count, different in rows}
            with pytest.warns(vemrado.IncompleteMapWarning):
                lengths = {source: len(vemrado.open(source).table(name)) for source in sources}
            assert found == {source: (length, length) for source, length in lengths.items() if length}
        length = server.sql(f"SELECT sum(ST_Length(geom)) FROM cadastre.lines WHERE source = '{sources[0]}'")[
            0
        ][0]
        shapes = vemrado.open(sources[0]).lines.to_geopandas()
        assert float(length) == pytest.approx(shapes.length.sum())
    finally:
        server.stop()


def test_into_files(cluster: tuple[str, list[Any]], sheets: Path) -> None:
    if not os.environ.get("VKM_PROGRAMS"):
        pytest.skip("the command vkm was not built")
    run_killed_and_again(cluster, sheets, str(sheets.parent / "out"))
    made = sorted(path.name for path in (sheets.parent / "out").rglob("*") if path.is_file())
    assert made == [f"{number:02}.gpkg" for number in range(SHEETS) if number != BAD]
