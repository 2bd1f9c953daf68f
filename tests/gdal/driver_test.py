"""Checks the driver as Python users meet it: python3 driver_test.py. GDAL_DRIVER_PATH names the plugin's folder."""

import io
import os
import random
import subprocess
import sys
import tempfile
import unittest
import zipfile

from osgeo import gdal, ogr

from made_map import MadeMap
from messages import Messages

gdal.UseExceptions()
ogr.UseExceptions()
WORK = os.path.join(os.environ.get("VKM_TEST_FOLDER", "."), "driver_test")
os.makedirs(WORK, exist_ok=True)
MAP = MadeMap(1)
HEAD = b"&V X 0 0\n&R 0 0 0 0 1000 A\n"


def memory_file(name, content):
    path = "/vsimem/" + name
    gdal.FileFromMemBuffer(path, content)
    return path


OPENED = []  # layers do not keep their datasets alive


def open_path(path, **options):
    OPENED.append(gdal.OpenEx(path, gdal.OF_VECTOR, open_options=[f"{k}={v}" for k, v in options.items()]))
    return OPENED[-1]


def open_bytes(content, name="test.vkm", **options):
    return open_path(memory_file(name, content), **options)


def features(dataset, layer):
    return [dump(feature) for feature in dataset.GetLayer(layer)]


def dump(feature):
    return feature.GetFID(), feature.ExportToJson(as_object=True), feature.GetStyleString()


def place_of(feature):
    return feature.geometry().GetPoint_2D(0)


def strokes_of(geometry):
    parts = [geometry.GetGeometryRef(i) for i in range(geometry.GetGeometryCount())] or [geometry]
    return [part.GetPoints() for part in parts]


