// Many sheets, or one, on their way into one output.

#pragma once

#include <array>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "converter.h"
#include "destination.h"
#include "diagnostics.h"
#include "problem.h"
#include "sheet.h"
#include "sheet_table.h"
#include "sheet_writer.h"
#include "spooled_input.h"
#include "vkm_dataset.h"

namespace vemrado::gdal {

class Collection {
  public:
    // All of them must outlive it.
    Collection(const ConvertRequest& request, const OpenSettings& settings, const OutputFormat& format,
               Diagnostics& diagnostics, const ConvertReports& reports, std::vector<SheetReport>& sheets);
    Collection(const Collection&) = delete;
    Collection& operator=(const Collection&) = delete;
    ~Collection();

    // Makes everything; what is found wrong otherwise.
    std::optional<Problem> Run();

  private:
    using Wanted = std::array<bool, outputKinds>;

    std::optional<Problem> ChooseLayers();
    std::optional<Problem> ReadTarget();
    std::optional<Problem> WriteAll();
    std::optional<Problem> WriteSheets(const Wanted& now);
    // What a sheet has on some of the layers.
    std::optional<Problem> Take(size_t input, const Wanted& now);
    std::optional<Problem> Unreadable(size_t input);
    std::optional<Problem> Finish();
    std::optional<Problem> PutParcels();
    std::optional<Problem> Conclusion() const;

    OutputLayers& Layers() const { return destination.Layers(); }
    bool AddLayers(const SheetFacts& first, const Wanted& now);
    bool IsUnchanged(size_t input, FileStamp& stamp);
    bool Replace(Sheet& sheet);
    bool WriteRow(size_t input, const Sheet& sheet, const FileStamp& stamp);
    bool Prune();
    bool AddStyles();
    void LookAt(size_t input, const Sheet& sheet);
    void WarnOfScales() const;

    const ConvertRequest& request;
    const OpenSettings& settings;
    Diagnostics& diagnostics;
    const ConvertReports& reports;
    std::vector<SheetReport>& sheets;

    Destination destination;
    SheetWriter writer;
    SheetTable table;
    std::unique_ptr<class CountryParcels> parcelsOfAll;  // until its table is described
    std::optional<OGRSpatialReference> target;
    std::optional<SpooledInput> spooled;
    std::unique_ptr<Sheet> single;  // the only one, for the next layer
    Wanted wanted{};
    std::vector<OGREnvelope> extents;  // of the sheets
    bool layersAdded = false;
    bool changed = false;
    std::set<double> scales;
    bool toldOfDegrees = false;
    size_t sinceCommit = 0;
    size_t inputsDone = 0;
    double firstScale = 1000.0;
};

}  // namespace vemrado::gdal
