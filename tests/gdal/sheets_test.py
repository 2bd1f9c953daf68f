"""Checks `vkm convert` and `vkm index` of many sheets, and the driver's view of them: python3 sheets_test.py."""

import collections
import os
import subprocess
import unittest
import zipfile

from osgeo import gdal

from convert_case import COUNTS, MAP, VKM, ConvertCase, counts_of, values_of
from made_map import MadeMap
from messages import Messages


class Sheets(ConvertCase):
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


if __name__ == "__main__":
    unittest.main()
