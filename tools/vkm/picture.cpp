#include "picture.h"

#include <algorithm>

#include "client/atomic_output.h"
#include "client/system.h"
#include "program.h"

namespace vemrado::tools {
namespace {

constexpr double millimetresPerInch = 25.4;
constexpr double pixelsPerInch = 96;  // of SVG and PDF pictures on screens

draw::Format FormatOfFile(const PictureOptions& options) {
    draw::Format format = draw::Format::png;
    if (!draw::FormatOf(options.file, format)) {
        throw Failure(exitUsage, "--output: the name of a picture ends in .png, .svg or .pdf, not as in " +
                                     client::SystemTextToUtf8(options.file));
    }
    return format;
}

}  // namespace

void AddPictureOptions(CLI::App& command, PictureOptions& options, bool required) {
    CLI::Option* output =
        command.add_option("-o,--output", options.file, "The picture; its name ends in .png, .svg or .pdf");
    output->type_name("FILE")->required(required);
    command
        .add_option("--width", options.width, "Width of the picture in pixels (default: the size on paper)")
        ->type_name("N")
        ->check(CLI::Range(1, 32767));
    command.add_option("--dpi", options.dotsPerInch, "Pixels per inch of a PNG picture without --width")
        ->type_name("N")
        ->capture_default_str()
        ->check(CLI::Range(10.0, 2400.0));
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
        draw::CheckSupport(FormatOfFile(options));
    } catch (const draw::Unsupported& error) {
        throw Failure(exitUsage, client::SystemTextToUtf8(options.file) + ": " + error.what());
    }
}

void MakePicture(const PictureOptions& options, draw::PageSize page, const std::string& title,
                 const std::function<void(draw::Canvas&)>& drawPage) {
    const draw::Format format = FormatOfFile(options);
    double dotsPerInch = options.dotsPerInch;
    if (options.width > 0) {
        // The pixels of a PNG picture have no size of their own.
        if (format == draw::Format::png) {
            dotsPerInch = options.width / page.width * millimetresPerInch;
        } else {
            page.zoom = options.width / pixelsPerInch * millimetresPerInch / page.width;
        }
    }
    const std::string name = client::SystemTextToUtf8(options.file);
    try {
        client::AtomicOutput output(options.file);
        const auto canvas = draw::MakeCanvas(format, page, dotsPerInch, title,
                                             [&](std::string_view bytes) { output.Write(bytes); });
        drawPage(*canvas);
        canvas->Finish();
        output.Commit();
    } catch (const client::OutputError& error) {
        throw Failure(exitInternal, error.what());
    } catch (const draw::TooLarge& error) {
        throw Failure(exitUsage, name + ": " + error.what());
    } catch (const draw::Unsupported& error) {
        throw Failure(exitUsage, name + ": " + error.what());
    } catch (const std::runtime_error& error) {
        throw Failure(exitInternal, name + ": " + error.what());
    }
}

}  // namespace vemrado::tools
