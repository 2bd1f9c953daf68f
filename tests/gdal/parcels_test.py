"""Checks the layer of parcels: python3 parcels_test.py. GDAL_DRIVER_PATH names the plugin's folder."""

import unittest

from osgeo import gdal

gdal.UseExceptions()

SQUARE = [(0, 0), (10, 0), (10, 10), (0, 10), (0, 0)]


def parcels_of(strokes, numbers, layers=(1, 2), **options):
    """The parcels as (area, number, texts), and the warnings."""
    rows = [f"&U {layers[0]}"]
    for stroke in strokes:
        rows += [f"{' L' if i else '&L P'} {-x} {-y}" for i, (x, y) in enumerate(stroke)]
    rows += [f"&U {layers[1]}"] + [f'&T {-x} {-y} "{text}"' for text, x, y in numbers] + ["&K", ""]
    gdal.FileFromMemBuffer("/vsimem/parcels.vkm", "\n".join(["&R 0 0 0 0 1000"] + rows).encode())
    warnings = []
    gdal.PushErrorHandler(lambda severity, number, text: warnings.append(text))
    dataset = gdal.OpenEx("/vsimem/parcels.vkm", open_options=["PARCELS=YES"] + [f"{k}={v}" for k, v in options.items()])
    layer = dataset.GetLayer("parcels")
    found = [(feature["area"], feature["number"], feature["texts"]) for feature in layer]
    gdal.PopErrorHandler()
    for feature in layer:
        assert feature.geometry().IsValid() and feature.geometry().GetSpatialReference().GetAuthorityCode(None) == "5514"
    return sorted(found, key=lambda parcel: parcel[:1]), warnings


class Parcels(unittest.TestCase):
    def check(self, strokes, numbers, wanted, *words, **options):
        found, warnings = parcels_of(strokes, numbers, **options)
        self.assertEqual(wanted, found)
        self.assertEqual(len(words), len(warnings), warnings)
        for word, warning in zip(words, warnings):
            self.assertRegex(warning, "/vsimem/parcels.vkm: " + word)

    def test_clean_boundaries(self):
        middle = [(5, 0), (5, 10)]
        cases = {
            "one stroke": ([SQUARE], [("1/2", 5, 5)], [(100, "1/2", 1)]),
            "single segments": ([list(pair) for pair in zip(SQUARE, SQUARE[1:])], [("7", 1, 9)], [(100, "7", 1)]),
            "given twice, and reversed": ([SQUARE, SQUARE[::-1], SQUARE[1:3]], [("7", 1, 9)], [(100, "7", 1)]),
            "meeting inside segments": ([SQUARE, middle], [("1", 1, 1), ("2", 9, 1)], [(50, "1", 1), (50, "2", 1)]),
            "an island": ([SQUARE, [(4, 4), (4, 6), (6, 6), (6, 4), (4, 4)]], [("in", 5, 5), ("out", 1, 1)],
                          [(4, "in", 1), (96, "out", 1)]),
        }
        for name, (strokes, numbers, wanted) in cases.items():
            with self.subTest(name):
                found, warnings = parcels_of(strokes, numbers)
                self.assertEqual((sorted(wanted), []), (sorted(found), warnings))

    def test_crossing_lines_are_cut(self):
        cross = [[(-1, 5), (11, 5)], [(5, -1), (5, 11)]]
        numbers = [(str(n), x, y) for n, (x, y) in enumerate([(1, 1), (9, 1), (1, 9), (9, 9)])]
        found, warnings = parcels_of([SQUARE, *cross], numbers)
        self.assertEqual([25.0] * 4, [area for area, _, _ in found])
        self.assertRegex("".join(warnings), "4 free ends of boundaries that close no parcel, for example at ")

    def test_what_is_wrong_is_told(self):
        self.check([SQUARE[:-1]], [("1", 5, 5)], [], "2 free ends .* at 0.00 0.00; at 0.00 10.00",
                   "1 parcel numbers lie outside any parcel, for example 1 at 5.00 5.00")
        gap = SQUARE[:-1] + [(0, 0.001)]
        self.check([gap], [], [], "2 free ends of boundaries")
        self.check([SQUARE], [], [(100, None, 0)], "1 parcels have no number, for example at ")
        self.check([SQUARE], [("1", 2, 2), ("2", 3, 3)], [(100, "1", 2)], "1 parcels have more than one number")
        other = [(x + 20, y) for x, y in SQUARE]
        self.check([SQUARE, other, [(10, 5), (20, 5)]], [("1", 2, 2), ("2", 22, 2)], [(100, "1", 1), (100, "2", 1)],
                   "1 boundaries lie between others")
        self.check([], [("1", 2, 2)], [], "1 parcel numbers lie outside")

    def test_layers_of_the_file_can_be_chosen(self):
        found, warnings = parcels_of([SQUARE], [("1", 2, 2)], (4, 8), PARCEL_LAYER=4, NUMBER_LAYER=8)
        self.assertEqual(([(100, "1", 1)], []), (found, warnings))

    def test_capabilities_are_true(self):
        parcels_of([SQUARE, [(x + 20, y) for x, y in SQUARE]], [])
        dataset = gdal.OpenEx("/vsimem/parcels.vkm", open_options=["PARCELS=YES", "SOURCE_FIELD=YES"])
        layer = dataset.GetLayer("parcels")
        self.assertEqual(-1, layer.GetFeatureCount(force=0))
        gdal.PushErrorHandler("CPLQuietErrorHandler")
        self.assertEqual((2, (0, 30, 0, 10)), (layer.GetFeatureCount(), layer.GetExtent()))
        gdal.PopErrorHandler()
        for claim in ("FastFeatureCount", "FastGetExtent", "RandomRead", "FastSetNextByIndex"):
            self.assertTrue(layer.TestCapability(claim))
        layer.SetNextByIndex(1)
        feature = layer.GetNextFeature()
        self.assertTrue(feature.Equal(layer.GetFeature(feature.GetFID())))
        self.assertEqual("/vsimem/parcels.vkm", feature["source"])
        layer.SetSpatialFilterRect(15, 0, 25, 5)
        self.assertEqual(1, len(list(layer)))
        self.assertFalse(layer.TestCapability("FastFeatureCount"))


if __name__ == "__main__":
    unittest.main()
