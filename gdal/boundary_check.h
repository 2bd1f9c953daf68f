// What is wrong with boundaries and numbers, counted and told with the first examples.

#pragma once

#include <ogr_geometry.h>

#include <string>
#include <vector>

namespace vemrado::gdal {

struct Parcel;

// Cases of one kind.
class Finding {
  public:
    void Add(const OGRRawPoint& place, const std::string& what);
    // A warning to GDAL: "FILE: COUNT WHAT, for example at X Y"; nothing when there is no case.
    void Report(const std::string& file, const char* what) const;

  private:
    int count = 0;
    std::string examples;
};

// Reports the pieces of cut boundaries that bound no parcel: those with a free end, and those between two
// others.
void ReportOpenBoundaries(const OGRGeometry& pieces, const std::vector<Parcel>& parcels,
                          const std::string& file);

}  // namespace vemrado::gdal