class Reading(unittest.TestCase):
    def setUp(self):
        self.dataset = open_bytes(MAP.bytes())

    def test_features_are_those_of_the_file(self):
        self.check_features(self.dataset, MAP.lines, {"line": "part", "vertex": "part_vertex"})
        self.check_features(open_bytes(MAP.bytes(), SPLIT_BY_CODE="NO"), MAP.whole_lines, {"line": "line", "vertex": "vertex"})

    def check_features(self, dataset, made_lines, names):
        lines = list(dataset.GetLayer("lines"))
        self.assertEqual(len(made_lines), len(lines))
        for made, feature in zip(made_lines, lines):
            self.assertEqual(made["strokes"], strokes_of(feature.geometry()))
            self.assertEqual(made["layer"], feature["layer"])
            self.assertEqual(made["codes"], feature["codes"])
            self.assertEqual(made["types"], feature["types"])
            self.assertEqual(made["code"] and int(made["code"].rstrip("a")), feature["code"])
        for layer, made_features in (("points", MAP.points), ("texts", MAP.texts)):
            read = list(dataset.GetLayer(layer))
            self.assertEqual(len(made_features), len(read))
            for made, feature in zip(made_features, read):
                self.assertEqual(made["place"], place_of(feature))
                for field in made.keys() - {"place", "part", "part_vertex"}:
                    self.assertEqual(made[names.get(field, field)], feature[field], (layer, field))

    def test_geometries_carry_the_reference_system(self):
        for layer in range(3):
            for feature in self.dataset.GetLayer(layer):
                reference = feature.geometry().GetSpatialReference()
                self.assertEqual(("5514", [1, 2]),
                                 (reference.GetAuthorityCode(None), reference.GetDataAxisToSRSAxisMapping()))

    def test_layers_read_interleaved(self):
        wanted = [features(open_bytes(MAP.bytes()), layer) for layer in range(3)]
        read = [[], [], []]
        chance = random.Random(2)
        unfinished = [0, 1, 2]
        while unfinished:
            layer = chance.choice(unfinished)
            feature = self.dataset.GetLayer(layer).GetNextFeature()
            if feature:
                read[layer].append(dump(feature))
            else:
                unfinished.remove(layer)
        self.assertEqual(wanted, read)

    def test_reading_starts_again_and_jumps(self):
        layer = self.dataset.GetLayer("lines")
        wanted = features(self.dataset, "lines")
        layer.ResetReading()
        for _ in range(5):
            layer.GetNextFeature()
        layer.ResetReading()
        self.assertEqual(wanted[0], dump(layer.GetNextFeature()))
        for index in (7, 3, 3, len(wanted) - 1, 0):
            self.assertEqual(0, layer.SetNextByIndex(index))
            self.assertEqual(wanted[index], dump(layer.GetNextFeature()))
        with Messages():
            for index in (-1, len(wanted) + 1):
                with self.assertRaises(RuntimeError):
                    layer.SetNextByIndex(index)

    def test_features_by_identifier_leave_reading_alone(self):
        layer = self.dataset.GetLayer("texts")
        wanted = features(self.dataset, "texts")
        layer.ResetReading()
        for number in (1, 50, 7, len(wanted)):
            self.assertEqual(wanted[number - 1], dump(layer.GetFeature(number)))
        self.assertEqual(wanted[0], dump(layer.GetNextFeature()))
        for number in (0, -1, len(wanted) + 1):
            self.assertIsNone(layer.GetFeature(number))

    def test_every_capability_is_true(self):
        for number in range(3):
            layer = self.dataset.GetLayer(number)
            claims = {name: layer.TestCapability(name) for name in (
                ogr.OLCFastFeatureCount, ogr.OLCFastGetExtent, ogr.OLCFastSpatialFilter, ogr.OLCRandomRead,
                ogr.OLCSequentialWrite, ogr.OLCFastSetNextByIndex)}
            self.assertFalse(any(claims.values()), claims)
            self.assertTrue(layer.TestCapability(ogr.OLCStringsAsUTF8))
            self.assertEqual(-1, layer.GetFeatureCount(force=0))
            boxes = [feature.geometry().GetEnvelope() for feature in layer]
            # Known from here on, without a pass.
            self.assertTrue(layer.TestCapability(ogr.OLCFastFeatureCount))
            self.assertTrue(layer.TestCapability(ogr.OLCFastGetExtent))
            self.assertEqual(len(boxes), layer.GetFeatureCount(force=0))
            box = tuple(f(values) for f, values in zip((min, max, min, max), zip(*boxes)))
            self.assertEqual(box, layer.GetExtent(force=0))
            fresh = open_bytes(MAP.bytes()).GetLayer(number)
            self.assertEqual((box, len(boxes)), (fresh.GetExtent(), fresh.GetFeatureCount(force=0)))
            layer.SetAttributeFilter("layer = 1")
            self.assertFalse(layer.TestCapability(ogr.OLCFastFeatureCount))

    def test_ignored_fields_stay_unset(self):
        layer = self.dataset.GetLayer("lines")
        names = [layer.GetLayerDefn().GetFieldDefn(i).GetName() for i in range(layer.GetLayerDefn().GetFieldCount())]
        self.assertTrue(layer.TestCapability(ogr.OLCIgnoreFields))
        layer.SetIgnoredFields(names + ["OGR_GEOMETRY", "OGR_STYLE"])
        for feature in layer:
            self.assertFalse(any(feature.IsFieldSet(name) for name in names))
            self.assertIsNone(feature.geometry())
        layer.SetSpatialFilterRect(-740500, -1040500, -740000, -1040000)
        count = layer.GetFeatureCount()
        layer.SetIgnoredFields([])
        self.assertEqual(layer.GetFeatureCount(), count)

    def test_filters_agree_with_brute_force(self):
        chance = random.Random(3)
        for layer in (self.dataset.GetLayer(i) for i in range(3)):
            layer.SetSpatialFilter(None)
            layer.SetAttributeFilter(None)
            everything = list(layer)
            for _ in range(20):
                x, y = chance.uniform(-741000, -740000), chance.uniform(-1041000, -1040000)
                shape = ogr.CreateGeometryFromWkt(
                    f"POLYGON(({x} {y},{x + 300} {y},{x + chance.uniform(0, 500)} {y + 400},{x} {y}))")
                number = chance.choice([1, 4, 7])
                wanted = [f.GetFID() for f in everything if f["layer"] == number and f.geometry().Intersects(shape)]
                layer.SetSpatialFilter(shape)
                layer.SetAttributeFilter(f"layer = {number}")
                self.assertEqual(wanted, [f.GetFID() for f in layer])
                self.assertEqual(len(wanted), layer.GetFeatureCount())
                if wanted:
                    layer.SetNextByIndex(len(wanted) - 1)
                    self.assertEqual(wanted[-1], layer.GetNextFeature().GetFID())

    def test_arrow_stream_gives_the_same(self):
        import numpy
        for layer, field in (("lines", "layer"), ("points", "scale"), ("texts", "height")):
            stream = self.dataset.GetLayer(layer).GetArrowStreamAsNumPy()
            got = numpy.concatenate([batch[field] for batch in stream])
            self.assertEqual([f[field] for f in self.dataset.GetLayer(layer)], list(got))

    def test_two_datasets_do_not_disturb_each_other(self):
        other_map = MadeMap(9)
        other = open_bytes(other_map.bytes(), "other.vkm")
        pairs = zip(self.dataset.GetLayer("texts"), other.GetLayer("texts"))
        for index, (one, two) in enumerate(pairs):
            self.assertEqual((MAP.texts[index]["place"], other_map.texts[index]["place"]),
                             (place_of(one), place_of(two)))


