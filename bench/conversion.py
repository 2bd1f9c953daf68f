"""Measures `vkm convert` on many sheets, against ogr2ogr in a loop over the same driver.

Times are wall times, which the database's server counts in; processor time of the commands stands beside them.
"""

import os
import pathlib
import resource
import shutil
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "tests" / "gdal"))

from postgis_server import Server

HEAD = b"&V S-JTSK 744300.00 1040000.00\r\n&R 1 1 0 0 1000 A\r\n&D 1.1.2026 S=1\r\n&* Sheet %d\r\n"
LOOPED = 50  # sheets that ogr2ogr takes, one after the other


def cut(source, folder, count, size):
    """Sheets of about that size from a large map, a hundred in a folder."""
    rows, layer, length, made = [], [], 0, 0

    def finish():
        place = folder / f"{made // 100:03}"
        place.mkdir(parents=True, exist_ok=True)
        (place / f"{made:05}.vkm").write_bytes(HEAD % made + b"".join(rows) + b"&K\r\n")

    with open(source, "rb") as lines:
        for line in lines:
            if line[:1] == b"&":
                if line[1:2] in b"VRDGK*":
                    continue
                if length >= size - 100:
                    finish()
                    made += 1
                    rows, length = list(layer), 0
                    if made == count:
                        break
                if line[1:2] == b"U":
                    layer = [line]
            rows.append(line)
            length += len(line)
    assert made == count, "the map is too small"


class Conversion:
    def __init__(self, programs, work, generated, row):
        self.programs, self.work, self.generated, self.row = programs, work, generated, row
        self.plugins = programs.parent / "lib" / "gdalplugins"

    def timed(self, *command):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        start = time.monotonic()
        subprocess.run(
            [str(part) for part in command],
            check=True,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
            env=os.environ | {"GDAL_DRIVER_PATH": str(self.plugins)},
        )
        wall = time.monotonic() - start
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        return wall, after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime

    def convert(self, *arguments):
        return self.timed(self.programs / "vkm", "convert", "--quiet", *arguments)

    def sheets(self, count, size):
        folder = self.work / f"sheets-{count}-{size}"
        if not folder.exists():
            partial = folder.with_suffix(".partial")
            shutil.rmtree(partial, ignore_errors=True)
            cut(self.generated(int(count * size * 1.02) + (1 << 20)), partial, count, size)
            partial.rename(folder)
        return folder

    def loop(self, folder, one):
        """ogr2ogr for each of the first sheets; times for a sheet."""
        out = self.work / "looped"
        shutil.rmtree(out, ignore_errors=True)
        out.mkdir()
        wall = processor = 0.0
        files = sorted(folder.rglob("*.vkm"))[:LOOPED]
        for file in files:
            into = ["-append", out / "one.gpkg"] if one else [out / f"{file.stem}.gpkg"]
            taken = self.timed("ogr2ogr", "-f", "GPKG", *into, file)
            wall, processor = wall + taken[0], processor + taken[1]
        return wall / len(files), processor / len(files)

    def tell(self, figure, taken, count, reference, other):
        def text(times):
            return f"{times[0]:.1f} s, {times[1]:.1f} s processor"

        scaled = (other[0] * count, other[1] * count)
        self.row(f"{count} sheets {figure}", text(taken), reference, text(scaled), taken[0] / scaled[0])

    def measure(self, count, size):
        folder = self.sheets(count, size)
        shown = f"of {size // 1000} kB" if size < 1_000_000 else f"of {size // 1_000_000} MB"
        looped = f"ogr2ogr in a loop, from {min(count, LOOPED)}"
        one, each = self.work / "one.gpkg", self.work / "each"
        one.unlink(missing_ok=True)
        shutil.rmtree(each, ignore_errors=True)
        into_one = self.convert("-r", folder, "-o", one)
        self.tell(f"{shown} into one GeoPackage", into_one, count, looped, self.loop(folder, True))
        self.tell(
            f"{shown} into one each, two jobs",
            self.convert("-r", folder, "-o", f"{each}/", "--jobs", "2"),
            count,
            looped,
            self.loop(folder, False),
        )
        per_sheet = (into_one[0] / count, into_one[1] / count)
        server = Server()
        try:
            database = ["-o", "PG:" + server.connection, "--schema", "gis"]
            self.tell(f"{shown} into PostGIS", self.convert("-r", folder, *database), count, "into one GeoPackage", per_sheet)
            self.change(folder)
            self.tell(
                f"{shown}, of which one per cent has changed, in PostGIS",
                self.convert("-r", folder, *database, "--update"),
                count,
                "all into one GeoPackage",
                per_sheet,
            )
        finally:
            server.stop()
        self.tell(
            f"{shown}, of which one per cent has changed, in a GeoPackage",
            self.convert("-r", folder, "-o", one, "--update"),
            count,
            "all into one GeoPackage",
            per_sheet,
        )

    @staticmethod
    def change(folder):
        """Another comment in every hundredth sheet."""
        for file in sorted(folder.rglob("*.vkm"))[::100]:
            content = file.read_bytes()
            file.write_bytes(
                content.replace(b"&* Sheet", b"&* SHEET", 1)
                if b"&* Sheet" in content
                else content.replace(b"&* SHEET", b"&* Sheet", 1)
            )
