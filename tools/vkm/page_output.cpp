#include "page_output.h"

#include <set>

#include "client/data_directory.h"
#include "client/standard_input.h"
#include "program.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

// The reader of a page chooses what else there is to choose.
void RefusePictureOptions(const CLI::App& command) {
    for (const CLI::Option* option : command.get_options()) {
        static const std::set<std::string> ofPages = {"--output", "--format",    "--encoding",
                                                      "--data",   "--quiet",     "--help",
                                                      "FILE",     "--recursive", "--files-from"};
        const std::string name = option->get_single_name();
        const std::string shown = option->get_lnames().empty() ? name : "--" + name;
        if (option->count() > 0 && !ofPages.contains(shown))
            throw Failure(exitUsage, Filled("{}: does not apply to a page for the browser", {shown}));
    }
}

}  // namespace

bool WantsPage(const PictureOptions& options) {
    const std::string name = client::LowerAscii(options.format.empty() ? options.file : "." + options.format);
    return name.ends_with(".html") || name.ends_with(".htm");
}

bool ChooseContent(PageContent& content, const std::string& map, const EncodingChoice& encoding,
                   const CLI::App& command, Environment& environment) {
    content.map = map;
    if (!ChooseEncoding(encoding, map, environment, content.encoding)) return false;
    const CLI::Option* data = command.get_option("--data");
    if (data->count() > 0) content.symbology = client::DataDirectoryOf(data->as<std::string>());
    return true;
}

int MakePage(const CLI::App& command, const PictureOptions& picture, const EncodingChoice& encoding,
             const std::vector<Input>& inputs, Environment& environment) {
    RefusePictureOptions(command);
    if (inputs.size() != 1)
        throw Failure(exitUsage, Translated("--output: a page for the browser holds one map"));
    const Input& input = inputs.front();
    if (!input.problem.empty()) throw Failure(exitInput, input.problem);
    RefuseInputAsOutput(input.name, picture.file);
    PageContent content;
    if (!ChooseContent(content, input.name, encoding, command, environment)) return exitInput;
    const bool complete =
        picture.file == client::standardInputName
            ? WriteMapPage(
                  content, [&](std::string_view bytes) { environment.output.Write(bytes); }, environment)
            : WriteMapPage(content, picture.file, environment);
    return complete ? exitDone : exitInput;
}

}  // namespace vemrado::tools
