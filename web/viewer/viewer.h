// The map that the page shows: its sheets side by side, which layers are on, and the pictures of its parts.

#pragma once

#include <map>
#include <memory>
#include <set>
#include <vector>

#include "command_canvas.h"
#include "sheet.h"
#include "thin_lines.h"

namespace vemrado::web {

// A part of the ground as a picture.
struct View {
    draw::Point upperLeft;  // on the ground
    double pixelsPerMetre = 1;
    int width = 0;
    int height = 0;

    draw::Box Ground() const {
        return {upperLeft.x, upperLeft.y - height / pixelsPerMetre, upperLeft.x + width / pixelsPerMetre,
                upperLeft.y};
    }
};

class Viewer {
  public:
    Sheet& Add(std::unique_ptr<Sheet> sheet) { return *sheets.emplace_back(std::move(sheet)); }
    const std::vector<std::unique_ptr<Sheet>>& Sheets() const { return sheets; }
    void Clear() { sheets.clear(); }

    void ShowLayer(int layer, bool shown) {
        if (shown) {
            hidden.erase(layer);
        } else {
            hidden.insert(layer);
        }
    }
    bool Shows(int layer) const { return !hidden.contains(layer); }
    // Of all sheets.
    std::set<int> Layers() const;
    draw::Box Extent() const;

    // Whether everything in such a picture is as thin as can be.
    bool IsThin(double pixelsPerMetre) const;

    // The lines of the view, thin, from all strokes there are or from those that the trees find.
    void PaintThin(const View& view, Pixels& pixels, bool indexed) const;

    // Draws the view on a canvas; lines only where they are not thin. Needs the trees.
    void Draw(const View& view, CommandCanvas& canvas) const;

  private:
    void DrawLayer(const View& view, const Sheet& sheet, int number, const draw::Layer& layer,
                   CommandCanvas& canvas) const;

    std::vector<std::unique_ptr<Sheet>> sheets;
    std::set<int> hidden;
};

// The name of a line code or symbol code of the sheet, empty when the symbology has none.
std::string LineName(const Sheet& sheet, int code);
std::string SymbolName(const Sheet& sheet, int code);

}  // namespace vemrado::web
