#!/usr/bin/env python3
"""Runs the measurements on generated files and prints one table: each figure, its reference, the ratio.

report.py [--full], from the root of a project that is built in build/release. Times are processor time, the least of
several runs; the ratio of an import to a pass that finds line ends is the median of those of neighbouring runs.
"""

import json
import os
import pathlib
import resource
import subprocess
import sys

from conversion import Conversion

programs = pathlib.Path("build/release/bin")
work = pathlib.Path("build/bench")
rows = []


def row(figure, value, reference, reference_value, ratio):
    rows.append((figure, value, reference, reference_value, f"{ratio:.2f}"))


def run(*command):
    return subprocess.run([str(part) for part in command], check=True, capture_output=True, text=True).stdout


def seconds(*command, repeat=3):
    """The least processor time that a command takes, its output thrown away."""
    def spent():
        usage = resource.getrusage(resource.RUSAGE_CHILDREN)
        return usage.ru_utime + usage.ru_stime

    times = []
    for _ in range(repeat):
        start = spent()
        subprocess.run([str(part) for part in command], check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)
        times.append(spent() - start)
    return min(times)


def generated(size):
    """A map of the size, in bytes, made once."""
    path = work / f"map-{size}.vkm"
    if not path.exists():
        partial = path.with_suffix(".partial")
        run(programs / "vkm-generate", "--size", size, "--seed", 7, "-o", partial)
        partial.rename(path)
    return path


def mixed(size):
    """A file of short lines of every length, made once."""
    path = work / f"mixed-{size}.vkm"
    if not path.exists():
        partial = path.with_suffix(".partial")
        run(programs / "bench_mixed_lines", size, partial)
        partial.rename(path)
    return path


def imported(path, repeat):
    return json.loads(run(programs / "bench_import", "--json", "--repeat", repeat, path))


def size_text(size):
    for factor, unit in ((1 << 30, "GiB"), (1 << 20, "MiB")):
        if size >= factor:
            return f"{size / factor:g} {unit}"
    return f"{size} B"


