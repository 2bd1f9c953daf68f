// The parcels of the files of a source, with what is wrong with them told to GDAL.

#pragma once

#include <ogr_geometry.h>

#include <memory>
#include <vector>

#include "element_reader.h"
#include "map/parcels.h"

namespace vemrado::gdal {

struct FileParcel {
    map::Parcel parcel;
    size_t source = 0;  // the file that it comes from

    std::unique_ptr<OGRPolygon> Shape() const;
};

// The parcels of every file, each file by itself. Boundaries that enclose nothing, parcels without a number
// or with several, and numbers outside any parcel are warnings, each kind with its count and first places.
std::vector<FileParcel> BuildParcels(Source& source, const map::ParcelLayers& layers);

}  // namespace vemrado::gdal
