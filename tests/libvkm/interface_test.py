#!/usr/bin/env python3
"""libvkm through its C interface: interface_test.py LIBRARY DATA"""

import ctypes
import pathlib
import re
import subprocess
import sys
import threading
import unittest

import vkm
from vkm import byref

LIBRARY = vkm.Library(sys.argv[1])
DATA = pathlib.Path(sys.argv[2])
ROOT = DATA.parent
TOWN = str(DATA / "sample-town.vkm").encode()
HEAD = b"&R 0 0 0 0 1000\n"
TURN = b"&U 1\n&L P 0 0 K=10 S=101\nL 10 0\nL 10 10 K=11\nL 0 10 U=50\nP 99 99\n"
MAP = HEAD + TURN + '&U 2\n&T 5 5 "Dobřštice" K=7 H=2\n&K\n'.encode("cp1250")
NO_RELEASE = vkm.Release()


KEPT = []  # memory of sources is not copied


def opened(data=MAP, **options):
    KEPT.append(data)
    return LIBRARY.call("vkm_open_memory", data, len(data), b"m.vkm", LIBRARY.options(**options), NO_RELEASE, None)


class Elements(unittest.TestCase):
    def test_gives_lines_and_texts(self):
        reader = opened(orientation=b"y,x")
        line, text = LIBRARY.elements(reader)
        self.assertEqual(line[1], [(0, 0), (10, 0), (10, 10), (0, 10), (99, 99)])
        self.assertEqual(line[2:], ("PLLLP", ["10", "", "11", "", ""], [101, 0, 0, 0, 0], [(0, 2, 10), (1, 3, 11)]))
        self.assertEqual(text, (2, [(5, 5)], "Dobřštice", 7, 2.0))
        self.assertEqual(LIBRARY.lib.vkm_complete(reader), 1)
        LIBRARY.call("vkm_rewind", reader)
        self.assertEqual(len(LIBRARY.elements(reader)), 2)
        LIBRARY.lib.vkm_close(reader)

    def test_counts_what_it_passes_over(self):
        warnings = []
        on_warning = vkm.OnWarning(lambda _, error: warnings.append(LIBRARY.lib.vkm_error_status(error)))
        reader = opened(MAP.replace(b"99 99", b"nan 99")[:-3], encoding=b"utf-8", on_warning=on_warning)
        LIBRARY.elements(reader)
        counts = LIBRARY.lib.vkm_left_out(reader), LIBRARY.lib.vkm_complete(reader)
        self.assertEqual(counts, (1, 0))
        self.assertEqual(warnings, [vkm.INCOMPLETE, vkm.OK])
        LIBRARY.lib.vkm_close(reader)

    def test_fails_with_a_status_and_a_sentence(self):
        for path, reason in [
            (b"/no/such.vkm", "No such file"),
            (sys.executable.encode(), "looks like ELF"),
            (b"", "path"),
        ]:
            with self.subTest(path=path), self.assertRaisesRegex(vkm.Failed, reason):
                LIBRARY.call("vkm_open", path, None)
        for options in [{"encoding": b"koi8"}, {"orientation": b"z"}, {"size": 0}, {"size": 12}, {"batch_rows": 0}, {"crs": b'a"b'}]:
            with self.subTest(options=options), self.assertRaises(vkm.Failed):
                opened(**options)
        element = vkm.POINTER(vkm.Element)()
        for name, arguments in [
            ("vkm_next", (None, byref(element))),
            ("vkm_next", (None, None)),
            ("vkm_rewind", (None,)),
        ]:
            with self.assertRaises(vkm.Failed) as failed:
                LIBRARY.call(name, *arguments)
            self.assertEqual(failed.exception.status, -1)