class Options(unittest.TestCase):
    def test_orientation_turns_points(self):
        for option, wanted, code in (("-y,-x", (-10, -20), "5514"), ("128", (-10, -20), "5514"), ("x,y", (20, 10), None),
                                     ("y,x", (10, 20), None), ("64", (10, -20), None)):
            layer = open_bytes(HEAD + b'&T 10 20 "a"\n&K\n', ORIENTATION=option).GetLayer("texts")
            self.assertEqual(wanted, place_of(layer.GetNextFeature()))
            reference = layer.GetSpatialRef()
            self.assertEqual(code, reference and reference.GetAuthorityCode(None))

    def test_encoding_of_texts(self):
        for encoding, codec in (("windows-1250", "cp1250"), ("CP852", "cp852"), ("iso-8859-2", "iso8859-2"),
                                ("utf-8", "utf-8")):
            content = HEAD + '&T 1 2 "Žďár"\n&K\n'.encode(codec)
            self.assertEqual("Žďár", open_bytes(content, ENCODING=encoding).GetLayer("texts").GetNextFeature()["text"])

    def test_codes_are_texts_too(self):
        content = HEAD + "&L P 1 2 K=12ž\n L 3 4 S=101\n&K\n".encode("cp1250")
        dataset = open_bytes(content)
        line, point = dataset.GetLayer("lines").GetNextFeature(), dataset.GetLayer("points").GetNextFeature()
        self.assertEqual((["12ž", ""], 12, 12), (line["codes"], line["code"], point["pen_code"]))
        with Messages() as messages:
            bad = open_bytes(HEAD + b"&L P 1 2 K=12\xff\n L 3 4\n&K\n", ENCODING="utf-8").GetLayer("lines").GetNextFeature()
            self.assertEqual(["12\ufffd", ""], bad["codes"])
        self.assertRegex("".join(messages.texts(gdal.CE_Warning)), "1 byte.*ENCODING")

    def test_reference_system(self):
        for option, code in (("EPSG:5513", "5513"), ("NO", None)):
            reference = open_bytes(HEAD + b"&K\n", SRS=option).GetLayer("lines").GetSpatialRef()
            self.assertEqual(code, reference and reference.GetAuthorityCode(None))

    def test_source_field(self):
        feature = open_bytes(HEAD + b'&T 1 2 "a"\n&K\n', "here.vkm", SOURCE_FIELD="YES").GetLayer("texts").GetNextFeature()
        self.assertEqual("here.vkm", os.path.basename(feature["source"]))

    def test_bad_values_are_refused(self):
        for name, value in (("ENCODING", "klingon"), ("ORIENTATION", "up"), ("SRS", "nowhere")):
            with self.assertRaisesRegex(RuntimeError, value):
                open_bytes(HEAD + b"&K\n", **{name: value})

    def test_ogrinfo_shows_them(self):
        shown = subprocess.run(["ogrinfo", "--format", "VKM"], capture_output=True, text=True, check=True).stdout
        for name in ("ENCODING", "ORIENTATION", "SYMBOLOGY", "SRS", "SPLIT_BY_CODE", "PARCELS"):
            self.assertIn(f"'{name}'", shown.replace('"', "'"))