def measure_import(sizes):
    """Whole imports of growing files. Returns the times, to compare the command line with."""
    first = None
    times = {}
    for size in sizes:
        result = imported(generated(size), max(3, min(41, (3 << 30) // size)))
        times[size] = result["import"]
        megabytes = result["bytes"] / 1e6
        row(f"import, {size_text(size)}, {result['elements'] / result['import'] / 1e6:.1f} M elements/s, "
            f"peak {result['peak_megabytes']} MB",
            f"{megabytes / result['import']:.0f} MB/s", "line ends only", f"{megabytes / result['line_ends']:.0f} MB/s",
            result["ratio"])
        per_byte = result["import"] / result["bytes"]
        if first is None:
            first = per_byte
        else:
            row(f"import, {size_text(size)}, time for a byte", f"{per_byte * 1e9:.3f} ns",
                f"{size_text(sizes[0])}", f"{first * 1e9:.3f} ns", per_byte / first)
    return times


def measure_mixed(size):
    result = imported(mixed(size), 11)
    megabytes = result["bytes"] / 1e6
    row(f"import of short lines of every length, {size_text(size)}", f"{megabytes / result['import']:.0f} MB/s",
        "line ends only", f"{megabytes / result['line_ends']:.0f} MB/s", result["ratio"])


def measure_commands(times):
    """The module's share of the commands' time: the import alone over the command."""
    for command, size, options in (("info", 1 << 28, []), ("dump", 1 << 28, []),
                                   ("render", 1 << 24, ["-o", work / "map.svg"])):
        taken = seconds(programs / "vkm", command, "--quiet", generated(size), *options)
        row(f"import alone, {size_text(size)}", f"{times[size]:.2f} s", f"vkm {command}", f"{taken:.2f} s",
            times[size] / taken)


def measure_threads(size):
    """Two importers side by side against one, in wall time: the best of the pairs, the median beside it."""
    result = json.loads(run(programs / "bench_threads", generated(size)))
    row(f"two importers on two threads, {size_text(size)} each (median of the pairs {result['median_speedup']:.2f})",
        f"{result['two'] * 1e3:.0f} ms", "one importer, times two", f"{2 * result['one'] * 1e3:.0f} ms",
        result["speedup"])


def benchmarked(program):
    """The least processor time of each benchmark of a program, in seconds."""
    report = json.loads(run(programs / program, "--benchmark_format=json", "--benchmark_min_time=0.3",
                            "--benchmark_repetitions=3", "--benchmark_report_aggregates_only=false"))
    units = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1}
    times = {}
    for entry in report["benchmarks"]:
        if entry["run_type"] == "iteration":
            taken = entry["cpu_time"] * units[entry["time_unit"]]
            times[entry["run_name"]] = min(times.get(entry["run_name"], float("inf")), taken)
    return times


def measure_sample():
    times = benchmarked("bench_sample")
    row("Open with the sample symbology", f"{times['Open'] * 1e3:.2f} ms", "goal", "2.00 ms", times["Open"] / 2e-3)
    for name in ("Style", "Symbol"):
        row(f"{name.lower()} of an element, looked up again", f"{times[name] * 1e9:.1f} ns", "goal", "50.0 ns",
            times[name] / 50e-9)
    for figure, name in (("pool on the module's allocations", "PoolOnSample"),
                         ("the same, without the system", "HeldPoolOnSample")):
        row(figure, f"{times[name] * 1e6:.0f} us", "malloc", f"{times['MallocOnSample'] * 1e6:.0f} us",
            times[name] / times["MallocOnSample"])


def measure_symbology():
    """Tables far larger than any in use: loads and lookups that stay linear whatever the codes."""
    times = benchmarked("bench_symbology")

    def compare(figure, name, reference, reference_name, unit, factor):
        row(figure, f"{times[name] * factor:.1f} {unit}", reference, f"{times[reference_name] * factor:.1f} {unit}",
            times[name] / times[reference_name])

    per_code = [times["LoadCodeTable/colliding:1"] / 20_000 * 1e9, times["LoadCodeTable/colliding:0"] / 1_000_000 * 1e9]
    row("load a code, 20 thousand of one bucket", f"{per_code[0]:.1f} ns", "of a million", f"{per_code[1]:.1f} ns",
        per_code[0] / per_code[1])
    compare("load 100 thousand colours, descending", "LoadColours/descending:1", "ascending",
            "LoadColours/descending:0", "ms", 1e3)
    for name, figure in (("LineStyleOfManyCodes", "style, of a million codes"),
                         ("LineStyleOfCollidingCodes", "style, of colliding codes")):
        compare(figure, name, "of one code", "LineStyle", "ns", 1e9)


def measure_parts():
    times = benchmarked("bench_micro")

    def compare(figure, name, reference, reference_name, items=1, unit="us", factor=1e6):
        value, other = times[name] * factor / items, times[reference_name] * factor / items
        row(figure, f"{value:.1f} {unit}", reference, f"{other:.1f} {unit}", value / other)

    for name in ("Lines", "Fields", "Elements"):
        compare(f"{name.lower()} of 4 MB", name, "line ends in memory", "LineEnds")
    for kind, numbers in ((0, "coordinate"), (1, "number of 17 digits")):
        for reference, name in (("strtod", "NumbersStrtod"), ("std::from_chars", "NumbersFromChars")):
            compare(f"{numbers}, in the reader", f"NumbersInReader/{kind}", reference, f"{name}/{kind}", 1000, "ns", 1e9)
    compare("coordinate of a point, in the reader", "PointsInReader", "strtod", "NumbersStrtod/0", 1000, "ns", 1e9)


def measure_gdal(megabytes):
    """The driver's loop over lines of two points, and the module's, against what else there is."""
    program = programs / "bench_gdal"
    if not program.exists():
        return
    times = json.loads(run(program, "--json", "--folder", work, "--size", megabytes))
    lines = times.pop("lines")

    def speed(name):
        return f"{lines / times[name] / 1e6:.2f} M lines/s"

    size = f"{megabytes} MB"
    row(f"GDAL driver with styles, {size}", speed("driver"), "made-up features", speed("made_up"),
        times["driver"] / times["made_up"])
    row(f"GDAL driver's Arrow stream, {size}", speed("arrow"), "made by GDAL from features", speed("arrow_by_gdal"),
        times["arrow"] / times["arrow_by_gdal"])
    for name in ("DXF", "CSV", "GeoJSONSeq", "FlatGeobuf"):
        row(f"GDAL driver with styles, {size}", speed("driver"), f"{name} through GDAL", speed(name),
            times["driver"] / times[name])
    for name in ("DXF", "CSV", "GeoJSONSeq", "FlatGeobuf"):
        row(f"import, lines of two points, {size}", speed("import"), f"{name} through GDAL", speed(name),
            times["import"] / times[name])


def measure_conversion(full):
    """Thousands of small sheets and hundreds of large ones into one output, into one each and into a database."""
    if not (programs / "bench_gdal").exists():
        return
    conversion = Conversion(programs, work, generated, row)
    conversion.measure(13_000 if full else 1_300, 10_000)
    conversion.measure(200 if full else 20, 5_000_000)


def print_table():
    titles = ("Figure", "Value", "Reference", "Value", "Ratio")
    widths = [max(len(line[i]) for line in [titles, *rows]) for i in range(5)]
    for line in [titles, ["-" * width for width in widths], *rows]:
        print("  ".join(text.ljust(width) if i in (0, 2) else text.rjust(width)
                        for i, (text, width) in enumerate(zip(line, widths))).rstrip())


def measure_interfaces(size):
    """The C++ interface and the Arrow columns of lines and texts, beside the module's own operations."""
    result = json.loads(run(programs / "bench_interfaces", "--repeat", 7, generated(size)))
    for elements, slots, figure, reference in (
            ("elements", "slots", "all of each element, by vkm.hpp", "by the operations"),
            ("elements_drawn", "slots_drawn", "what is drawn of each, by vkm.hpp", "by the operations"),
            ("columns", "slots_drawn", f"columns of lines and texts, peak {result['peak_megabytes']} MB",
             "import alone")):
        row(f"{figure}, {size_text(size)}", f"{result[elements]:.3f} s", reference, f"{result[slots]:.3f} s",
            result[f"{elements}_ratio"])


def read_in_python(way, path, repeat=3):
    """The best of some runs, each in a process of its own: rows, seconds and the peak of memory."""
    environment = dict(os.environ, PYTHONPATH="build/release/python", GDAL_DRIVER_PATH="build/release/lib/gdalplugins")
    command = ["/usr/bin/python3", "bench/read_in_python.py", way, str(path)]
    runs = [json.loads(subprocess.run(command, check=True, capture_output=True, text=True, env=environment).stdout)
            for _ in range(repeat)]
    return min(runs, key=lambda one: one["seconds"])


def measure_python():
    """The Python package: columns beside the import alone, geopandas beside geopandas over GDAL."""
    def shown(result):
        return f"{result['seconds']:.2f} s, {result['peak'] / 1e6:.0f} MB"

    large = generated(200_000_000)
    alone = imported(large, 5)["import"]
    for way, figure in (("lines", "Python: columns of lines"), ("columns", "Python: columns of lines and texts")):
        columns = read_in_python(way, large)
        row(f"{figure}, 200 MB", shown(columns), "import alone", f"{alone:.2f} s", columns["seconds"] / alone)

    path = generated(20_000_000)
    frame = read_in_python("frame", path)
    drawing = work / "python-lines.dxf"
    run(programs / "vkm", "convert", path, "-o", drawing, "--layers", "lines", "--quiet")
    for way, source, reference in (("driver", path, "geopandas over the GDAL driver"),
                                   ("dxf", drawing, "geopandas over DXF")):
        other = read_in_python(way, source)
        row("Python: read_geopandas of lines, 20 MB", shown(frame), reference, shown(other),
            other["seconds"] / frame["seconds"])


def main():
    work.mkdir(parents=True, exist_ok=True)
    sizes = [1 << 20, 1 << 24, 1 << 28, 1 << 30]
    if "--full" in sys.argv[1:]:
        sizes += [1 << 32, 5 << 30]
    times = measure_import(sizes)
    measure_threads(1 << 26)
    measure_mixed(1 << 28)
    measure_commands(times)
    measure_interfaces(200 << 20)
    measure_python()
    measure_sample()
    measure_symbology()
    measure_parts()
    measure_gdal(1000 if "--full" in sys.argv[1:] else 64)
    measure_conversion("--full" in sys.argv[1:])
    print_table()


main()
