// Parcels of all sheets of an output, taken together: one that lies on several sheets is one polygon.

#pragma once

#include <functional>
#include <string>
#include <vector>

#include "converter.h"
#include "output_layers.h"
#include "parcels.h"
#include "sheet.h"

namespace vemrado::gdal {

class CountryParcels {
  public:
    struct Member {
        std::string file;
        std::string name;
        double west;          // nothing of the sheet lies west of it
        SheetReport* report;  // gets the number of parcels that begin with the sheet
    };

    CountryParcels(const OpenSettings& settings, bool manySheets, OutputLayers& output);

    void Add(const Member& member) { members.push_back(member); }
    std::string FirstName() const { return members.empty() ? "" : members.front().name; }

    // Builds and writes them in place of those that are there, in memory that follows the sheets around the
    // sweep from west to east. False: reported to GDAL.
    bool Write(const std::string& shownName, const std::function<bool()>& stopRequested);

  private:
    bool Prepare();
    bool Write(const map::Parcel& parcel);
    bool TellCounts();

    const OpenSettings& settings;
    bool manySheets;
    OutputLayers& output;
    Definition definition;
    std::vector<Member> members;  // numbered as the sheets of the sweep
};

}  // namespace vemrado::gdal