class Styles(unittest.TestCase):
    def styles(self, rows, layer, **options):
        return [feature.GetStyleString() for feature in open_bytes(HEAD + rows + b"&K\n", **options).GetLayer(layer)]

    def test_features_carry_the_symbology(self):
        stroke = b"\n L 3 4\n"
        cases = (
            ("lines", b"&L P 1 2 K=21900" + stroke, "PEN(c:#000000,w:0.18mm)"),
            ("lines", b"&L P 1 2" + stroke, "PEN(c:#000000,w:0.13mm)"),  # without a code
            ("lines", b"&L P 1 2 K=99999" + stroke, "PEN(c:#000000,w:0.13mm)"),  # without a line type
            ("points", b"&L P 5 5 S=101 M=2 U=50\n", 'SYMBOL(id:"vkm-101,ogr-sym-2",c:#000000,s:1.28mm,a:45)'),
            ("points", b"&L P 5 5 S=9999\n", None),
            ("points", b"&L P 5 5 S=101 M=-2\n", None),
            ("points", b"&L P 0 0\n x K=21800 S=101\n L 9 9\n", 'SYMBOL(id:"vkm-101,ogr-sym-2",c:#8c1e14,s:0.64mm,a:0)'),
            ("texts", b'&T 1 2 "12/3" H=2 U=100 D=5 F=3\n', 'LABEL(f:"DejaVu Sans",t:"12/3",s:2g,a:90,p:5,c:#000000,bo:1)'),
            ("texts", b"&T 1 2 'a \"b\" \\' H=3 F=7\n",
             'LABEL(f:"DejaVu Serif",t:"a \\"b\\" \\\\",s:3g,a:0,p:2,c:#000000,bo:1,it:1)'),
        )
        for layer, rows, style in cases:
            self.assertEqual([style], self.styles(rows, layer), rows)

    def test_dashes_and_colours_come_from_the_line_types(self):
        path = os.path.join(os.path.dirname(__file__), "../../data/sample-town.vkm")
        found = {feature.GetStyleString() for feature in open_path(path).GetLayer("lines")}
        self.assertLessEqual({"PEN(c:#005fbe,w:0.25mm)", 'PEN(c:#464646,w:0.18mm,p:"3.6mm 0.7mm 0.8mm 0.7mm")'}, found)

    def test_symbology_can_be_chosen(self):
        rows = b"&L P 1 2 K=21900\n L 3 4\n"
        self.assertEqual([None], self.styles(rows, "lines", SYMBOLOGY="NO"))
        with tempfile.TemporaryDirectory() as empty, Messages() as messages:
            self.assertEqual(["PEN(c:#000000,w:0.13mm)"], self.styles(rows, "lines", SYMBOLOGY=empty))
        self.assertIn("WKOKES", "".join(messages.texts(gdal.CE_Warning)))


    def test_rotations_turn_with_the_axes(self):
        rows = b'&L P 5 5 S=101 U=50\n&T 1 2 "a" U=50 D=1\n'
        for orientation, symbol, text in (("128", "a:45)", "a:45,p:1"), ("64", "a:135)", "a:135,p:7"), ("16", "a:225)", "a:225,p:1")):
            for layer, wanted in (("points", symbol), ("texts", text)):
                self.assertIn(wanted, self.styles(rows, layer, ORIENTATION=orientation)[0], orientation)


