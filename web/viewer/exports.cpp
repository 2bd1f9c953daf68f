// What JavaScript calls. Answers stand in memory of this file until the next call of the same function.

#include <emscripten.h>

#include <cstdlib>
#include <map>
#include <new>

#include "client/data_directory.h"
#include "elements.h"
#include "framework/framework.h"
#include "queries.h"
#include "said.h"

namespace {

using namespace vemrado;
using namespace vemrado::web;

struct Page {
    Viewer viewer;
    CommandCanvas canvas;
    std::unique_ptr<Pixels> pixels;
    map::Parcels parcels;
    std::unique_ptr<map::AreaFinder> finder;
    std::map<int, ElementReader> elements;  // by the number of the page's file
    std::string answer;

    const char* Answer(std::string text) {
        answer = std::move(text);
        return answer.c_str();
    }

    // What the function gives, or null where it fails; web_failure says why, without the name of the file.
    template <typename Function>
    const char* Attempt(Function function) {
        try {
            return Answer(function());
        } catch (const CFileException& error) {
            Answer(Said(client::MessageToUtf8(error.Reason())));
            return nullptr;
        } catch (const std::exception& error) {
            Answer(Said(error));
            return nullptr;
        }
    }
};

Page& ThePage() {
    static Page page;
    return page;
}

View ViewOf(double x, double y, double pixelsPerMetre, int width, int height) {
    return {{x, y}, pixelsPerMetre, width, height};
}

}  // namespace

