"""Draws a VKM file and a GeoPackage made from it with QGIS, without a display, and checks what comes out.

qgis_render.py MAP.vkm MAP.gpkg REFERENCE.png FOLDER XMIN,YMIN,XMAX,YMAX

GDAL_DRIVER_PATH names the plugin's folder. REFERENCE is the same part of the map as `vkm render` draws it; the pictures
of QGIS have its size and come to stand in FOLDER.
"""

import collections
import os
import sys

os.environ.setdefault("QT_QPA_PLATFORM", "offscreen")

from qgis.core import QgsApplication, QgsMapRendererSequentialJob, QgsMapSettings, QgsRectangle, QgsVectorLayer
from qgis.PyQt.QtCore import QSize
from qgis.PyQt.QtGui import QColor, QImage

VKM, GPKG, REFERENCE, FOLDER, BOX = sys.argv[1:]
LAYERS = ("lines", "points", "texts")
faults = []


def check(good, text):
    print("ok   " if good else "FAULT", text)
    if not good:
        faults.append(text)


def open_layers(path, kinds):
    layers = []
    for name in LAYERS:
        layer = QgsVectorLayer(f"{path}|layername={name}", name, "ogr")
        check(layer.isValid() and layer.featureCount() > 0, f"{path}: layer {name} is valid and has features")
        check(layer.crs().authid() == "EPSG:5514", f"{path}: layer {name} is in EPSG:5514")
        check(layer.renderer().type() == kinds[name], f"{path}: layer {name} is drawn by {layer.renderer().type()}")
        layers.append(layer)
    return layers


def draw(layers, name, reference):
    settings = QgsMapSettings()
    settings.setLayers(layers[::-1])  # the first is on top
    settings.setExtent(QgsRectangle(*map(float, BOX.split(","))))
    settings.setOutputSize(QSize(reference.width(), reference.height()))
    # So many pixels to the inch that the map has its scale of 1:1000, for widths in millimetres.
    settings.setOutputDpi(reference.width() * 25.4 / settings.extent().width())
    settings.setBackgroundColor(QColor("white"))
    settings.setDestinationCrs(layers[0].crs())
    job = QgsMapRendererSequentialJob(settings)
    job.start()
    job.waitForFinished()
    check(not job.errors(), f"{name}: drawn without errors")
    image = job.renderedImage().convertToFormat(QImage.Format_RGB32)
    check(image.save(os.path.join(FOLDER, name)), f"{name}: written")
    return image


def colours(image):
    """The colours of the pixels that are no mixture of a line and the ground, and the share of drawn pixels."""
    counts = collections.Counter(image.pixel(x, y) & 0xFFFFFF for x in range(image.width()) for y in range(image.height()))
    drawn = sum(counts.values()) - counts[0xFFFFFF]
    return counts, drawn / sum(counts.values())


def grid(image, cells=24):
    """Where something is drawn."""
    found = set()
    for x in range(image.width()):
        for y in range(image.height()):
            if image.pixel(x, y) & 0xFFFFFF != 0xFFFFFF:
                found.add((x * cells // image.width(), y * cells // image.height()))
    return found


def compare(name, image, reference, shares, other_cells):
    """Both draw about as much, with the same main colours, at the same places."""
    counts, drawn = colours(image)
    wanted, wanted_drawn = colours(reference)
    check(shares[0] < drawn / wanted_drawn < shares[1], f"{name}: {drawn:.3f} of it is drawn, {wanted_drawn:.3f} of the reference")
    main = [colour for colour, count in wanted.most_common(12) if colour != 0xFFFFFF and count > 50 and saturated(colour)]
    missing = [f"{colour:06x}" for colour in main if counts[colour] < 5]
    check(not missing, f"{name}: has the colours of the reference, {len(main)} of them; missing: {missing}")
    here, there = grid(image), grid(reference)
    check(len(here ^ there) < other_cells * len(there), f"{name}: draws where the reference does, but for {len(here ^ there)} of {len(there)} cells")


def saturated(colour):
    parts = [colour >> 16, colour >> 8 & 0xFF, colour & 0xFF]
    return max(parts) - min(parts) > 60 or max(parts) < 20


def main():
    application = QgsApplication([], False)
    application.initQgis()
    reference = QImage(REFERENCE).convertToFormat(QImage.Format_RGB32)
    check(reference.width() > 0, f"{REFERENCE} can be read")
    embedded = dict.fromkeys(LAYERS, "embeddedSymbol")
    styled = {"lines": "categorizedSymbol", "points": "categorizedSymbol", "texts": "nullSymbol"}
    from_map = open_layers(VKM, embedded)
    from_package = open_layers(GPKG, styled)
    check(from_package[2].labelsEnabled(), f"{GPKG}: texts are labels")
    # QGIS draws neither dashes nor labels of feature styles.
    compare("qgis-vkm.png", draw(from_map[:2], "qgis-vkm.png", reference), reference, (0.6, 1.2), 0.1)
    compare("qgis-gpkg.png", draw(from_package, "qgis-gpkg.png", reference), reference, (0.9, 1.1), 0.03)
    print(f"{len(faults)} faults")
    sys.exit(1 if faults else 0)


main()
