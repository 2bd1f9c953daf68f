#include "picture.h"

#include <algorithm>
#include <cstdlib>

#include "client/atomic_output.h"
#include "client/standard_input.h"
#include "client/stop_request.h"
#include "client/system.h"
#include "program.h"
#include "progress_bar.h"
#include "stop_watch.h"
#include "translations.h"
#include "watched_canvas.h"

namespace vemrado::tools {
namespace {

constexpr double millimetresPerInch = 25.4;
constexpr double pixelsPerInch = 96;  // of SVG and PDF pictures on screens

}  // namespace

draw::Format FormatOf(const PictureOptions& options) {
    draw::Format format = draw::Format::png;
    if (!options.format.empty()) {
        if (draw::FormatOf("." + options.format, format)) return format;
        throw Failure(exitUsage, Filled("--format: there is no kind of picture '{}'; take png, svg or pdf",
                                        {client::SystemTextToUtf8(options.format)}));
    }
    if (options.file == client::standardInputName) {
        throw Failure(exitUsage,
                      std::string(Translated(
                          "--output: a picture for standard output needs --format png, svg or pdf")));
    }
    if (!draw::FormatOf(options.file, format)) {
        throw Failure(exitUsage,
                      Filled("--output: the name of a picture ends in .png, .svg or .pdf, not as in {}",
                             {client::SystemTextToUtf8(options.file)}));
    }
    return format;
}

void AddPictureOptions(Program& program, CLI::App& command, PictureOptions& options, bool required) {
    CLI::Option* output = command.add_option(
        "-o,--output", options.file,
        "The picture; its name ends in .png, .svg or .pdf, or is - for standard output with --format");
    output->type_name("FILE")->required(required);
    CLI::Option* format =
        command.add_option("-f,--format", options.format, "Kind of the picture: png, svg or pdf");
    format->type_name("FORMAT");
    program.SetChoices(*format, {"png", "svg", "pdf"});
    CLI::Option* width = command
                             .add_option("--width", options.width,
                                         "Width of the picture in pixels (default: the size on paper)")
                             ->type_name("N")
                             ->check(CLI::Range(1, 32767));
    program.SetChoices(*width, {"800", "1600", "3200"});
    CLI::Option* dots =
        command.add_option("--dpi", options.dotsPerInch, "Pixels per inch of a PNG picture without --width")
            ->type_name("N")
            ->capture_default_str()
            ->check(CLI::Range(10.0, 2400.0));
    program.SetChoices(*dots, {"96", "150", "300", "600"});
}

void AddAngleUnitOption(Program& program, CLI::App& command, draw::AngleUnit& unit) {
    static constexpr std::array<std::string_view, 3> names = {"gon", "deg", "rad"};
    const auto choose = [&unit](const std::string& name) {
        const auto found = std::ranges::find(names, name);
        if (found == names.end())
            throw CLI::ValidationError("--angle-unit", "there is no angle unit '" + name + "'");
        unit = static_cast<draw::AngleUnit>(found - names.begin());
    };
    CLI::Option* option = command.add_option_function<std::string>(
        "--angle-unit", choose, "Unit of the rotations in the file: gon, deg or rad");
    option->type_name("UNIT")->default_str("gon");
    program.SetChoices(*option, {names.begin(), names.end()});
}

void CheckPicture(const PictureOptions& options) {
    try {
        draw::CheckSupport(FormatOf(options));
    } catch (const draw::Unsupported& error) {
        throw Failure(exitUsage, client::SystemTextToUtf8(options.file) + ": " + error.what());
    }
}

namespace {

// Sets the page's size for the wanted width and returns the pixels per inch of a PNG picture.
double Resize(const PictureOptions& options, draw::Format format, draw::PageSize& page) {
    if (options.width <= 0) return options.dotsPerInch;
    // The pixels of a PNG picture have no size of their own.
    if (format == draw::Format::png) return options.width / page.width * millimetresPerInch;
    page.zoom = options.width / pixelsPerInch * millimetresPerInch / page.width;
    return options.dotsPerInch;
}

// The function ends the process.
void DrawTo(const draw::ByteSink& sink, const PictureOptions& options, const Picture& picture,
            const std::function<void()>& end) {
    const draw::Format format = FormatOf(options);
    draw::PageSize page = picture.page;
    const double dotsPerInch = Resize(options, format, page);
    const auto things = static_cast<double>(std::max<uint64_t>(picture.things, 1));
    const std::string caption = Translated("Drawing");
    ProgressBar bar(caption.c_str());
    const auto canvas =
        draw::MakeCanvas(format, page, dotsPerInch, picture.title, [&](std::string_view bytes) {
            if (client::StopRequested()) throw DrawingStopped();
            sink(bytes);
        });
    WatchedCanvas watched(*canvas, [&](uint64_t drawn) {
        return bar.Draw(std::min(1.0, static_cast<double>(drawn) / things));
    });
    picture.draw(watched);
    // Of a large PDF page the drawing library makes bytes only after a long time that nothing interrupts.
    const StopWatch watch(end);
    watched.Finish();
}

std::string StoppedText(bool streams, const std::string& name) {
    return Filled(streams ? Message("{}: stopped on request; the picture is partial")
                          : Message("{}: stopped on request; no picture was made"),
                  {name});
}

}  // namespace

void MakePicture(const PictureOptions& options, const Picture& picture, Environment& environment) {
    const bool streams = options.file == client::standardInputName;
    const std::string name = streams ? "standard output" : client::SystemTextToUtf8(options.file);
    try {
        const auto end = [&](const client::AtomicOutput* output) {
            if (output != nullptr) output->Abandon();
            environment.Error(StoppedText(streams, name));
            std::_Exit(exitInput);
        };
        if (streams) {
            DrawTo([&](std::string_view bytes) { environment.output.Write(bytes); }, options, picture,
                   [&] { end(nullptr); });
            return;
        }
        client::AtomicOutput output(options.file);
        DrawTo([&](std::string_view bytes) { output.Write(bytes); }, options, picture, [&] { end(&output); });
        output.Commit();
    } catch (const client::OutputError& error) {
        throw Failure(exitInternal, error.what());
    } catch (const DrawingStopped&) {
        throw Failure(exitInput, StoppedText(streams, name));
    } catch (const draw::TooLarge& error) {
        throw Failure(exitUsage, name + ": " + error.what());
    } catch (const draw::Unsupported& error) {
        throw Failure(exitUsage, name + ": " + error.what());
    } catch (const Failure&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw Failure(exitInternal, name + ": " + error.what());
    }
}

}  // namespace vemrado::tools
