// A canvas that can be stopped: it passes everything on, counts it, and asks now and then whether to go on.

#pragma once

#include <functional>

#include "draw/canvas.h"

namespace vemrado::tools {

// The drawing was stopped on the user's request.
struct DrawingStopped {};

class WatchedCanvas : public draw::Canvas {
  public:
    // The function gets the number of things drawn so far; when it says no, the drawing ends by
    // DrawingStopped.
    WatchedCanvas(draw::Canvas& canvas, std::function<bool(uint64_t)> goOn)
        : target(canvas), askToGoOn(std::move(goOn)) {}

    void DefinePen(const draw::Pen& pen) override { target.DefinePen(pen); }
    void DefineSymbol(const draw::SymbolShape& shape) override { target.DefineSymbol(shape); }
    void NewPage(const draw::PageSize& page, double smallest) override { target.NewPage(page, smallest); }
    void BeginGroup(const std::string& id, const std::string& label) override {
        target.BeginGroup(id, label);
    }
    void EndGroup() override { target.EndGroup(); }
    void BeginClip(const draw::Box& box) override { target.BeginClip(box); }
    void EndClip() override { target.EndClip(); }
    void Line(std::span<const draw::Point> points, const draw::Pen& pen, double lengthBefore) override {
        Count();
        target.Line(points, pen, lengthBefore);
    }
    void Symbol(const draw::SymbolShape& shape, draw::Point at, double scale, double rotation,
                const draw::Pen& pen) override {
        Count();
        target.Symbol(shape, at, scale, rotation, pen);
    }
    void Text(const std::string& text, draw::Point at, const draw::TextStyle& style) override {
        Count();
        target.Text(text, at, style);
    }
    void Fill(std::span<const draw::Point> outline, uint32_t colour) override {
        target.Fill(outline, colour);
    }
    double Resolution() const override { return target.Resolution(); }
    void Finish() override { target.Finish(); }

  private:
    void Count() {
        if (!askToGoOn(drawn++)) throw DrawingStopped();
    }

    draw::Canvas& target;
    std::function<bool(uint64_t)> askToGoOn;
    uint64_t drawn = 0;
};

}  // namespace vemrado::tools
