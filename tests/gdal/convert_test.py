"""Checks `vkm convert`: python3 convert_test.py. VKM names the program, VKM_DATA the folder of the sample maps."""

import collections
import csv
import json
import os
import resource
import signal
import subprocess
import tempfile
import time
import unittest
import zipfile
import xml.etree.ElementTree as xml

from osgeo import gdal

from made_map import MadeMap
from messages import Messages

gdal.UseExceptions()
VKM = os.environ["VKM"]
DATA = os.environ["VKM_DATA"]
MAP = MadeMap(11)
COUNTS = {"lines": len(MAP.lines), "points": len(MAP.points), "texts": len(MAP.texts)}
STYLED = COUNTS | {"layer_styles": 3}


def counts_of(path):
    dataset = gdal.OpenEx(path)
    layers = [dataset.GetLayer(i) for i in range(dataset.GetLayerCount())]
    return {layer.GetName(): layer.GetFeatureCount() for layer in layers}


def values_of(path, layer, *names):
    dataset = gdal.OpenEx(path)
    return [tuple(feature[name] for name in names) for feature in dataset.GetLayer(layer)]


def round_place(place):
    return tuple(round(number, 2) for number in place)


class Convert(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.write("map.vkm", MAP.bytes())

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def write(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)

    def left_behind(self):
        return [name for _, folders, files in os.walk(self.folder) for name in folders + files if name.startswith(".")]

    def convert(self, *arguments, code=0, **more):
        run = subprocess.run([VKM, "convert", *arguments], cwd=self.folder, capture_output=True, text=True, **more)
        self.assertEqual((code, "", []), (run.returncode, run.stdout, self.left_behind()), run.stderr)
        return run.stderr

    def test_formats(self):
        cases = {"out.gpkg": {"out.gpkg": STYLED}, "out.sqlite": {"out.sqlite": COUNTS}}
        # A file for each layer; some formats name the layer after the file.
        cases |= {f"out.{end}": {f"out_{layer}.{end}": {named.format(layer): count} for layer, count in COUNTS.items()}
                  for end, named in (("fgb", "{}"), ("geojson", "{}"), ("csv", "out_{}"), ("shp", "out_{}"))}
        for output, files in cases.items():
            with self.subTest(output):
                self.convert("map.vkm", "-o", output, "--quiet")
                for name, counts in files.items():
                    self.assertEqual(counts, counts_of(self.path(name)))
                texts = [name for name in files if "texts" in name] or list(files)
                layer = [name for name in files[texts[0]] if "texts" in name][0]
                # Letters and places are whole in every format; some sort the features.
                dataset = gdal.OpenEx(self.path(texts[0]))
                found = [(round_place(text.geometry().GetPoint_2D(0)), text["text"] or None) for text in dataset.GetLayer(layer)]
                self.assertEqual(sorted((round_place(text["place"]), text["text"] or None) for text in MAP.texts), sorted(found))

    def test_formats_that_end_a_layer_where_the_next_begins(self):
        self.convert("map.vkm", "map.vkm", "-o", "out.kml", "--quiet")
        self.assertEqual({layer: 2 * count for layer, count in COUNTS.items()}, counts_of(self.path("out.kml")))

    def test_drawing_takes_everything_with_layer_and_style(self):
        self.convert("map.vkm", "-o", "out.dxf")
        found = values_of(self.path("out.dxf"), "entities", "Layer", "Text")
        self.assertEqual({str(item["layer"]) for item in MAP.lines + MAP.points + MAP.texts}, {layer for layer, _ in found})
        self.assertEqual([text["text"] for text in MAP.texts if text["text"]], [text for _, text in found if text])
        strokes = sum(len(line["strokes"]) for line in MAP.lines)
        self.assertEqual(strokes + len(MAP.points) + len(MAP.texts), len(found))

    def test_one_layer_keeps_the_name(self):
        self.convert("map.vkm", "-o", "texts.geojson", "--layers", "texts")
        self.assertEqual([(text["text"],) for text in MAP.texts], values_of(self.path("texts.geojson"), "texts", "text"))

    def test_many_inputs_become_one_output(self):
        other = MadeMap(12)
        self.write("other.vkm", other.bytes())
        self.convert("map.vkm", "other.vkm", "-o", "out.gpkg")
        wanted = [(name, text["text"]) for name, made in (("map.vkm", MAP), ("other.vkm", other)) for text in made.texts]
        self.assertEqual(wanted, values_of(self.path("out.gpkg"), "texts", "source", "text"))
        # Every sheet is drawn at its own scale.
        for layer, style in values_of(self.path("out.gpkg"), "layer_styles", "f_table_name", "styleQML"):
            self.assertIn("map_scale", style, layer)

    def test_many_inputs_become_an_output_each(self):
        for number in range(7):
            self.write(f"{number}.vkm", MadeMap(number).bytes())
        self.write("3.vkm", MadeMap(3).bytes()[:-10])
        names = [f"{number}.vkm" for number in range(7)]
        said = self.convert(*names, "missing.vkm", "-o", "out/", "--format", "gpkg", "--jobs", "3", code=4)
        for word in ("3.vkm", "missing.vkm"):
            self.assertIn(word, said)
        made = sorted(os.listdir(self.path("out")))
        self.assertEqual([f"{number}.gpkg" for number in range(7)], made)
        self.assertEqual(len(MadeMap(6).texts), counts_of(self.path("out", "6.gpkg"))["texts"])
        self.assertIn("two inputs", self.convert("map.vkm", "./map.vkm", "-o", "out/", "--format", "fgb", code=2))

    def test_parcels_of_the_sample(self):
        said = self.convert(os.path.join(DATA, "sample-town.vkm"), "-o", "out.gpkg", "--parcels")
        numbers = [number for number, in values_of(self.path("out.gpkg"), "parcels", "number")]
        self.assertGreater(len(numbers), 100)
        self.assertGreater(len([number for number in numbers if number]), 0.9 * len(numbers), said)

    def test_geopackage_carries_styles(self):
        self.convert(os.path.join(DATA, "sample-town.vkm"), "-o", "out.gpkg", "--parcels")
        dataset = gdal.OpenEx(self.path("out.gpkg"))
        styles = {row["f_table_name"]: row for row in dataset.GetLayer("layer_styles")}
        self.assertEqual({"lines", "points", "texts", "parcels"}, styles.keys())
        for name, row in styles.items():
            self.assertTrue(row["useAsDefault"])
            self.assertEqual(dataset.GetLayer(name).GetGeometryColumn(), row["f_geometry_column"])
            self.assertIsNotNone(xml.fromstring(row["styleQML"]).find("renderer-v2"))
        renderers = {name: xml.fromstring(row["styleQML"]).find("renderer-v2") for name, row in styles.items()}
        self.assertEqual(["\"layer\"", "$id"], [clause.text for clause in renderers["lines"].iter("orderByClause")])
        self.assertNotIn("", [category.get("value") for category in renderers["points"].iter("category")])
        colours = [option.get("value") for option in renderers["points"].iter("Option") if "pen_code" in option.get("value", "")]
        self.assertRegex(colours[0], r"21800\b.* THEN '#8c1e14'")
        self.check_pens(os.path.join(DATA, "sample-town.vkm"), xml.fromstring(styles["lines"]["styleQML"]))

    def check_pens(self, path, style):
        """The pens of the style, whose lengths are metres on the ground at 1:1000, are those of the driver's style strings."""
        symbols = {symbol.get("name"): {option.get("name"): option.get("value") for option in symbol.find("layer").iter("Option")}
                   for symbol in style.iter("symbol")}
        pens = {category.get("value"): symbols[category.get("symbol")] for category in style.iter("category")}
        dataset = gdal.OpenEx(path)
        seen = {(str(line["code"]), line.GetStyleString()) for line in dataset.GetLayer("lines")}
        self.assertGreater(len(seen), 10)
        for code, wanted in seen:
            pen = pens[code]
            colour = "#" + "".join(f"{int(part):02x}" for part in pen["line_color"].split(",")[:3])
            dashes = f',p:"{pen["customdash"].replace(";", "mm ")}mm"' if pen["use_custom_dash"] == "1" else ""
            self.assertEqual(wanted, f'PEN(c:{colour},w:{pen["line_width"]}mm{dashes})', code)

    def test_troubles(self):
        self.write("cut.vkm", MAP.bytes()[:-4])
        self.write("taken", b"")
        self.write("old.gpkg", b"old")
        for arguments, code, word in ((["cut.vkm", "-o", "cut.gpkg"], 1, "cut.vkm"),
                                      (["cut.vkm", "-o", "cut.gpkg", "--quiet"], 1, "cut.vkm"),
                                      (["missing.vkm", "-o", "x.gpkg"], 4, "missing.vkm"),
                                      (["map.vkm", "missing.vkm", "-o", "old.gpkg"], 4, "missing.vkm"),
                                      (["map.vkm", "-o", "x.nothing"], 2, "nothing"),
                                      (["map.vkm", "-o", "x.gpkg", "--layers", "roads"], 2, "roads"),
                                      (["map.vkm", "-o", "x.gpkg", "--srs", "nowhere"], 2, "nowhere"),
                                      (["map.vkm", "-o", "x.gpkg", "--open-option", "SPLIT=NO"], 2, "SPLIT"),
                                      (["map.vkm", "-o", "map.vkm", "--format", "gpkg"], 2, "map.vkm"),
                                      (["-", "-", "-o", "x.gpkg"], 2, "only once"),
                                      (["map.vkm", "-o", "/dev/null", "--format", "gpkg"], 2, "/dev/null"),
                                      (["map.vkm", "-o", "taken/x.gpkg"], 3, "taken/x.gpkg"),
                                      (["map.vkm"], 2, "output")):
            with self.subTest(arguments):
                said = self.convert(*arguments, code=code)
                self.assertIn(word, said)
                self.assertLessEqual(len(said.splitlines()), 2, said)
        self.assertEqual(["cut.gpkg", "cut.vkm", "map.vkm", "old.gpkg", "taken"], sorted(os.listdir(self.folder)))
        with open(self.path("old.gpkg"), "rb") as file:
            self.assertEqual(b"old", file.read())
        # What stands last in a cut file is lost, here a text or the closing record alone.
        self.assertEqual(sum(COUNTS.values()) - 1, sum(counts_of(self.path("cut.gpkg"))[name] for name in COUNTS))

    def test_full_disk_leaves_nothing(self):
        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (20000, 20000))
        for ending in ("gpkg", "fgb", "csv", "dxf", "shp", "geojson", "geojsonl", "gml"):
            with self.subTest(ending):
                said = self.convert("map.vkm", "-o", f"full.{ending}", code=3, preexec_fn=limit)
                self.assertRegex(said, rf"^vkm: .*full\.{ending}: cannot be written: .+\n$")
        self.assertEqual(["map.vkm"], os.listdir(self.folder))

    def test_full_disk_ends_the_run_at_once(self):
        self.sheets(*(f"in/{number}.vkm" for number in range(20)))
        os.mkdir(self.path("disk"))
        if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=1m", "tmpfs", self.path("disk")], stderr=subprocess.DEVNULL).returncode:
            self.skipTest("nobody but root can make a small disk")
        self.addCleanup(subprocess.run, ["umount", self.path("disk")], check=True)
        for output in ("disk/one.gpkg", "disk/one.fgb", "disk/each/"):
            with self.subTest(output):
                said = self.convert("in", "-o", output, "--report", "report.json", code=4)
                self.assertEqual(1, said.count("No space left on device"), said)
                self.assertNotIn("SQL", said)
                made = [row for row in self.report().values() if row["made"]]
                self.assertEqual(len(made), sum(len(files) for _, _, files in os.walk(self.path("disk"))))
                self.assertIn(f"{len(made)} of 20 maps", said)
                subprocess.run("rm -rf disk/*", shell=True, cwd=self.folder, check=True)

    def test_interrupt_leaves_nothing(self):
        made = MadeMap(13, 1000)
        made.rows[3:-1] *= 200
        self.write("long.vkm", made.bytes())
        for arguments in (["-o", "out.gpkg"], ["map.vkm", "-o", "out/", "--format", "gpkg", "--jobs", "2"]):
            with self.subTest(arguments):
                run = subprocess.Popen([VKM, "convert", "long.vkm", *arguments], cwd=self.folder, stderr=subprocess.PIPE,
                                       text=True, start_new_session=True)
                while not self.left_behind() and run.poll() is None:
                    time.sleep(0.01)
                os.killpg(run.pid, signal.SIGINT)
                said = run.communicate()[1]
                self.assertEqual((4, []), (run.returncode, self.left_behind()), said)
                self.assertIn("stopped", said)
                self.assertFalse(os.path.exists(self.path("out.gpkg")) or os.path.exists(self.path("out", "long.gpkg")))

    def test_process_that_is_killed_is_replaced(self):
        made = MadeMap(13, 1000)
        made.rows[3:-1] *= 100
        self.write("long.vkm", made.bytes())
        self.write("other.vkm", MAP.bytes())
        run = subprocess.Popen([VKM, "convert", "long.vkm", "map.vkm", "other.vkm", "-o", "out/", "--format", "fgb"],
                               cwd=self.folder, stderr=subprocess.PIPE, text=True)
        while not self.left_behind() and run.poll() is None:
            time.sleep(0.01)
        os.kill(int(self.left_behind()[0].split(".")[-1]), signal.SIGKILL)
        said = run.communicate()[1]
        self.assertEqual((3, []), (run.returncode, self.left_behind()), said)
        self.assertIn("long.vkm", said)
        self.assertEqual({f"{name}_{layer}.fgb" for name in ("map", "other") for layer in COUNTS}, set(os.listdir(self.path("out"))))

    def sheets(self, *names):
        """Maps of their own in files of these names."""
        made = {}
        for number, name in enumerate(names):
            made[name] = MadeMap(20 + number)
            os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
            self.write(name, made[name].bytes())
        return made

    def report(self, name="report.json"):
        with open(self.path(name), encoding="utf-8") as file:
            return {row["source"]: row for row in (json.load(file) if name.endswith("json") else csv.DictReader(file))}

    def test_folder_is_mirrored_and_reported(self):
        self.sheets("in/a/1.vkm", "in/b/1.vkm", "in/2.vkm")
        self.write("in/cut.vkm", MAP.bytes()[:-4])
        self.convert("in", "-o", "flat/", "--report", "report.csv", "--format", "fgb", "--quiet", code=1)
        self.assertEqual({"in/2.vkm": "true", "in/cut.vkm": "false"}, {key: row["complete"] for key, row in self.report("report.csv").items()})
        self.write("in/none.vkm", b"")
        os.mkdir(self.path("in/none.vkm.d"))
        os.remove(self.path("in/none.vkm"))
        os.symlink("nowhere", self.path("in/none.vkm"))
        self.write("in/bad.zip", b"PK\3\4 nothing")
        said = self.convert("-r", "in", "-o", "out/", "--jobs", "2", "--report", "report.json", code=4)
        self.assertIn("4 of 5 maps", said)
        self.assertEqual({"a", "b", "2.gpkg", "cut.gpkg"}, set(os.listdir(self.path("out"))))
        self.assertEqual(["1.gpkg"], os.listdir(self.path("out", "b")))
        report = self.report()
        self.assertEqual(["source", "made", "complete", "lines", "points", "texts", "parcels", "seconds", "reason"], list(report["in/2.vkm"]))
        self.assertEqual((True, True, None, len(MadeMap(22).lines)), tuple(report["in/2.vkm"][name] for name in ("made", "complete", "reason", "lines")))
        self.assertEqual((True, False), (report["in/cut.vkm"]["made"], report["in/cut.vkm"]["complete"]))
        self.assertEqual((False, True), (report["in/bad.zip"]["made"], "zip" in report["in/bad.zip"]["reason"]))

    def test_archive_with_a_bad_sheet_becomes_one_output(self):
        made = self.sheets("a.vkm", "b/a.vkm")
        with zipfile.ZipFile(self.path("all.zip"), "w", zipfile.ZIP_DEFLATED) as archive:
            for name in made:
                archive.write(self.path(name), name)
            archive.writestr("bad.vkm", "no map at all")
        said = self.convert("all.zip", "-o", "out.gpkg", "--report", "report.json", code=4)
        self.assertIn("all.zip/bad.vkm", said)
        counts = counts_of(self.path("out.gpkg"))
        self.assertEqual((sum(len(one.lines) for one in made.values()), 2), (counts["lines"], counts["sheets"]))
        self.assertEqual({"all.zip/a.vkm", "all.zip/b/a.vkm"}, {name for name, in values_of(self.path("out.gpkg"), "lines", "source")})
        # A point's line is the identifier of its line in the output, whatever sheet it is from.
        dataset = gdal.OpenEx(self.path("out.gpkg"))
        lines = {line.GetFID(): line["source"] for line in dataset.GetLayer("lines")}
        points = [(point["line"], point["source"]) for point in dataset.GetLayer("points") if point["line"]]
        self.assertTrue(points and all(lines[line] == source for line, source in points))
        self.assertEqual(False, self.report()["all.zip/bad.vkm"]["made"])

    def sheet_rows(self):
        dataset = gdal.OpenEx(self.path("out.gpkg"))
        return {row["source"]: row.GetFID() for row in dataset.GetLayer("sheets")}

    def test_update_replaces_what_has_changed(self):
        made = self.sheets("in/1.vkm", "in/2.vkm", "in/3.vkm")
        self.convert("in", "-o", "out.gpkg")
        before = self.sheet_rows()
        made["in/2.vkm"] = MadeMap(40)
        self.write("in/2.vkm", made["in/2.vkm"].bytes())
        os.utime(self.path("in/1.vkm"), (1, 1))  # touched, not changed
        os.remove(self.path("in/3.vkm"))
        made.update(self.sheets("in/4.vkm"))
        for arguments, names in (([], {1, 2, 3, 4}), (["--prune"], {1, 2, 4})):
            self.convert("in", "-o", "out.gpkg", "--update", *arguments)
            wanted = {name: one for name, one in made.items() if int(name[3]) in names}
            for layer in COUNTS:
                found = collections.Counter(name for name, in values_of(self.path("out.gpkg"), layer, "source"))
                self.assertEqual({name: len(getattr(one, layer)) for name, one in wanted.items() if getattr(one, layer)}, dict(found))
        after = self.sheet_rows()
        self.assertEqual((before["in/1.vkm"], False), (after["in/1.vkm"], before["in/2.vkm"] == after["in/2.vkm"]))
        self.convert("map.vkm", "-o", "out.gpkg", "--append")
        self.assertEqual(4, counts_of(self.path("out.gpkg"))["sheets"])

    def write_net(self, name, wanted):
        """Squares of 10 m, every side a line of its own, with a number in each; only sides and numbers at a wanted x."""
        rows = ["&V 1 0 0", "&R 1 1 0 0 1000 A", "&U 1"]
        sides = [((x, y), (x + dx, y + 1 - dx)) for x in range(5) for y in range(5) for dx in (0, 1) if x + dx <= 4 and y + 1 - dx <= 4]
        rows += [f"&L P {10 * a[1]} {10 * a[0]}\n L {10 * b[1]} {10 * b[0]}" for a, b in sides if wanted((a[0] + b[0]) / 2)]
        rows += ["&U 2"] + [f"&T {10 * y + 5} {10 * x + 5} {4 * x + y}" for x in range(4) for y in range(4) if wanted(x + 0.5)]
        self.write(name, "\n".join(rows + ["&K", ""]).encode())

    def parcels_of(self, name):
        return sorted((row[0], round(row[1], 6), row[2]) for row in values_of(self.path(name), "parcels", "number", "area", "sheets"))

    def write_net_sheets(self):
        """Seams go through the squares, and one stands in two sheets."""
        os.makedirs(self.path("in"), exist_ok=True)
        for name, begin, end in (("in/b.vkm", 1, 2.5), ("in/a.vkm", 0, 1), ("in/c.vkm", 2.5, 4)):
            self.write_net(name, lambda x, begin=begin, end=end: begin <= x <= end)

    def test_parcels_over_many_sheets_are_those_of_one_file(self):
        self.write_net("one.vkm", lambda x: True)
        self.write_net_sheets()
        found = {}
        for source in ("one.vkm", "in"):
            self.convert(source, "-o", f"{source}.gpkg", "--parcels", "--report", "report.json")
            dataset = gdal.OpenEx(self.path(f"{source}.gpkg"))
            found[source] = sorted((row["number"], round(row["area"], 6), row.geometry().GetEnvelope()) for row in dataset.GetLayer("parcels"))
        self.assertEqual((16, found["one.vkm"]), (len(found["in"]), found["in"]))
        self.assertEqual(16, sum(row["parcels"] for row in self.report().values()))
        self.assertIn(("(2:in/a.vkm,in/b.vkm)",), set(values_of(self.path("in.gpkg"), "parcels", "sheets")))

    def test_parcels_of_an_update_are_those_of_a_fresh_run(self):
        self.write_net_sheets()
        self.convert("in", "-o", "three.gpkg", "--parcels")
        two = ["in/a.vkm", "in/b.vkm", "-o"]
        self.convert(*two, "two.gpkg", "--parcels", "--report", "report.json")
        faults = [(row["parcelsWithoutNumber"], row["freeEnds"]) for row in self.report().values()]
        self.assertEqual([(0, 0), (0, 5)], faults)
        self.convert(*two, "out.gpkg")
        os.remove(self.path("in/a.vkm"))
        # Of a sheet whose file is gone the output has what it takes.
        self.convert("in/b.vkm", "in/c.vkm", "-o", "out.gpkg", "--update", "--parcels")
        self.assertEqual(self.parcels_of("three.gpkg"), self.parcels_of("out.gpkg"))
        self.write_net_sheets()
        self.assertIn("--parcels", self.convert(*two, "out.gpkg", "--update", "--prune"))
        self.convert(*two, "out.gpkg", "--update", "--parcels")
        self.assertEqual(self.parcels_of("two.gpkg"), self.parcels_of("out.gpkg"))

    def test_index_and_collection(self):
        made = self.sheets("in/1.vkm", "in/deep/2.vkm", "in/deep/3.vkm")
        self.write("in/bad.vkm", b"no map at all")
        run = subprocess.run([VKM, "index", "-r", "in", "-o", "index.gpkg"], cwd=self.folder, stderr=subprocess.DEVNULL)
        wanted = [(name, len(one.lines), 1, "made up") for name, one in made.items()]
        self.assertEqual((4, wanted), (run.returncode, values_of(self.path("index.gpkg"), "sheets", "source", "lines", "complete", "title")))
        both = ["VKM:" + self.path("in"), "VKM:" + self.path("index.gpkg")]
        with Messages():
            for name in both:
                found = collections.Counter(name for name, in values_of(name, "lines", "source"))
                self.assertEqual({self.path(name): len(one.lines) for name, one in made.items()}, dict(found))

    def test_collection_reads_only_what_a_filter_touches(self):
        made = {f"in/{number}.vkm": MadeMap(50 + number, east=4000 * number) for number in range(4)}
        os.mkdir(self.path("in"))
        for name, one in made.items():
            self.write(name, one.bytes())
        subprocess.run([VKM, "index", "in", "-o", "index.gpkg"], cwd=self.folder, check=True)
        whole = gdal.OpenEx("VKM:" + self.path("in"))
        everything = [(feature.GetFID(), feature["source"]) for feature in whole.GetLayer("texts")]
        wanted = [(number, name) for number, name in everything if name.endswith("2.vkm")]
        x, y = made["in/2.vkm"].texts[0]["place"]
        for name in ("in", "index.gpkg"):
            with self.subTest(name):
                dataset = gdal.OpenEx("VKM:" + self.path(name))
                layer = dataset.GetLayer("texts")
                self.assertEqual(len(everything), layer.GetFeatureCount())
                # What is not touched may have turned into anything meanwhile.
                times = os.stat(self.path("in/3.vkm"))
                self.write("in/3.vkm", b"x" * times.st_size)
                os.utime(self.path("in/3.vkm"), ns=(times.st_atime_ns, times.st_mtime_ns))
                layer.SetSpatialFilterRect(x - 1000, y - 1000, x + 1000, y + 1000)
                with Messages() as messages:
                    found = [(feature.GetFID(), feature["source"]) for feature in layer]
                    self.assertEqual((wanted, []), (found, messages.list))
                    self.assertEqual(wanted[3], (layer.GetFeature(wanted[3][0]).GetFID(), wanted[3][1]))
                self.write("in/3.vkm", made["in/3.vkm"].bytes())

    def test_coordinates(self):
        self.convert("map.vkm", "-o", "out.gpkg", "--layers", "texts", "--t-srs", "EPSG:4326")
        dataset = gdal.OpenEx(self.path("out.gpkg"))
        place = dataset.GetLayer("texts").GetExtent()
        self.assertTrue(all(abs(number) < 180 for number in place), place)
        self.assertIn("--t-srs", self.convert("map.vkm", "-o", "out.geojson", "--layers", "texts", "--srs", "EPSG:4326"))
        x, y = MAP.texts[0]["place"]
        self.convert("map.vkm", "-o", "out.fgb", "--layers", "texts", "--bbox", f"{x - 1},{y - 1},{x + 1},{y + 1}")
        self.assertEqual(sum(abs(text["place"][0] - x) <= 1 and abs(text["place"][1] - y) <= 1 for text in MAP.texts),
                         counts_of(self.path("out.fgb"))["texts"])

    def test_standard_input(self):
        with open(self.path("map.vkm"), "rb") as piped:
            self.convert("-", "-o", "piped.fgb", "--layers", "lines", stdin=piped)
        self.assertEqual({"lines": COUNTS["lines"]}, counts_of(self.path("piped.fgb")))


if __name__ == "__main__":
    unittest.main()
