// A picture as commands that JavaScript replays on a canvas of the browser: numbers, and the texts one a
// line.
//
//   1 pen       colour, width, count of dashes, dashes, offset    ends the path and sets what strokes the
//   next 2 path      count, x, y, ...                                  a line of the path 3 text      x, y,
//   face, size, rotation, colour                the next text; x, y: the left end of its baseline 4 fill
//   colour, count, x, y, ...
//
// Everything in pixels, angles in radians clockwise.

#pragma once

#include <string>
#include <vector>

#include "draw/canvas.h"

namespace vemrado::web {

class CommandCanvas : public draw::Canvas {
  public:
    // Sizes on paper that are set with SetScale are drawn so large.
    void SetScale(double pixelsPerMillimetre) {
        scale = pixelsPerMillimetre;
        penSet = nullptr;
    }

    void BeginClip(const draw::Box&) override {}
    void EndClip() override {}
    void Line(std::span<const draw::Point> points, const draw::Pen& pen, double lengthBefore) override;
    void Symbol(const draw::SymbolShape& shape, draw::Point at, double size, double rotation,
                const draw::Pen& pen) override;
    void Text(const std::string& text, draw::Point at, const draw::TextStyle& style) override;
    void Fill(std::span<const draw::Point> outline, uint32_t colour) override;
    double Resolution() const override { return 1 / scale; }
    void Finish() override {}

    const std::vector<float>& Commands() const { return commands; }
    const std::string& Texts() const { return texts; }
    void Clear();

  private:
    void Put(double value) { commands.push_back(static_cast<float>(value)); }
    void UsePen(const draw::Pen& pen, double lengthBefore);

    std::vector<float> commands;
    std::string texts;
    double scale = 1;
    const draw::Pen* penSet = nullptr;
    double penLengthBefore = 0;
    size_t pathPoints = 0;
};

}  // namespace vemrado::web
