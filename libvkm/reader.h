// What a reader of the C interface holds.

#pragma once

#include <array>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "failure.h"
#include "map/symbology.h"
#include "map_file.h"

namespace vemrado::capi {

// The element handed out last: its arrays are those of the reading.
class ElementView {
  public:
    explicit ElementView(bool split);
    const vkm_element* Line(const map::MapLine& line);
    const vkm_element* Text(const map::MapText& text);

  private:
    void ShowElements(const map::MapLine& line);
    void ShowNoElements();
    void ShowStrokes(std::span<const map::Stroke> from);

    bool splitByCode;
    // What the other kind has stays null.
    vkm_element shownLine{};
    vkm_element shownText{};
    vkm_stroke oneStroke{};           // nearly every line has but one
    std::vector<vkm_stroke> strokes;  // the first ones are in use
};

// Styles and symbols by code, loaded when the first is asked for.
class SymbologyLookup {
  public:
    SymbologyLookup(std::shared_ptr<Source> source, const Options& options);

    struct Style {
        bool known = false;
        std::string name;
        map::Pen pen;
    };
    struct Symbol {
        bool known = false;
        std::string name;
        std::vector<double> points;
        std::vector<uint32_t> strokes;
        map::Box bounds;
    };
    // Valid as long as the lookup.
    const Style& StyleOf(int code);
    const Symbol& SymbolOf(int code);
    const std::vector<int32_t>& LineCodes() const { return lineCodes; }
    const std::vector<int32_t>& SymbolCodes() const { return symbolCodes; }

  private:
    std::shared_ptr<Source> source;
    const Options& options;
    CallState state;
    map::Importer importer;
    std::unordered_map<int, Style> styles;
    std::unordered_map<int, Symbol> symbols;
    std::vector<int32_t> lineCodes;
    std::vector<int32_t> symbolCodes;
};

}  // namespace vemrado::capi

struct vkm_reader {
    vkm_reader(std::shared_ptr<vemrado::capi::Source> readSource, vemrado::capi::Options readOptions);

    vemrado::capi::SymbologyLookup& Symbology();

    std::shared_ptr<vemrado::capi::Source> source;
    vemrado::capi::Options options;
    std::unique_ptr<vemrado::capi::MapFile> file;
    vemrado::capi::ElementView view;
    bool ended = false;
    std::optional<vkm_error> failed;  // of vkm_next, which fails in the same way ever after
    std::optional<vemrado::map::Box> extent;
    std::unique_ptr<vemrado::capi::SymbologyLookup> symbology;
    // Of the header.
    std::string headerName, headerDate, headerComments;
};
