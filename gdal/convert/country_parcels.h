// Parcels of all sheets of an output, taken together: one that lies on several sheets is one polygon.

#pragma once

#include <functional>
#include <string>
#include <vector>

#include "converter.h"
#include "map/parcel_sweep.h"
#include "output_layers.h"
#include "parcels.h"
#include "sheet.h"

namespace vemrado::gdal {

class CountryParcels {
  public:
    struct Member {
        std::string file;  // empty: its lines and texts are read from the output
        std::string name;
        double west;          // nothing of the sheet lies west of it
        SheetReport* report;  // of the run; null: it is none of the inputs
    };

    CountryParcels(const OpenSettings& settings, bool manySheets, OutputLayers& output);

    void Add(const Member& member) { members.push_back({member, {}}); }
    std::string FirstName() const { return members.empty() ? "" : members.front().name; }

    // Builds and writes them in place of those that are there, in memory that follows the sheets around the
    // sweep from west to east. False: reported to GDAL.
    bool Write(const std::string& shownName, const std::function<bool()>& stopRequested);

  private:
    struct Counted : Member {
        ParcelCounts counts;
    };

    bool Prepare();
    void Count(const map::Parcels& made);
    bool Write(const map::Parcel& parcel);
    bool Read(const Counted& member, uint32_t number, map::ParcelSweep& sweep,
              const std::function<bool()>& stopRequested);
    bool TellCounts();

    const OpenSettings& settings;
    bool manySheets;
    OutputLayers& output;
    Definition definition;
    std::vector<Counted> members;  // numbered as the sheets of the sweep
};

}  // namespace vemrado::gdal
