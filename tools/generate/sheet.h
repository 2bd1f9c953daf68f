// One sheet of the map: its streets, parcels, buildings, land-use marks, names and numbers.

#pragma once

#include "country.h"
#include "drawing.h"
#include "names.h"

namespace generate {

// scale is the map scale number; it sets the room that texts and symbols take.
Drawing DrawSheet(const Country& country, const Names& names, Cell cell, int scale, Grid grid);

// Name of the northern or southern cadastral district of a sheet's municipality, in Windows-1250.
std::string DistrictName(const Country& country, const Names& names, Cell cell, bool southern);

}  // namespace generate
