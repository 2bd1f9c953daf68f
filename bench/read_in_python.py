#!/usr/bin/env python3
"""Reads a map in one way and prints seconds of processor time and the peak of memory: read_in_python.py WAY FILE.

What the ways need is imported before the clock starts. PYTHONPATH has the package, GDAL_DRIVER_PATH the driver.
"""

import json
import resource
import sys
import time


def columns(path):
    import vemrado

    def read():
        with vemrado.open(path, symbology="") as opened:
            return sum(len(table) for table in opened.tables("lines", "texts"))

    return read


def lines(path):
    import vemrado

    def read():
        with vemrado.open(path, symbology="") as opened:
            return len(opened.lines)

    return read


def frame(path):
    import geopandas  # noqa: F401
    import vemrado

    return lambda: len(vemrado.read_geopandas(path, layer="lines"))


def driver(path):
    import fiona
    import geopandas

    fiona.drvsupport.supported_drivers["VKM"] = "r"
    return lambda: len(geopandas.read_file(path, layer="lines", engine="fiona"))


def dxf(path):
    import geopandas

    return lambda: len(geopandas.read_file(path, engine="fiona"))


def main():
    ways = {way.__name__: way for way in (columns, lines, frame, driver, dxf)}
    read = ways[sys.argv[1]](sys.argv[2])
    begin = time.process_time()
    rows = read()
    seconds = time.process_time() - begin
    peak = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024
    print(json.dumps({"rows": rows, "seconds": seconds, "peak": peak}))


if __name__ == "__main__":
    main()
