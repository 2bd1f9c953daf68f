"""Runs of `vkm convert` in a folder of their own, and what they make. VKM names the program, VKM_DATA the folder of the sample maps."""

import csv
import json
import os
import subprocess
import tempfile
import unittest

from osgeo import gdal

from made_map import MadeMap

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


class ConvertCase(unittest.TestCase):
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

    def stream(self, *arguments, **more):
        """What goes to standard output."""
        return subprocess.run([VKM, "convert", *arguments, "-o", "-"], cwd=self.folder, check=True, text=True, stdout=subprocess.PIPE, **more).stdout

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