class Files(unittest.TestCase):
    def counts(self, dataset):
        return [dataset.GetLayer(i).GetFeatureCount() for i in range(3)]

    def test_virtual_files(self):
        wanted = [len(MAP.lines), len(MAP.points), len(MAP.texts)]
        path = os.path.join(WORK, "map.vkm")
        with open(path, "wb") as file:
            file.write(MAP.bytes())
        with zipfile.ZipFile(path + ".zip", "w", zipfile.ZIP_DEFLATED) as archive:
            archive.write(path, "deep/map.vkm")
        for name in (path, f"/vsizip/{path}.zip/deep/map.vkm"):
            self.assertEqual(wanted, self.counts(open_path(name)))
        with open(path, "rb") as piped:
            shown = subprocess.run(["ogrinfo", "-al", "-so", "/vsistdin/"], stdin=piped, capture_output=True, text=True,
                                   check=True)
        found = [int(row.split(": ")[1]) for row in shown.stdout.splitlines() if row.startswith("Feature Count")]
        self.assertEqual((wanted, ""), (found, shown.stderr))

    def test_coordinates_survive_a_geopackage(self):
        path = memory_file("trip.vkm", MAP.bytes())
        gdal.VectorTranslate("/vsimem/trip.gpkg", path, format="GPKG").FlushCache()
        back = open_path("/vsimem/trip.gpkg")
        for layer in ("lines", "points", "texts"):
            for one, two in zip(open_path(path).GetLayer(layer), back.GetLayer(layer), strict=True):
                self.assertEqual((one.GetFID(), one.geometry().ExportToWkb(), one["layer"]),
                                 (two.GetFID(), two.geometry().ExportToWkb(), two["layer"]))
                self.assertEqual("5514", two.geometry().GetSpatialReference().GetAuthorityCode(None))

    @unittest.skipIf("ASAN_OPTIONS" in os.environ, "the sanitizer keeps what was freed")
    def test_memory_does_not_grow_with_the_file(self):
        path = os.path.join(os.path.abspath(WORK), "long.vkm")
        made = MadeMap(10, 1000)
        script = ("import sys; from osgeo import ogr; data = ogr.Open(sys.argv[1]); counts = []\n"
                  "for layer in data:\n layer.SetAttributeFilter('layer < 0'); counts.append(layer.GetFeatureCount())\n"
                  "print(*[row.split()[1] for row in open('/proc/self/status') if row.startswith('VmHWM')], counts)")
        peaks = []
        for times in (10, 150):
            with open(path, "wb") as file:
                file.write(("\r\n".join(made.rows[:3] + made.rows[3:-1] * times) + "\r\n&K\r\n").encode("cp1250"))
            shown = subprocess.run([sys.executable, "-c", script, path], capture_output=True, text=True, check=True).stdout
            peak, _, counts = shown.partition(" ")
            self.assertEqual("[0, 0, 0]", counts.strip())
            peaks.append(int(peak))
        self.assertLess(peaks[1], peaks[0] + 2048, "kB for a file of fifteen times the size")
        os.remove(path)

    def test_command_line_programs(self):
        path = os.path.join(WORK, "tools.vkm")
        with open(path, "wb") as file:
            file.write(MAP.bytes())
        shown = subprocess.run(["ogrinfo", "-al", path], capture_output=True, check=True)
        self.assertIn("Dolní Žďár", shown.stdout.decode())
        for result, more in (("a.gpkg", []), ("a.dxf", ["lines", "-select", "layer"]), ("a", ["-f", "ESRI Shapefile"]),
                             ("a.fgb", ["texts"]), ("a.geojson", ["points"])):
            with tempfile.TemporaryDirectory() as folder:
                done = subprocess.run(["ogr2ogr", os.path.join(folder, result), path, *more], capture_output=True, text=True)
                self.assertEqual(0, done.returncode, done.stderr)

    def test_plugin_named_by_a_relative_path_finds_the_symbology(self):
        plugins = os.environ["GDAL_DRIVER_PATH"]
        path = os.path.join(os.path.abspath(WORK), "style.vkm")
        with open(path, "wb") as file:
            file.write(HEAD + b"&L P 1 2\n L 3 4\n&K\n")
        shown = subprocess.run(["ogrinfo", "-al", path], capture_output=True, text=True, check=True, cwd=os.path.dirname(plugins),
                               env=os.environ | {"GDAL_DRIVER_PATH": os.path.basename(plugins)}).stdout
        self.assertIn("Style = PEN(", shown)

    def test_other_drivers_keep_their_files(self):
        refused = (b"", b"&", b"&V\n", b"& 1 2\n&V X 1 2\n", b"&v X 1 2\n", b"&L 1 2\n", b"&namelist\n x=1\n/\n",
                   b"&V X 1 2\n\x00\x01\n", b"\x00&V X 1 2\n", b"text\n&V X 1 2\n",
                   b"&T a b\n", b"&* only a comment\n", b'{"a": "&V X 1 2"}', b"&X 1 2\n&V X 1 2\n", b"<a>&V</a>")
        taken = (b"&V X 1 2\n", b"\xef\xbb\xbf&V X 1 2\n", b"\r\n\n&R 0 0 0 0 1000\r\n", b"&* a\n&L P 1 2\n", b"\f\r\n&V X 1 2\n", b" \t&T 1 2 'x'\n", b"&U 1\n&T 1 -2\n")
        driver = gdal.GetDriverByName("VKM")
        for content in refused:
            self.assertIsNone(gdal.IdentifyDriverEx(memory_file("plain", content), gdal.OF_VECTOR, ["VKM"]), content)
        for content in taken:
            found = gdal.IdentifyDriverEx(memory_file("plain", content), gdal.OF_VECTOR, ["VKM"])
            self.assertEqual(driver.ShortName, found and found.ShortName, content)
        for content in (b"&* c\n", b"a title\n\f\n&V X 1 2\n"):
            self.assertIsNotNone(gdal.IdentifyDriverEx(memory_file("long.vkm", content), gdal.OF_VECTOR, ["VKM"]))
        with self.assertRaisesRegex(RuntimeError, r"looks like gzip"):
            gdal.OpenEx(memory_file("packed.vkm", b"\x1f\x8b\x08"), gdal.OF_VECTOR | gdal.OF_VERBOSE_ERROR, ["VKM"])

    def test_header_is_told(self):
        dataset = open_bytes(b"&* One\r\n&V X 0 0\n &D 1.2.2026 S=1\n&*\tD\xedl 2\n&R 0 0 0 0 2000 R\n&U 1\n&* no header\n&K\n")
        self.assertEqual({"MAP_SCALE": "2000", "RELATIVE_COORDINATES": "YES", "DATE": "1.2.2026", "TITLE": "One\nDíl 2"}, dataset.GetMetadata())

    def test_prefix_forces_the_driver_and_archives_may_have_marks(self):
        path = os.path.join(WORK, "page.txt")
        with open(path, "wb") as file:
            file.write(b"a title\n" + MAP.bytes())
        with zipfile.ZipFile(path + ".zip", "w") as archive:
            archive.writestr("page.txt", b"\xef\xbb\xbf" + MAP.bytes())
        with Messages() as messages:
            for name, scale in (("VKM:" + path, "1000"), (f"VKM:{path}.zip", "2000"), (f"VKM:/vsizip/{path}.zip/page.txt", "2000")):
                dataset = open_path(name)
                self.assertEqual((scale, len(MAP.texts)), (dataset.GetMetadata()["MAP_SCALE"], dataset.GetLayer("texts").GetFeatureCount()), name)
        self.assertEqual(2, len([text for text in messages.texts(gdal.CE_Warning) if "byte order mark" in text]), messages.list)

    def test_update_is_refused(self):
        with self.assertRaises(RuntimeError):
            gdal.OpenEx(memory_file("u.vkm", MAP.bytes()), gdal.OF_VECTOR | gdal.OF_UPDATE)