class Sources(unittest.TestCase):
    def source(self, data, fails_at=None):
        """Every open has a place of its own; what happened is kept."""
        files, events = {}, []

        def open_file(_):
            files[len(files) + 1] = 0
            return len(files)

        def read(file, to, length):
            begin = files[file]
            part = data[begin : begin + min(length, 7)]
            if fails_at is not None and begin >= fails_at:
                return -1
            ctypes.memmove(to, part, len(part))
            files[file] += len(part)
            return len(part)

        types = dict(vkm.Source._fields_)
        source = vkm.Source(ctypes.sizeof(vkm.Source), None, types["open"](open_file), types["read"](read))
        source.close = types["close"](lambda file: events.append(f"close {file}"))
        source.release = types["release"](lambda _: events.append("release"))
        return source, events

    def test_reads_by_callbacks_and_gives_them_back_last(self):
        source, events = self.source(MAP)
        reader = LIBRARY.call("vkm_open_source", byref(source), b"calls", None)
        stream = vkm.ArrowStream()
        LIBRARY.call("vkm_stream", reader, 2, byref(stream))
        self.assertEqual(len(LIBRARY.elements(reader)), 2)
        LIBRARY.lib.vkm_close(reader)
        self.assertNotIn("release", events)
        batch = vkm.ArrowArray()
        self.assertEqual(stream.get_next(byref(stream), byref(batch)), 0)
        stream.release(byref(stream))
        self.assertEqual(sorted(events), ["close 1", "close 2", "release"])
        self.assertEqual(batch.length, 1)  # a batch outlives its stream
        batch.release(byref(batch))

    def test_says_the_line_of_a_failed_read(self):
        big = HEAD + TURN * 20000
        source, _ = self.source(big, fails_at=400000)
        reader = LIBRARY.call("vkm_open_source", byref(source), b"calls", None)
        texts = []
        for _ in range(2):  # in the same way ever after
            with self.assertRaisesRegex(vkm.Failed, "calls, line [0-9]+: ") as failed:
                LIBRARY.elements(reader)
            texts.append(str(failed.exception))
            self.assertEqual(failed.exception.status, -4)
        self.assertEqual(texts[0], texts[1])
        with self.assertRaisesRegex(vkm.Failed, "calls, line"):
            LIBRARY.rows(reader, 0)
        LIBRARY.lib.vkm_close(reader)

    def test_stops_when_the_caller_asks(self):
        big = HEAD + TURN * 20000
        stop = vkm.OnProgress(lambda _, part: 1)
        reader = opened(big, on_progress=stop)
        finding, change = vkm.OnFinding(lambda *_: 0), vkm.OnChange(lambda *_: 0)
        for read in [
            lambda: LIBRARY.elements(reader),
            lambda: LIBRARY.call("vkm_check", reader, None, finding, None),
            lambda: LIBRARY.call("vkm_diff", reader, reader, None, change, None),
        ]:
            with self.assertRaises(vkm.Failed) as failed:
                read()
            self.assertEqual(failed.exception.status, -6)
        LIBRARY.lib.vkm_close(reader)


