// Where an output comes to stand: a file that is made beside its place, or a file or database that is added
// to.

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "diagnostics.h"
#include "output_layers.h"
#include "problem.h"

namespace vemrado::gdal {

class Destination {
  public:
    // All of them must outlive it.
    Destination(const ConvertRequest& request, const OutputFormat& format, Diagnostics& diagnostics,
                const ConvertReports& reports);
    Destination(const Destination&) = delete;
    Destination& operator=(const Destination&) = delete;
    ~Destination();

    // Makes or opens the output. Where each layer has a file of its own, only tells how that is called.
    std::optional<Problem> Open(const OGRSpatialReference* target, bool oneLayer);

    OutputLayers& Layers() const { return *layers; }
    // What people know it by.
    const std::string& Name() const { return name; }
    // Whether it is written where it stands, so that what was committed stays.
    bool InPlace() const { return staged == nullptr; }

    // What a write that failed just now comes from.
    Problem Failed();
    Problem Stopped() const;

    // Closes it and puts it in its place.
    std::optional<Problem> Conclude();

  private:
    std::string PathOfLayer(const char* layer, bool oneLayer) const;
    std::optional<Problem> OpenExisting();
    std::optional<Problem> PrepareSchema();
    std::optional<Problem> OpenFile();
    std::optional<Problem> OpenStream(bool oneLayer);
    Problem CannotWrite(const std::string& reason) const;

    const ConvertRequest& request;
    const OutputFormat& format;
    Diagnostics& diagnostics;
    const ConvertReports& reports;
    std::string name;  // as people gave it
    std::string path;  // of the file with links followed, or a connection
    std::unique_ptr<class StagedOutput> staged;
    std::unique_ptr<OutputLayers> layers;
};

}  // namespace vemrado::gdal
