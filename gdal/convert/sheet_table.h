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
    };

    explicit SheetTable(const OGRSpatialReference* reference);

    // Makes the table or takes the one that is there, with its rows.
    bool AddTo(OutputLayers& output);
    // What the output has of a sheet; null: nothing.
    const Row* Find(const std::string& name) const;
    const std::map<std::string, Row>& Rows() const { return rows; }

    bool Put(OutputLayers& output, const std::string& name, const Row& row, double mapScale,
             const SheetHeader& header);

  private:
    void Load(OGRLayer& layer);

    Definition definition;
    std::map<std::string, Row> rows;
};

// Takes the sheet's features and its row out of a database.
bool RemoveSheet(OutputLayers& output, const std::string& name);

}  // namespace vemrado::gdal
