// Sheets on their way into the layers of lines, points and texts.

#pragma once

#include <array>
#include <memory>

#include "converter.h"
#include "output_layers.h"
#include "sheet.h"
#include "vkm_dataset.h"

namespace vemrado::gdal {

inline constexpr OutputKind mapLayers[] = {outputLines, outputPoints, outputTexts};

class SheetWriter {
  public:
    // Gets the part of a sheet that was written.
    using Progress = std::function<void(double)>;

    // All of them must outlive it.
    SheetWriter(const ConvertRequest& request, const OpenSettings& settings, Progress progress);

    // Makes these of the layers, or takes those that are there. First: the sheet that tells whether there are
    // lines of several strokes. False: reported to GDAL, as below.
    bool AddLayers(OutputLayers& output, const std::array<bool, outputKinds>& wanted,
                   const SheetFacts& first);

    // Writes what belongs to those layers.
    bool Write(Sheet& sheet);

  private:
    bool WriteLayer(const Batch& batch, OutputKind kind, const Sheet& sheet);
    bool WriteFeature(OutputKind kind, std::unique_ptr<OGRFeature> feature, const Sheet& sheet);
    void TellProgress(const Batch& batch, const SheetFacts& facts);

    const ConvertRequest& request;
    const OpenSettings& settings;
    Progress progress;
    std::array<std::unique_ptr<Definition>, 3> definitions;
    OutputLayers* layers = nullptr;
    std::array<bool, outputKinds> writes{};
    GIntBig linesBefore = 0;   // identifier of the last line before the sheet
    GIntBig linesOfSheet = 0;  // written so far
    size_t recordsDone = 0;    // of the sheet, once for each layer
};

}  // namespace vemrado::gdal
