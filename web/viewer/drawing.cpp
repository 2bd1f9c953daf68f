// The map as an SVG drawing, the same as the command line makes of the files.

#include "draw/map_sheet.h"
#include "queries.h"

namespace vemrado::web {
namespace {

draw::SceneOptions OptionsOf(const Viewer& viewer, const Sheet& first, const draw::Box& box) {
    draw::SceneOptions options;
    options.box = box;
    options.encoding = first.Encoding();
    const std::set<int> all = viewer.Layers();
    const bool allShown =
        std::all_of(all.begin(), all.end(), [&](int number) { return viewer.Shows(number); });
    if (allShown) return options;
    options.layers.insert(std::numeric_limits<int>::min());  // of no element: there may be none left
    for (const int number : all) {
        if (viewer.Shows(number)) options.layers.insert(number);
    }
    return options;
}

// As far as the sheet itself was read.
void TakeSheet(const Sheet& sheet, map::Importer& importer, draw::SceneBuilder& builder) {
    OfferedFile offered(sheet.Name(), sheet.File(), sheet.Length());
    map::OpenOptions open;
    open.fileName = sheet.Name();
    open.symbology = true;
    if (!importer.Open(open)) return;
    for (uint64_t left = sheet.Lines() + sheet.Texts(); left > 0; --left) {
        const map::ElementKind kind = importer.Next();
        if (kind == map::ElementKind::none) break;
        builder.Take(kind);
    }
}

}  // namespace

std::string DrawSvg(const Viewer& viewer, int sheetNumber, const draw::Box& box, bool legend,
                    const std::string& title) {
    const auto& sheets = viewer.Sheets();
    // The scene of a sheet has all of it; in a drawing people find nothing that lies outside the box.
    map::Importer importer;
    draw::SceneBuilder builder(importer, OptionsOf(viewer, *sheets.front(), box));
    for (size_t i = 0; i < sheets.size(); ++i) {
        if (sheetNumber < 0 || i == static_cast<size_t>(sheetNumber))
            TakeSheet(*sheets[i], importer, builder);
    }
    const draw::Scene scene = builder.Finish();
    draw::SheetOptions options;
    options.box = box;
    options.legend = legend;
    options.title = title;
    const draw::MapSheet mapSheet(scene, options);
    std::string picture;
    const auto canvas =
        draw::MakeSvgCanvas(mapSheet.Page(), title, [&](std::string_view bytes) { picture += bytes; });
    mapSheet.Draw(*canvas);
    canvas->Finish();
    return picture;
}

}  // namespace vemrado::web
