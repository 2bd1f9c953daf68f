"""Draws a VKM file, and a GeoPackage and a database made from it, with QGIS, without a display, and checks what comes out.

qgis_render.py VKM MAP.vkm FOLDER XMIN,YMIN,XMAX,YMAX

VKM is the program, GDAL_DRIVER_PATH names the plugin's folder. Every picture of QGIS is compared with the same part of the
map as `vkm render` draws it; all of them come to stand in FOLDER.
"""

import collections
import os
import re
import subprocess
import sys

os.environ.setdefault("QT_QPA_PLATFORM", "offscreen")

from qgis.core import QgsApplication, QgsDataSourceUri, QgsMapRendererSequentialJob, QgsMapSettings, QgsRectangle, QgsVectorLayer
from qgis.PyQt.QtCore import QSize
from qgis.PyQt.QtGui import QColor, QImage

from postgis_server import Server

PROGRAM, MAP, FOLDER = sys.argv[1:4]
BOX = [float(number) for number in sys.argv[4].split(",")]
EMBEDDED = dict.fromkeys(("lines", "points", "texts"), "embeddedSymbol")
STYLED = {"lines": "categorizedSymbol", "points": "categorizedSymbol", "texts": "nullSymbol"}
faults = []


def check(good, text):
    print("ok   " if good else "FAULT", text)
    if not good:
        faults.append(text)


def path(name):
    return os.path.join(FOLDER, name)


def vkm(command, *arguments):
    subprocess.run([PROGRAM, command, "--quiet", *arguments], check=True)


def reference_of(map_file, name, box):
    vkm("render", map_file, "-o", path(name), "--bbox=" + ",".join(map(str, box)), "--width", "1200")
    image = QImage(path(name)).convertToFormat(QImage.Format_RGB32)
    check(image.width() > 0, f"{name} can be read")
    return image


def checked(layers, kinds, shown):
    for layer in layers:
        name = layer.name()
        check(layer.isValid() and layer.featureCount() > 0, f"{shown}: layer {name} is valid and has features")
        check(layer.crs().authid() == "EPSG:5514", f"{shown}: layer {name} is in EPSG:5514")
        check(layer.renderer().type() == kinds[name], f"{shown}: layer {name} is drawn by {layer.renderer().type()}")
    check(kinds is EMBEDDED or layers[2].labelsEnabled(), f"{shown}: texts are labels")
    return layers


def open_file(name, kinds):
    return checked([QgsVectorLayer(f"{name}|layername={layer}", layer, "ogr") for layer in kinds], kinds, name)


def open_tables(server, schema, kinds):
    layers = []
    for name in kinds:
        uri = QgsDataSourceUri()
        uri.setConnection(server.folder, "5432", "postgres", "test", "")
        uri.setDataSource(schema, name, "geom", "", "id")
        layers.append(QgsVectorLayer(uri.uri(False), name, "postgres"))
    return checked(layers, kinds, schema)


def draw(layers, name, reference, box):
    settings = QgsMapSettings()
    settings.setLayers(layers[::-1])  # the first is on top
    settings.setExtent(QgsRectangle(*box))
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
    check(image.save(path(name)), f"{name}: written")
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


def write_at_2000(name, shift):
    """The map again, at 1:2000 and so far to the west."""
    with open(MAP, "rb") as file:
        content = file.read()
    content = re.sub(rb"(?m)^(&R .*) 1000 ", rb"\1 2000 ", content)
    content = re.sub(rb"\b(74\d{4})\.(\d\d) (10\d{5}\.)", lambda found: b"%d.%s %s" % (int(found[1]) + shift, found[2], found[3]), content)
    with open(path(name), "wb") as file:
        file.write(content)


def write_edited(name):
    """The map without every fourth number, with other outbuildings and two trees more."""
    with open(MAP, "rb") as file:
        lines = file.read().replace(b"K=21810", b"K=21820").split(b"\n")
    numbers = [i for i, line in enumerate(lines) if line.startswith(b"&T") and b"/" in line]
    for i in numbers[::-4]:
        del lines[i]
    trees = b"&U 5\n&L P 744340.00 1040640.00 S=212\n&L P 744360.00 1040640.00 S=212\n&K"
    with open(path(name), "wb") as file:
        file.write(b"\n".join(lines).replace(b"&K", trees))


def draw_over_map(name, layers, ground, reference, wanted):
    """Layers that are to be seen in their colours over the map."""
    for layer in layers:
        check(layer.featureCount() > 0, f"{name}: layer {layer.name()} has {layer.featureCount()} features")
        check(layer.renderer().type() == "categorizedSymbol", f"{name}: layer {layer.name()} is styled")
    counts, _ = colours(draw(layers + ground, name, reference, BOX))
    for colour in wanted:
        check(counts[colour] >= 20, f"{name}: {counts[colour]} pixels have the colour {colour:06x}")


def draw_findings_and_changes(ground, reference):
    write_edited("edited.vkm")
    # They exit with 1 when there is something to tell.
    for command in (["check", path("edited.vkm"), "-o", path("faults.gpkg")], ["diff", MAP, path("edited.vkm"), "-o", path("diff.gpkg")]):
        told = subprocess.run([PROGRAM, *command, "--quiet"], stdout=subprocess.DEVNULL)
        check(told.returncode == 1, f"{command[0]} tells something")

    def layers(file, *names):
        return [QgsVectorLayer(f"{path(file)}|layername={name}", name, "ogr") for name in names]

    draw_over_map("qgis-findings.png", layers("faults.gpkg", "findings"), ground, reference, [0xF09614])
    draw_over_map("qgis-diff.png", layers("diff.gpkg", "texts", "symbols", "lines"), ground, reference, [0x1E963C, 0xC81E1E, 0x2850C8])


def main():
    application = QgsApplication([], False)
    application.initQgis()
    reference = reference_of(MAP, "vkm-render.png", BOX)
    # QGIS draws neither dashes nor labels of feature styles.
    compare("qgis-vkm.png", draw(open_file(MAP, EMBEDDED)[:2], "qgis-vkm.png", reference, BOX), reference, (0.6, 1.2), 0.1)
    vkm("convert", MAP, "-o", path("town.gpkg"))
    ground = open_file(path("town.gpkg"), STYLED)
    compare("qgis-gpkg.png", draw(ground, "qgis-gpkg.png", reference, BOX), reference, (0.9, 1.1), 0.03)
    draw_findings_and_changes(ground, reference)
    del ground

    # Sheets of two scales in one output, each drawn as by itself.
    shift = 5000
    there = [BOX[0] - shift, BOX[1], BOX[2] - shift, BOX[3]]
    write_at_2000("town-2000.vkm", shift)
    larger = reference_of(path("town-2000.vkm"), "vkm-render-2000.png", there)
    vkm("convert", MAP, path("town-2000.vkm"), "-o", path("scales.gpkg"))
    both = open_file(path("scales.gpkg"), STYLED)
    compare("qgis-scales-1000.png", draw(both, "qgis-scales-1000.png", reference, BOX), reference, (0.9, 1.1), 0.03)
    compare("qgis-scales-2000.png", draw(both, "qgis-scales-2000.png", larger, there), larger, (0.9, 1.1), 0.03)

    server = Server()
    try:
        vkm("convert", MAP, "-o", "PG:" + server.connection, "--schema", "gis")
        tables = open_tables(server, "gis", STYLED)
        compare("qgis-postgis.png", draw(tables, "qgis-postgis.png", reference, BOX), reference, (0.9, 1.1), 0.03)
        del tables
    finally:
        server.stop()
    print(f"{len(faults)} faults")
    sys.exit(1 if faults else 0)


main()
