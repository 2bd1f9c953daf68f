// What people ask of the map, answered as JSON for the page. Coordinates are those of the picture: metres, x
// to the east, y to the north.

#pragma once

#include <string>

#include "map/parcels.h"
#include "viewer.h"

namespace vemrado::web {

// Sheets with their state, and layers with their names, counts and colours.
std::string Summary(const Viewer& viewer);

// Line types and symbols inside a box, with what is needed to draw a sample of each.
std::string LegendOf(const Viewer& viewer, const draw::Box& box);

// Texts that hold the wanted one, whatever accents and case: whole texts first, then beginnings, at most so
// many.
std::string FindTexts(const Viewer& viewer, const std::string& wanted, size_t most);

// What lies within a distance of a place, nearest first, of the layers that are shown.
std::string Pick(const Viewer& viewer, draw::Point place, double distance);

// What the file says of a stroke (kind 0), symbol (1) or text (2); reads the file again up to it.
std::string Inspect(const Sheet& sheet, int layer, int kind, uint32_t number);

// What lies in a box as an SVG drawing; negative: of all sheets. Reads their files again.
std::string DrawSvg(const Viewer& viewer, int sheetNumber, const draw::Box& box, bool legend,
                    const std::string& title);

// What is wrong with the file of a sheet: how many findings of each severity, and the first ones with their
// places.
std::string Check(const Sheet& sheet, size_t most);

// What changed since another state of the map, of which the page has the file: how many changes of each kind,
// and the first ones with where they were and are.
std::string Compare(const Viewer& viewer, int oldFile, client::Encoding encoding, size_t most);

// The parcels of all sheets, without their rings.
map::Parcels FindParcels(const Viewer& viewer);
std::string ParcelList(const map::Parcels& parcels);
std::string ParcelRings(const map::Parcel& parcel);

}  // namespace vemrado::web
