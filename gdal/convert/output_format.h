// Which GDAL driver writes an output, and how the layers of a map go into it.

#pragma once

#include <gdal_priv.h>
#include <ogr_core.h>

#include <string>
#include <vector>

namespace vemrado::gdal {

enum class Layout {
    container,  // one file holds all layers
    separate,   // a file for each layer
    merged,     // one file with all features in one layer
    joined,     // the same, and the layer has the fields of them all
};

struct OutputFormat {
    GDALDriver* driver;
    Layout layout;
    std::string extension;
};

// The format that people name by an extension or a driver's name. A null driver when GDAL writes none of that
// name.
OutputFormat FindFormat(const std::string& name);

// Whether the format can be written from its beginning to its end, as standard output is. Its layers are
// joined then.
bool CanStream(const OutputFormat& format);
// Whether all rows of a layer have the same columns.
bool IsTable(const OutputFormat& format);

// By these the driver keeps what it would lose by default: lists as text, geometries, letters.
OGRFieldType FieldTypeFor(GDALDriver& driver, OGRFieldType wanted);
std::vector<const char*> LayerOptions(GDALDriver& driver);

}  // namespace vemrado::gdal
