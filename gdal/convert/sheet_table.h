// The table of sheets in an output: an outline for each with what is known of it, also by which an update
// sees what has changed.

#pragma once

#include <map>
#include <optional>
#include <string>

#include "converter.h"
#include "output_layers.h"
#include "sheet.h"

namespace vemrado::gdal {

class SheetTable {
  public:
    struct Row {
        FileStamp stamp;
        SheetReport report;
        OGREnvelope extent;
        bool countsParcels = false;
    };

    explicit SheetTable(const OGRSpatialReference* reference);

    // Makes the table or takes the one that is there, with its rows.
    bool AddTo(OutputLayers& output);
    // What the output has of a sheet; null: nothing.
    const Row* Find(const std::string& name) const;
    const std::map<std::string, Row>& Rows() const { return rows; }

    void Forget(const std::string& name) { rows.erase(name); }

    // Whether parcels were made of all sheets that are there, and of no others.
    bool CountsParcels() const;

    bool Put(OutputLayers& output, const std::string& name, const Row& row, double mapScale,
             const Header& header);

  private:
    void Load(OGRLayer& layer);

    Definition definition;
    std::map<std::string, Row> rows;
};

// Makes features of a database quick to find by their sheet.
bool IndexSources(OutputLayers& output, OutputKind kind);

// Takes the sheet's features and its row out of a database.
bool RemoveSheet(OutputLayers& output, const std::string& name);

// Says how many parcels there are of a sheet, or that those of all sheets are no longer known.
bool ForgetParcelCounts(OutputLayers& output);
bool SetParcelCounts(OutputLayers& output, const std::string& name, const ParcelCounts& counts);

}  // namespace vemrado::gdal
