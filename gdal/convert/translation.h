// Copies the layers of a map into the output's datasets.

#pragma once

#include <functional>
#include <string>
#include <vector>

#include "output_format.h"
#include "vkm_dataset.h"

namespace vemrado::gdal {

class Translation {
  public:
    // The map must outlive it. progress gets the share of all features that is done; false stops.
    Translation(VkmDataset& map, std::vector<OGRLayer*> layers, OutputFormat format,
                std::function<bool(double)> progress);
    Translation(const Translation&) = delete;
    Translation& operator=(const Translation&) = delete;
    ~Translation();

    // Counts everything first, so that progress is known. False when it fails, which is reported to GDAL.
    bool Prepare();
    // One file with all layers.
    bool WriteContainer(const std::string& path);
    // A file with one layer.
    bool WriteLayer(const std::string& path, OGRLayer& layer);
    // One file whose only layer takes the features of all.
    bool WriteMerged(const std::string& path);

  private:
    using Output = GDALDatasetUniquePtr;

    Output Create(const std::string& path) const;
    bool Copy(GDALDataset& output, OGRLayer& layer);
    bool CopyMerged(OGRLayer& target, OGRLayer& layer);
    double ShareDone() const {
        return static_cast<double>(featuresDone) / static_cast<double>(featuresOfAll);
    }

    VkmDataset& map;
    std::vector<OGRLayer*> layers;
    OutputFormat format;
    std::function<bool(double)> progress;
    GIntBig featuresOfAll = 1;
    GIntBig featuresDone = 0;
};

}  // namespace vemrado::gdal
