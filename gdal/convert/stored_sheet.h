// A sheet that lies in an output, whether its file is still there or not.

#pragma once

#include <functional>
#include <span>
#include <string>

#include "map/parcels.h"
#include "output_layers.h"

namespace vemrado::gdal {

// Whether boundaries and numbers of sheets can be had from the output as the files had them.
bool KeepsSheets(const OutputLayers& output);

// Hands over the boundaries and parcel numbers of the sheet of that name. False: reported to GDAL.
bool ReadStoredSheet(OutputLayers& output, const std::string& name, const map::ParcelLayers& layers,
                     const std::function<void(std::span<const map::Point>)>& addBoundary,
                     const std::function<void(map::Point, const char*)>& addNumber);

}  // namespace vemrado::gdal