class Trouble(unittest.TestCase):
    def read_all(self, content):
        with Messages() as messages:
            try:
                dataset = open_bytes(content)
            except RuntimeError:
                return None, messages
            return [features(dataset, layer) for layer in range(3)], messages

    def test_lost_last_element_is_one_warning(self):
        for ending in (b"", b"&L P 5 6\n L 7 8\n"):
            read, messages = self.read_all(HEAD + b"&L P 1 2\n L 3 4\n" + ending)
            self.assertEqual(bool(ending), bool(read[0]))
            (warning,) = messages.texts(gdal.CE_Warning)
            self.assertRegex(warning, r"/vsimem/test.vkm, line \d+: .*closing record")
            self.assertFalse(messages.texts(gdal.CE_Failure))

    def test_nothing_is_printed(self):
        path = os.path.join(WORK, "cut.vkm")
        with open(path, "wb") as file:
            file.write(HEAD + b"&L P 1 2\n")
        run = subprocess.run(["ogrinfo", "-al", "-q", path, "--config", "CPL_LOG", "/dev/null"], capture_output=True)
        self.assertEqual((0, b""), (run.returncode, run.stderr))

    def test_every_start_of_a_file_reads(self):
        content = MadeMap(5, 12).bytes()
        whole, _ = self.read_all(content)
        for length in range(len(HEAD), len(content)):
            read, messages = self.read_all(content[:length])
            for part, full in zip(read or [], whole):
                # A line cut in its middle may end an element otherwise; what stands before is the same.
                self.assertEqual(full[:max(0, len(part) - 1)], part[:-1])
            self.assertFalse(messages.texts(gdal.CE_Failure))

    def test_odd_bytes_do_no_harm(self):
        chance = random.Random(6)
        content = MadeMap(7, 30).bytes()
        for _ in range(300):
            spoiled = bytearray(content)
            for _ in range(8):
                spoiled[chance.randrange(40, len(spoiled))] = chance.choice(b"\x00\xff&\n\r ='\x1a" + bytes([chance.randrange(256)]))
            self.read_all(bytes(spoiled))
        for content in (b"&L P 1e999 -1e999\n L nan x\n&K\n", b"&L\n&L P\n L\n P\n&K\n", b"&U 99999999999\n&T\n&K\n",
                        b"&T 1 2 \"" + b"x" * 5000 + b"\n&K\n", b"&L P 1 2\n" + b" P 3 4\n" * 5000 + b"&K\n"):
            read, messages = self.read_all(HEAD + content)
            self.assertEqual(b"1e999" in content, any("no place" in text for text in messages.texts(gdal.CE_Warning)))
            self.assertFalse(messages.texts(gdal.CE_Failure))

    def test_a_read_error_names_file_and_line(self):
        path = os.path.join(WORK, "bad.zip")
        stream = io.BytesIO()
        with zipfile.ZipFile(stream, "w", zipfile.ZIP_DEFLATED) as archive:
            archive.writestr("map.vkm", MadeMap(8, 200000).bytes())
        damaged = bytearray(stream.getvalue())
        damaged[len(damaged) // 2:len(damaged) // 2 + 64] = b"\xff" * 64
        with open(path, "wb") as file:
            file.write(damaged)
        dataset = open_path(f"/vsizip/{path}/map.vkm")
        with Messages() as messages:
            count = 0
            try:
                for _ in dataset.GetLayer("lines"):
                    count += 1
            except RuntimeError:
                pass
        self.assertGreater(count, 1000)
        self.assertRegex("\n".join(messages.texts(gdal.CE_Failure)), r"map\.vkm, line \d+: ")


if __name__ == "__main__":
    assert gdal.GetDriverByName("VKM"), "the plugin is not in GDAL_DRIVER_PATH"
    unittest.main(argv=sys.argv)