class Columns(unittest.TestCase):
    def test_has_the_fields_of_the_tables(self):
        reader = opened(orientation=b"y,x", crs=b"EPSG:1")
        rows, _, geometry = LIBRARY.rows(reader, 0)
        self.assertEqual([row["code"] for row in rows], [10, 11])
        self.assertEqual([row["codes"] for row in rows], [["10", ""], ["", "11", ""]])
        self.assertEqual([row["symbols"] for row in rows], [[101, 0], None])
        self.assertEqual(rows[1]["u_values"], [0, 0, 50])
        self.assertEqual(rows[1]["geometry"], [[(10, 0), (10, 10), (0, 10)]])
        self.assertEqual(geometry[0], "geometry")
        self.assertEqual(geometry[1]["ARROW:extension:name"], "geoarrow.multilinestring")
        self.assertEqual(geometry[1]["ARROW:extension:metadata"], '{"crs":"EPSG:1","crs_type":"authority_code"}')
        points, _, _ = LIBRARY.rows(reader, 1)
        self.assertEqual(
            [(p["symbol"], p["code"], p["line"], p["vertex"]) for p in points],
            [(101, "10", 1, 0), (None, None, None, 4)],
        )
        (text,), _, _ = LIBRARY.rows(reader, 2)
        self.assertEqual((text["text"], text["code"], text["geometry"]), ("Dobřštice", 7, (5, 5)))
        LIBRARY.lib.vkm_close(reader)

    def test_agrees_with_the_elements_in_batches_of_any_size(self):
        reader = LIBRARY.call("vkm_open", TOWN, LIBRARY.options(split_by_code=0))
        elements = LIBRARY.elements(reader)
        lines = [e for e in elements if len(e) == 6 and e[5]]
        rows, _, _ = LIBRARY.rows(reader, 0)
        self.assertEqual([(r["layer"], r["geometry"][0][0]) for r in rows], [(e[0], e[1][e[5][0][0]]) for e in lines])
        texts, sizes, _ = LIBRARY.rows(reader, 2)
        self.assertEqual([t["text"] for t in texts], [e[2] for e in elements if len(e) == 5])
        small = LIBRARY.call("vkm_open", TOWN, LIBRARY.options(batch_rows=100))
        again, sizes, _ = LIBRARY.rows(small, 2)
        self.assertEqual(again, texts)
        self.assertEqual(set(sizes[:-1]), {100})
        self.assertEqual(len(LIBRARY.rows(small, 0, most=2)[0]), 200)  # dropped half read
        LIBRARY.lib.vkm_close(small)
        LIBRARY.lib.vkm_close(reader)

    def test_fills_several_tables_in_one_passage(self):
        reader = LIBRARY.call("vkm_open", TOWN, LIBRARY.options(batch_rows=100))
        apart = [LIBRARY.rows(reader, table)[0] for table in range(4)]
        streams = LIBRARY.streams(reader, 3, 2, 1, 0)
        streams[1].release(byref(streams[1]))
        LIBRARY.lib.vkm_close(reader)
        together = [LIBRARY.rows_of(streams[i])[0] for i in (3, 2, 0)]
        self.assertEqual(together, [apart[0], apart[1], apart[3]])
        stop = vkm.OnProgress(lambda _, part: 1)
        reader = opened(HEAD + TURN * 20000, on_progress=stop)
        for stream in LIBRARY.streams(reader, 1, 0):
            with self.assertRaises(vkm.Failed):
                LIBRARY.rows_of(stream)
        LIBRARY.lib.vkm_close(reader)

    def test_encloses_parcels(self):
        reader = LIBRARY.call("vkm_open", TOWN, None)
        parcels, _, geometry = LIBRARY.rows(reader, 3)
        self.assertEqual(geometry[1]["ARROW:extension:name"], "geoarrow.polygon")
        self.assertGreater(len(parcels), 500)
        self.assertTrue(all(ring[0] == ring[-1] for p in parcels for ring in p["geometry"]))
        self.assertEqual(sum(p["number"] is None for p in parcels), sum(p["texts"] == 0 for p in parcels))
        LIBRARY.lib.vkm_close(reader)

    def test_lets_a_child_be_moved_out(self):
        reader = opened()
        stream = vkm.ArrowStream()
        LIBRARY.call("vkm_stream", reader, 0, byref(stream))
        self.move_out(stream, 1, [1, 1])
        LIBRARY.lib.vkm_close(reader)

    def test_hands_on_what_it_holds(self):
        reader = opened()
        held = []
        for table in (0, 0, 2):
            stream = vkm.ArrowStream()
            LIBRARY.call("vkm_stream", reader, table, byref(stream))
            held.append(LIBRARY.call("vkm_columns_read", byref(stream)))
            self.assertFalse(stream.release)
        LIBRARY.lib.vkm_close(reader)

        def stream_of(tables, *texts):
            handles, stream = (vkm.c_void_p * len(tables))(*tables), vkm.ArrowStream()
            name, told = (b"sheet", (vkm.c_char_p * len(texts))(*texts)) if texts else (None, None)
            LIBRARY.call("vkm_columns_stream", handles, len(tables), name, told, byref(stream))
            return stream

        rows, _, _ = LIBRARY.rows_of(stream_of(held[:1]))
        both, sizes, _ = LIBRARY.rows_of(stream_of(held[:2], "č".encode(), b""))
        self.assertEqual(sizes, [2, 2])
        self.assertEqual(both, [{**row, "sheet": sheet} for sheet in ("č", "") for row in rows])
        for tables in (held, [], [None]):
            with self.assertRaises(vkm.Failed):
                stream_of(tables)
        with self.assertRaises(vkm.Failed):
            LIBRARY.call("vkm_columns_read", byref(vkm.ArrowStream()))
        waiting = stream_of(held[:1], b"a")
        for columns in held:
            LIBRARY.lib.vkm_columns_free(columns)
        self.move_out(waiting, 1, [1, 1])

    def move_out(self, stream, place, values):
        """Takes one child of the first batch and gives back the rest before it is looked at."""
        batch, moved = vkm.ArrowArray(), vkm.ArrowArray()
        stream.get_next(byref(stream), byref(batch))
        child = batch.children[place][0]
        ctypes.pointer(moved)[0] = child
        child.release = type(child.release)()
        batch.release(byref(batch))
        stream.release(byref(stream))
        shown = ctypes.cast(moved.buffers[1], vkm.POINTER(vkm.c_int32))
        self.assertEqual(shown[: moved.length], values)
        moved.release(byref(moved))


