// Many sheets, or one, on their way into one output.

#pragma once

#include <array>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "converter.h"
#include "diagnostics.h"
#include "output_layers.h"
#include "sheet.h"
#include "sheet_table.h"
#include "spooled_input.h"
#include "vkm_dataset.h"

namespace vemrado::gdal {

struct Problem {
    ConvertOutcome outcome;
    std::string text;
};

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
    bool Wants(OutputKind kind) const { return wanted[kind]; }
    std::optional<Problem> ChooseLayers();
    std::optional<Problem> OpenOutput(OutputSettings& chosen);
    std::optional<Problem> OpenDatabase(const OutputSettings& chosen, const std::string& name);
    std::optional<Problem> WriteSheets(OutputKind only);
    // A sheet, all of it or one layer.
    std::optional<Problem> Take(size_t input, OutputKind only);
    std::optional<Problem> Unreadable(size_t input);
    std::optional<Problem> Finish();
    std::optional<Problem> PutParcels();
    std::optional<Problem> Stopped() const;
    std::optional<Problem> OutputFailed();

    // All layers, or one.
    bool AddLayers(const SheetFacts& first, OutputKind only);
    bool IsUnchanged(size_t input, FileStamp& stamp);
    bool WriteSheet(Sheet& sheet, OutputKind only);
    bool WriteBatch(const Batch& batch, OutputKind kind, const Sheet& sheet);
    bool WriteRow(size_t input, const Sheet& sheet, const FileStamp& stamp);
    bool WriteFeature(OutputKind kind, std::unique_ptr<OGRFeature> feature, const Sheet& sheet);
    bool Prune();
    bool AddStyles();
    void LookAt(size_t input, const Sheet& sheet);
    void WarnOfScales() const;

    std::string ShownOutput() const;
    std::string PathOf(const char* layer) const;
    bool InPlace() const;

    const ConvertRequest& request;
    const OpenSettings& settings;
    OutputFormat format;
    Diagnostics& diagnostics;
    const ConvertReports& reports;
    std::vector<SheetReport>& sheets;

    std::string output;  // path of the output, or a connection
    std::unique_ptr<class StagedOutput> staged;
    std::unique_ptr<OutputLayers> layers;
    std::array<std::unique_ptr<Definition>, 3> definitions;
    SheetTable table;
    std::unique_ptr<class CountryParcels> parcelsOfAll;  // until its table is described
    std::optional<OGRSpatialReference> target;
    std::optional<SpooledInput> spooled;
    std::unique_ptr<Sheet> single;  // the only one, for the next layer
    std::array<bool, outputKinds> wanted{};
    std::vector<OGREnvelope> extents;  // of the sheets
    bool layersAdded = false;
    bool changed = false;
    std::set<double> scales;
    bool toldOfDegrees = false;
    GIntBig linesBefore = 0;  // identifier of the last line before the sheet
    GIntBig linesOfSheet = 0;
    size_t sinceCommit = 0;
    size_t inputsDone = 0;
    size_t recordsDone = 0;  // of the sheet, once for each layer
    double firstScale = 1000.0;
};

}  // namespace vemrado::gdal
