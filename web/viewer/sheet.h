// One opened file: read in steps, so that the page can show what has come so far, and kept as a scene with a
// tree of boxes to find its parts by.

#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "draw/scene_builder.h"
#include "map/box_tree.h"
#include "source.h"

namespace vemrado::web {

enum class SheetState { reading, complete, incomplete, stopped, failed };

// Boxes on the ground, in the order of the layer's strokes, symbols and texts.
struct LayerIndex {
    map::BoxTree strokes;
    map::BoxTree symbols;
    map::BoxTree texts;
    double largestSymbol = 0;  // mm
    double tallestText = 0;    // mm
};

class Sheet {
  public:
    Sheet(std::string name, int file, double length, draw::SceneOptions options);

    // Reads on for about so long.
    void Read(double milliseconds);
    // Gives up reading; what was read stays.
    void Stop();
    void MakeIndex();

    SheetState State() const { return state; }
    // Why it failed, and what the module had to say; UTF-8.
    const std::string& Failure() const { return failure; }
    // Of the file, where reading it failed; 0: nowhere.
    int FailureLine() const { return failureLine; }
    const std::vector<std::string>& Boxes() const { return offered->Boxes(); }
    const std::string& Name() const { return name; }
    int File() const { return file; }
    double Length() const { return length; }
    client::Encoding Encoding() const { return encoding; }
    uint64_t Lines() const { return lines; }
    uint64_t Texts() const { return texts; }

    const draw::Scene& Scene() const { return builder ? builder->SoFar() : scene; }
    const LayerIndex* IndexOf(int layer) const;
    // Of points and insertion points.
    draw::Box Extent() const;

  private:
    bool Open();
    void End();

    std::string name;
    int file;
    double length;
    client::Encoding encoding;
    std::unique_ptr<OfferedFile> offered;
    std::unique_ptr<map::Importer> importer;
    std::unique_ptr<draw::SceneBuilder> builder;  // while reading
    draw::Scene scene;
    std::map<int, LayerIndex> index;
    SheetState state = SheetState::reading;
    std::string failure;
    int failureLine = 0;
    uint64_t lines = 0;
    uint64_t texts = 0;
};

// Opens another reading of a sheet's file, for what the scene does not keep.
bool OpenAgain(const Sheet& sheet, map::Importer& importer, OfferedFile& offered);

}  // namespace vemrado::web