class Threads(unittest.TestCase):
    def test_reads_side_by_side(self):
        counts = []

        def read():
            reader = LIBRARY.call("vkm_open", TOWN, None)
            counts.append((len(LIBRARY.elements(reader)), len(LIBRARY.rows(reader, 1)[0])))
            LIBRARY.lib.vkm_close(reader)

        threads = [threading.Thread(target=read) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(len(counts), 4)
        self.assertEqual(len(set(counts)), 1)


class Symbology(unittest.TestCase):
    def test_gives_styles_by_code(self):
        reader = opened()
        codes, count = vkm.POINTER(vkm.c_int32)(), vkm.c_size_t()
        LIBRARY.call("vkm_line_codes", reader, byref(codes), byref(count))
        self.assertEqual(count.value, 21)
        style = vkm.LineStyle(size=ctypes.sizeof(vkm.LineStyle))
        self.assertEqual(LIBRARY.call("vkm_get_line_style", reader, codes[0], byref(style)), 0)
        self.assertGreater(style.width, 0)
        self.assertEqual(LIBRARY.call("vkm_get_line_style", reader, -77, byref(style)), 2)
        LIBRARY.lib.vkm_close(reader)


class Engines(unittest.TestCase):
    """The same answers as the commands give."""

    def test_draws(self):
        reader = opened()
        picture = vkm.Picture()
        LIBRARY.lib.vkm_picture_init(byref(picture))
        picture.format, picture.title, picture.legend = b"svg", "Dobřštice".encode(), 1
        parts = []
        write = vkm.Write(lambda _, bytes, length: parts.append(ctypes.string_at(bytes, length)) or 0)
        LIBRARY.call("vkm_render_to", reader, byref(picture), write, None)
        self.assertTrue(b"".join(parts).startswith(b"<?xml") and "Dobřštice" in b"".join(parts).decode())
        refuse = vkm.Write(lambda _, bytes, length: 1)
        for form, function, status in [(b"svg", refuse, -5), (b"gif", write, -1)]:
            picture.format = form
            with self.assertRaises(vkm.Failed) as failed:
                LIBRARY.call("vkm_render_to", reader, byref(picture), function, None)
            self.assertEqual(failed.exception.status, status)
        LIBRARY.lib.vkm_close(reader)

    def test_finds_what_is_wrong(self):
        reader = opened(MAP.replace(b"L 10 10", b"L 10 10x"))
        found = []
        keep = vkm.OnFinding(lambda _, f: found.append((f[0].rule, f[0].line, f[0].column, f[0].field)) or 0)
        LIBRARY.call("vkm_check", reader, None, keep, None)
        self.assertIn((b"number-cut", 5, 6, b"10x"), found)
        stop = vkm.OnFinding(lambda _, f: 1)
        with self.assertRaises(vkm.Failed) as failed:
            LIBRARY.call("vkm_check", reader, None, stop, None)
        self.assertEqual(failed.exception.status, -6)
        LIBRARY.lib.vkm_close(reader)

    def test_tells_changes(self):
        old, new = opened(), opened(MAP.replace(b"K=7", b"K=8"))
        told = []
        keep = vkm.OnChange(lambda _, c: told.append((c[0].change, c[0].kind, c[0].layer, c[0].old_line)) or 0)
        LIBRARY.call("vkm_diff", old, new, None, keep, None)
        self.assertEqual(told, [(b"changed", b"text", 2, 9)])
        LIBRARY.lib.vkm_close(old)
        LIBRARY.lib.vkm_close(new)


class Exports(unittest.TestCase):
    def test_are_those_of_the_list_and_of_the_header(self):
        listed = (ROOT / "libvkm/exports.txt").read_text().split()
        names = subprocess.run(["nm", "-D", "--defined-only", sys.argv[1]], capture_output=True, text=True, check=True)
        self.assertEqual(sorted(re.findall(r" T (\w+)@@VKM_1", names.stdout)), listed)
        self.assertEqual(len(re.findall(r" [A-Z] ", names.stdout)), len(listed) + 1)  # and the version itself
        header = (ROOT / "include/vemrado/vkm.h").read_text()
        self.assertEqual(sorted(re.findall(r"^VKM_API[^;(]*?(vkm_\w+)\(", header, flags=re.M)), listed)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
