// Parcels as polygons, built from the boundary lines of a file.

#pragma once

#include <ogr_geometry.h>

#include <memory>
#include <string>
#include <vector>

#include "element_reader.h"

namespace vemrado::gdal {

struct ParcelLayers {
    int boundaries = 1;  // layer of the file whose lines bound parcels
    int numbers = 2;     // layer of the file whose texts are their numbers
};

struct Parcel {
    std::unique_ptr<OGRPolygon> shape;
    std::string number;  // of the first text inside, UTF-8
    int texts = 0;       // number texts inside
    size_t source = 0;   // the file that it comes from
};

// The parcels of every file, each file by itself. The boundaries are cut where they cross and pieces that
// stand there twice are taken once; what they enclose is a parcel. Pieces that enclose nothing, parcels
// without a number or with several, and numbers outside any parcel are reported to GDAL as warnings. Memory
// grows with the number of boundary lines of a file: about 1.3 kB a segment.
std::vector<Parcel> BuildParcels(Source& source, const ParcelLayers& layers);

}  // namespace vemrado::gdal
