#include "stored_sheet.h"

#include <cpl_string.h>

#include <vector>

#include "sheet_table.h"

namespace vemrado::gdal {

namespace {

using AddBoundary = std::function<void(std::span<const map::Point>)>;

void AddStrokes(const OGRGeometry& geometry, const AddBoundary& addBoundary) {
    if (wkbFlatten(geometry.getGeometryType()) == wkbMultiLineString) {
        for (const OGRLineString* stroke : *geometry.toMultiLineString()) AddStrokes(*stroke, addBoundary);
        return;
    }
    if (wkbFlatten(geometry.getGeometryType()) != wkbLineString) return;
    std::vector<map::Point> points;
    for (const OGRPoint& point : *geometry.toLineString()) points.push_back({point.getX(), point.getY()});
    addBoundary(points);
}

// The features of a sheet on one layer of the map.
bool ForEachOf(OutputLayers& output, OutputKind kind, const std::string& sheet, int mapLayer,
               const std::function<void(OGRFeature&)>& visit) {
    if (!IndexSources(output, kind)) return false;
    OGRLayer& layer = *output.Layer(kind);
    const std::string which =
        "source = " + OutputLayers::Quoted(sheet) + " AND layer = " + std::to_string(mapLayer);
    CPLErrorReset();
    if (layer.SetAttributeFilter(which.c_str()) != OGRERR_NONE) return false;
    layer.ResetReading();
    while (const OGRFeatureUniquePtr feature{layer.GetNextFeature()}) {
        if (feature->GetGeometryRef() != nullptr) visit(*feature);
    }
    layer.SetAttributeFilter(nullptr);
    return CPLGetLastErrorType() < CE_Failure;
}

}  // namespace

bool KeepsSheets(const OutputLayers& output) {
    return output.IsDatabase() && output.KeepsPlaces() && output.Has(outputLines) && output.Has(outputTexts);
}

bool ReadStoredSheet(OutputLayers& output, const std::string& name, const map::ParcelLayers& layers,
                     const AddBoundary& addBoundary,
                     const std::function<void(map::Point, const char*)>& addNumber) {
    const auto boundary = [&](OGRFeature& line) { AddStrokes(*line.GetGeometryRef(), addBoundary); };
    const auto number = [&](OGRFeature& text) {
        const OGRGeometry& place = *text.GetGeometryRef();
        if (wkbFlatten(place.getGeometryType()) != wkbPoint) return;
        const OGRPoint& point = *place.toPoint();
        addNumber({point.getX(), point.getY()}, text.GetFieldAsString("text"));
    };
    return ForEachOf(output, outputLines, name, layers.boundaries, boundary) &&
           ForEachOf(output, outputTexts, name, layers.numbers, number);
}

}  // namespace vemrado::gdal
