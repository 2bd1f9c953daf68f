// One passage over a map: the source opened by an importer of its own and read element by element through the
// one reading, with what is said of it on the way.

#pragma once

#include <memory>
#include <string>

#include "draw/scene_builder.h"
#include "map/importer.h"
#include "map/reading.h"
#include "module_calls.h"
#include "options.h"

namespace vemrado::capi {

class MapFile {
  public:
    // Both outlive it. Symbology is loaded when asked for and wanted. Throws Failure when the source cannot
    // be opened.
    MapFile(std::shared_ptr<Source> source, const Options& options, bool withSymbology);
    MapFile(const MapFile&) = delete;
    MapFile& operator=(const MapFile&) = delete;
    ~MapFile();

    // The next element of the wanted kinds and layers that has a place, in Line() or Text(); none at the end,
    // where what went wrong on the way is told. Throws Failure.
    map::ElementKind Next();
    // Everything is wanted at first; what is not costs nothing but the module's own reading.
    struct Wanted {
        bool strokes = true;  // lines of two elements or more, without which there is none
        bool points = true;   // lines of any number
        bool texts = true;
    };
    void Want(Wanted what) { wanted = what; }
    const map::MapLine& Line() const { return reading.Line(); }
    const map::MapText& Text() const { return reading.Text(); }

    // The scene of the whole map, in place of Next.
    draw::Scene MakeScene(draw::SceneOptions sceneOptions);

    bool Complete() const { return importer.Complete(); }
    uint64_t BadBytes() const { return reading.Decoder().ReplacedBytes(); }
    uint64_t LeftOut() const { return leftOut; }
    map::Importer& Importer() { return importer; }

  private:
    void Open(bool withSymbology);
    map::ElementKind ReadNext();
    bool Wants(map::ElementKind kind) const;
    void CheckStop();
    void TellEnd();
    void Warn(const std::string& reason);
    void WarnOfBoxes();

    std::shared_ptr<Source> source;
    const Options& options;
    CallState state;
    map::Importer importer;
    map::Reading reading;
    Wanted wanted;
    uint64_t leftOut = 0;
    uint32_t sinceProgress = 0;
};

}  // namespace vemrado::capi
