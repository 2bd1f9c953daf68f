// The legend of a map: the line types and symbols that it shows, with their names.

#pragma once

#include <string>
#include <vector>

#include "canvas.h"
#include "scene.h"

namespace vemrado::draw {

class Legend {
  public:
    // Of what lies in the box, on the ground. The scene lives longer than the legend.
    Legend(const Scene& scene, const Box& box);

    // Breaks the legend into columns no higher than this. The size is the one of map_frame.h: texts grow with
    // it. Samples of lines and symbols are as on the map times the enlargement.
    void LayOut(double available, double sheetSize, double sampleEnlargement);
    // Breaks it into as many columns of one height as fit the width.
    void LayOutInWidth(double available, double sheetSize, double sampleEnlargement);
    double Width() const;   // mm
    double Height() const;  // of the highest column

    void DefineStyles(Canvas& canvas) const;
    void Draw(Canvas& canvas, Point corner) const;

  private:
    struct Row {
        std::string text;
        const Pen* pen = nullptr;            // a line type
        const SymbolShape* shape = nullptr;  // a symbol; neither: a heading
        size_t column = 0;
        double y = 0;  // of its upper edge, from the legend's
    };

    void AddChanges();
    void AddLineTypes(const Box& box);
    void AddSymbols(const Box& box);
    double RowHeight(const Row& row) const;  // mm
    double SampleScale(const SymbolShape& shape) const;
    void DrawRow(Canvas& canvas, const Row& row, Point corner) const;

    const Scene& scene;
    std::vector<Row> rows;
    size_t columns = 1;
    double height = 0;
    double size = 1;
    double enlargement = 1;
    std::vector<Pen> pens;  // of the samples when they are enlarged, by row
    Pen ink;
};

// Cuts a text that is wider than a space for it, and shows that it was cut.
std::string Fitted(const std::string& text, const TextStyle& style, double width);

}  // namespace vemrado::draw
