#include <cmath>
#include <cstring>

#include "client/atomic_output.h"
#include "draw/map_sheet.h"
#include "draw/scene_builder.h"
#include "failure.h"
#include "reader.h"

using namespace vemrado;
using namespace vemrado::capi;

namespace {

constexpr double millimetresPerInch = 25.4;
constexpr double pixelsPerInch = 96;  // of SVG and PDF pictures on screens
constexpr int32_t widestPicture = 32767;

vkm_picture DefaultPicture() {
    vkm_picture picture = {};
    picture.size = sizeof picture;
    picture.dpi = 150;
    picture.symbols = 1;
    return picture;
}

draw::Format FormatOf(const vkm_picture& picture, const char* path) {
    draw::Format format = draw::Format::svg;
    const std::string name = picture.format != nullptr ? std::string(".") + picture.format
                             : path != nullptr         ? path
                                                       : "";
    if (!draw::FormatOf(name, format))
        throw Failure(VKM_ERROR_ARGUMENT,
                      "a picture is svg, png or pdf, by its format or the ending of its name");
    return format;
}

std::optional<draw::Box> BoxOf(const double* corners) {
    if (corners == nullptr) return std::nullopt;
    const draw::Box box{corners[0], corners[1], corners[2], corners[3]};
    Require(box.Width() > 0 && box.Height() > 0 && std::isfinite(box.Width()) && std::isfinite(box.Height()),
            "box: it has no area");
    return box;
}

// The name of a source without its folder and ending.
std::string TitleOf(const std::string& name) {
    const std::string base = name.substr(name.find_last_of("/\\") + 1);
    const size_t dot = base.rfind('.');
    return dot == 0 || dot == std::string::npos ? base : base.substr(0, dot);
}

draw::Scene SceneOf(vkm_reader& reader, const vkm_picture& picture, const std::optional<draw::Box>& box) {
    draw::SceneOptions options;
    options.layers = {reader.options.layers.begin(), reader.options.layers.end()};
    options.box = box;
    options.symbols = picture.symbols != 0;
    options.angleUnit = reader.options.angleUnit;
    options.encoding = reader.options.encoding;
    MapFile file(reader.source, reader.options, true);
    return file.MakeScene(options);
}

void Draw(vkm_reader& reader, const vkm_picture& picture, draw::Format format, const draw::ByteSink& sink) {
    const std::string& name = reader.source->Name();
    draw::SheetOptions options;
    options.box = BoxOf(picture.box);
    options.legend = picture.legend != 0;
    client::TextDecoder titleDecoder(client::Encoding::utf8);
    options.title = titleDecoder.Decode(picture.title != nullptr ? picture.title : TitleOf(name));
    options.pixels = picture.width;
    const draw::Scene scene = SceneOf(reader, picture, options.box);
    if (scene.layers.empty() && !options.box) throw Failure(VKM_ERROR_ARGUMENT, "nothing to draw", name);
    const draw::MapSheet sheet(scene, options);
    draw::PageSize page = sheet.Page();
    double dotsPerInch = picture.dpi;
    if (picture.width > 0) {
        // The pixels of a PNG picture have no size of their own.
        if (format == draw::Format::png) {
            dotsPerInch = picture.width / page.width * millimetresPerInch;
        } else {
            page.zoom = picture.width / pixelsPerInch * millimetresPerInch / page.width;
        }
    }
    const auto canvas = draw::MakeCanvas(format, page, dotsPerInch, options.title, sink);
    sheet.Draw(*canvas);
    canvas->Finish();
}

vkm_picture KnownPicture(const vkm_picture* callers) {
    Require(callers == nullptr || SaysSize(callers->size),
            "the picture does not say its size: vkm_picture_init");
    const vkm_picture picture = callers != nullptr ? KnownPart(*callers, DefaultPicture()) : DefaultPicture();
    Require(picture.width >= 0 && picture.width <= widestPicture, "width: 0 to 32767 pixels");
    Require(picture.dpi >= 10 && picture.dpi <= 2400, "dpi: 10 to 2400");
    return picture;
}

// As Guarded, with what drawing and its output throw.
template <typename Function>
vkm_status GuardedDrawing(vkm_error** error, Function function) noexcept {
    return Guarded(error, [&]() -> vkm_status {
        try {
            function();
            return VKM_OK;
        } catch (const draw::Unsupported& lacking) {
            throw Failure(VKM_ERROR_UNSUPPORTED, lacking.what());
        } catch (const draw::TooLarge& large) {
            throw Failure(VKM_ERROR_ARGUMENT, large.what());
        } catch (const client::OutputError& output) {
            throw Failure(VKM_ERROR_WRITE, output.what());
        }
    });
}

}  // namespace

void vkm_picture_init(vkm_picture* picture) {
    if (picture != nullptr) *picture = DefaultPicture();
}

vkm_status vkm_render(vkm_reader* reader, const vkm_picture* picture, const char* path, vkm_error** error) {
    return GuardedDrawing(error, [&] {
        Require(reader != nullptr && path != nullptr && *path != '\0', "vkm_render: null");
        const vkm_picture known = KnownPicture(picture);
        const draw::Format format = FormatOf(known, path);
        draw::CheckSupport(format);
        client::AtomicOutput output(path);
        Draw(*reader, known, format, [&](std::string_view bytes) { output.Write(bytes); });
        output.Commit();
    });
}

vkm_status vkm_render_to(vkm_reader* reader, const vkm_picture* picture, vkm_write write, void* context,
                         vkm_error** error) {
    return GuardedDrawing(error, [&] {
        Require(reader != nullptr && write != nullptr, "vkm_render_to: null");
        const vkm_picture known = KnownPicture(picture);
        const draw::Format format = FormatOf(known, nullptr);
        draw::CheckSupport(format);
        Draw(*reader, known, format, [&](std::string_view bytes) {
            if (write(context, bytes.data(), bytes.size()) != 0)
                throw Failure(VKM_ERROR_WRITE, "the caller's function took no more of the picture");
        });
    });
}