extern "C" {

// "cs", "de" or "en": of what is said from now on. The module itself keeps the one that it was started with.
EMSCRIPTEN_KEEPALIVE void web_language(const char* language) {
    setenv("VEMRADO_COUNTRY", language, 1);
}

// The directory that holds VKMSym, for sheets opened from now on.
EMSCRIPTEN_KEEPALIVE void web_symbology(const char* directory) {
    client::UseDataDirectory(directory);
}

// Number of the sheet, which may be read for its parcels only.
EMSCRIPTEN_KEEPALIVE int web_open(const char* name, int file, double length, int encoding, int onlyParcels) {
    Viewer& viewer = ThePage().viewer;
    draw::SceneOptions options;
    options.encoding = static_cast<client::Encoding>(encoding);
    if (onlyParcels != 0) {
        const map::ParcelLayers from;
        options.layers = {from.boundaries, from.numbers};
        options.symbols = false;
    }
    viewer.Add(std::make_unique<Sheet>(name, file, length, std::move(options)));
    return static_cast<int>(viewer.Sheets().size()) - 1;
}

// 1 while there is more to read.
EMSCRIPTEN_KEEPALIVE int web_read(int sheet, double milliseconds) {
    Sheet& read = *ThePage().viewer.Sheets()[static_cast<size_t>(sheet)];
    read.Read(milliseconds);
    return read.State() == SheetState::reading ? 1 : 0;
}

EMSCRIPTEN_KEEPALIVE void web_stop(int sheet) {
    ThePage().viewer.Sheets()[static_cast<size_t>(sheet)]->Stop();
}

EMSCRIPTEN_KEEPALIVE void web_index(int sheet) {
    ThePage().viewer.Sheets()[static_cast<size_t>(sheet)]->MakeIndex();
}

EMSCRIPTEN_KEEPALIVE void web_clear() {
    ThePage().finder.reset();
    ThePage().parcels = {};
    ThePage().viewer.Clear();
}

EMSCRIPTEN_KEEPALIVE void web_show_layer(int layer, int shown) {
    ThePage().viewer.ShowLayer(layer, shown != 0);
}

EMSCRIPTEN_KEEPALIVE const char* web_summary() {
    return ThePage().Answer(Summary(ThePage().viewer));
}

EMSCRIPTEN_KEEPALIVE int web_is_thin(double pixelsPerMetre) {
    return ThePage().viewer.IsThin(pixelsPerMetre) ? 1 : 0;
}

// Red, green, blue, opacity of each pixel. x, y: the upper left corner on the ground.
EMSCRIPTEN_KEEPALIVE const uint32_t* web_paint_thin(double x, double y, double pixelsPerMetre, int width,
                                                    int height, int indexed) {
    Page& page = ThePage();
    page.pixels = std::make_unique<Pixels>(width, height);
    page.viewer.PaintThin(ViewOf(x, y, pixelsPerMetre, width, height), *page.pixels, indexed != 0);
    return page.pixels->Data();
}

EMSCRIPTEN_KEEPALIVE void web_forget_pixels() {
    ThePage().pixels.reset();
}

// Number of commands, floats at web_commands; their texts at web_texts.
EMSCRIPTEN_KEEPALIVE int web_draw(double x, double y, double pixelsPerMetre, int width, int height) {
    Page& page = ThePage();
    page.canvas.Clear();
    page.viewer.Draw(ViewOf(x, y, pixelsPerMetre, width, height), page.canvas);
    return static_cast<int>(page.canvas.Commands().size());
}

EMSCRIPTEN_KEEPALIVE const float* web_commands() {
    return ThePage().canvas.Commands().data();
}

EMSCRIPTEN_KEEPALIVE const char* web_texts() {
    return ThePage().canvas.Texts().c_str();
}

EMSCRIPTEN_KEEPALIVE const char* web_legend(double minX, double minY, double maxX, double maxY) {
    return ThePage().Answer(LegendOf(ThePage().viewer, {minX, minY, maxX, maxY}));
}

EMSCRIPTEN_KEEPALIVE const char* web_find(const char* wanted, int most) {
    return ThePage().Answer(FindTexts(ThePage().viewer, wanted, static_cast<size_t>(most)));
}

EMSCRIPTEN_KEEPALIVE const char* web_pick(double x, double y, double distance) {
    return ThePage().Answer(Pick(ThePage().viewer, {x, y}, distance));
}

EMSCRIPTEN_KEEPALIVE const char* web_inspect(int sheet, int layer, int kind, int number) {
    const Sheet& inspected = *ThePage().viewer.Sheets()[static_cast<size_t>(sheet)];
    try {
        return ThePage().Answer(Inspect(inspected, layer, kind, static_cast<uint32_t>(number)));
    } catch (const std::exception&) {
        return "null";  // the file is no longer what it was
    }
}

EMSCRIPTEN_KEEPALIVE const char* web_parcels() {
    Page& page = ThePage();
    page.finder.reset();
    page.parcels = FindParcels(page.viewer);
    page.finder = std::make_unique<map::AreaFinder>(page.parcels.parcels);
    return page.Answer(ParcelList(page.parcels));
}

// Number of the parcel at a place, -1: none.
EMSCRIPTEN_KEEPALIVE int web_parcel_at(double x, double y) {
    const Page& page = ThePage();
    const size_t found = page.finder ? page.finder->Find({x, y}) : map::AreaFinder::nowhere;
    return found == map::AreaFinder::nowhere ? -1 : static_cast<int>(found);
}

EMSCRIPTEN_KEEPALIVE const char* web_parcel_rings(int parcel) {
    return ThePage().Answer(ParcelRings(ThePage().parcels.parcels.at(static_cast<size_t>(parcel))));
}

// Begins to give the elements of a file one by one; several files at once. Empty, or why it cannot.
EMSCRIPTEN_KEEPALIVE const char* web_elements_open(const char* name, int file, double length, int encoding,
                                                   int axisOrientation) {
    Page& page = ThePage();
    try {
        page.elements.try_emplace(file, name, file, length, static_cast<client::Encoding>(encoding),
                                  axisOrientation);
        return "";
    } catch (const std::exception& error) {
        return page.Answer(Said(error));
    }
}

// Elements of about so many numbers. How many numbers there are, 0 at the end; -1: it cannot, see
// web_failure.
EMSCRIPTEN_KEEPALIVE int web_elements_next(int file, int numbers) {
    Page& page = ThePage();
    try {
        return static_cast<int>(page.elements.at(file).Next(static_cast<size_t>(numbers)).numbers.size());
    } catch (const std::exception& error) {
        page.Answer(Said(error));
        return -1;
    }
}

EMSCRIPTEN_KEEPALIVE const char* web_failure() {
    return ThePage().answer.c_str();
}

EMSCRIPTEN_KEEPALIVE const double* web_elements_numbers(int file) {
    return ThePage().elements.at(file).Batch().numbers.data();
}

EMSCRIPTEN_KEEPALIVE const char* web_elements_texts(int file) {
    return ThePage().elements.at(file).Batch().texts.data();
}

EMSCRIPTEN_KEEPALIVE int web_elements_texts_length(int file) {
    return static_cast<int>(ThePage().elements.at(file).Batch().texts.size());
}

EMSCRIPTEN_KEEPALIVE int web_elements_complete(int file) {
    return ThePage().elements.at(file).Complete() ? 1 : 0;
}

// Of the file, where reading stands.
EMSCRIPTEN_KEEPALIVE int web_elements_line(int file) {
    return ThePage().elements.at(file).LineCount() + 1;
}

EMSCRIPTEN_KEEPALIVE void web_elements_close(int file) {
    ThePage().elements.erase(file);
}

// What is wrong with a sheet's file, at most so many findings. Null: it cannot, see web_failure; so those
// below.
EMSCRIPTEN_KEEPALIVE const char* web_check(int sheet, int most) {
    const Sheet& checked = *ThePage().viewer.Sheets()[static_cast<size_t>(sheet)];
    return ThePage().Attempt([&] { return Check(checked, static_cast<size_t>(most)); });
}

// What changed since the state in a file of the page's.
EMSCRIPTEN_KEEPALIVE const char* web_compare(int oldFile, int encoding, int most) {
    return ThePage().Attempt([&] {
        return Compare(ThePage().viewer, oldFile, static_cast<client::Encoding>(encoding),
                       static_cast<size_t>(most));
    });
}

// What lies in a box as an SVG drawing, of one sheet or, for a negative number, of all.
EMSCRIPTEN_KEEPALIVE const char* web_svg(int sheet, double minX, double minY, double maxX, double maxY,
                                         int legend, const char* title) {
    return ThePage().Attempt([&] {
        return DrawSvg(ThePage().viewer, sheet, {minX, minY, maxX, maxY}, legend != 0, title);
    });
}

}  // extern "C"
