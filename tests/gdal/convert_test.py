"""Checks `vkm convert` of single maps: python3 convert_test.py."""

import csv
import io
import json
import os
import resource
import signal
import subprocess
import time
import unittest
import xml.etree.ElementTree as xml

from osgeo import gdal

from convert_case import COUNTS, DATA, MAP, STYLED, VKM, ConvertCase, counts_of, round_place, values_of
from made_map import MadeMap


class Convert(ConvertCase):
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

    def test_standard_output_takes_the_features_of_all_files(self):
        def features(text, lines):
            return sorted(json.dumps(feature, sort_keys=True) for feature in (map(json.loads, text.splitlines()) if lines else json.loads(text)["features"]))

        self.convert("map.vkm", "-o", "out.geojson")
        files = []
        for name in COUNTS:
            with open(self.path(f"out_{name}.geojson"), encoding="utf-8") as file:
                files += features(file.read(), lines=False)
        with open(self.path("map.vkm"), "rb") as piped:
            self.assertEqual(sorted(files), features(self.stream("-", "-f", "GeoJSON", stdin=piped), lines=False))
        # Sequences have other coordinates; what a feature says is the same.
        streamed = features(self.stream("map.vkm", "-f", "GeoJSONSeq"), lines=True)
        said = [sorted(json.dumps(json.loads(one)["properties"], sort_keys=True) for one in some) for some in (files, streamed)]
        self.assertEqual(*said)
        table = self.stream("map.vkm", "-f", "CSV", "--layers", "texts")
        self.assertEqual([text["text"] or "" for text in MAP.texts], [row["text"] for row in csv.DictReader(io.StringIO(table))])
        for options, reason in ((["-f", "CSV"], "one table"), (["-f", "gpkg"], "needs a file"), ([], "needs --format")):
            self.assertIn(reason, self.convert("map.vkm", "-o", "-", *options, code=2))
        # A map larger than a buffer, and one that is written at the end only.
        for options in (["map.vkm"], ["map.vkm", "--layers", "texts", "--bbox", "0,0,1,1"]):
            with self.subTest(options), open("/dev/full", "wb") as full:
                run = subprocess.run([VKM, "convert", *options, "-o", "-", "-f", "geojson"], cwd=self.folder, stdout=full, stderr=subprocess.PIPE)
                self.assertEqual((4, b"vkm: standard output: cannot be written: No space left on device\n"), (run.returncode, run.stderr))
        reader, writer = os.pipe()
        os.close(reader)
        run = subprocess.run([VKM, "convert", "map.vkm", "-o", "-", "-f", "geojsonl"], cwd=self.folder, stdout=writer, stderr=subprocess.PIPE)
        os.close(writer)
        self.assertEqual((0, b""), (run.returncode, run.stderr))


if __name__ == "__main__":
    unittest.main()
