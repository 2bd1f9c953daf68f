// vkm view: shows a map in the browser.

#include <filesystem>
#include <memory>
#include <stdexcept>

#include "client/standard_input.h"
#include "client/system.h"
#include "commands.h"
#include "common_options.h"
#include "inputs.h"
#include "page_output.h"
#include "program.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

struct ViewOptions {
    std::string file;
    EncodingChoice encoding;
    const CLI::App* command = nullptr;
};

// The map's own name with another ending, in a new folder.
std::string NewPageFile(const std::string& map) {
    std::string name = map == client::standardInputName ? "map" : BaseName(map);
    for (const char* ending : {".gz", ".GZ", ".vkm", ".VKM"}) {
        if (name.ends_with(ending)) name.resize(name.size() - std::string_view(ending).size());
    }
    try {
        return client::NewTemporaryFolder() + "/" + name + ".html";
    } catch (const std::runtime_error& error) {
        throw Failure(exitInternal, client::SystemTextToUtf8(error.what()));
    }
}

// Leaves no empty folder behind when there is no page in the end.
bool WriteOrClear(const PageContent& content, const std::string& page, Environment& environment) {
    try {
        return WriteMapPage(content, page, environment);
    } catch (...) {
        std::error_code ignored;
        std::filesystem::remove(client::NativePath(page).parent_path(), ignored);
        throw;
    }
}

int RunView(const ViewOptions& options, Environment& environment) {
    PageContent content;
    if (!ChooseContent(content, FindOneInput(options.file), options.encoding, *options.command, environment))
        return exitInput;
    const std::string page = NewPageFile(content.map);
    const bool complete = WriteOrClear(content, page, environment);
    const std::string shownPage = client::SystemTextToUtf8(page);
    environment.output.Write(shownPage + "\n");
    environment.output.Flush();
    const std::string problem = client::OpenOnDesktop(page);
    if (!problem.empty()) {
        throw Failure(exitInternal, Filled("{}: the browser could not be opened: {}; open the page yourself",
                                           {shownPage, problem}));
    }
    return complete ? exitDone : exitInput;
}

}  // namespace

void AddViewCommand(Program& program) {
    const auto options = std::make_shared<ViewOptions>();
    const CommandText text = {
        "view",
        "Show a map in the browser",
        "Makes a page with the map inside, as 'vkm render FILE -o page.html' does, in the folder of "
        "temporary "
        "files, writes its name and opens it in the browser. The page stays there until that folder is "
        "cleared. Nothing is sent anywhere.",
        {{"vkm view town.vkm", "the map in the browser, to move, search, measure and print"}}};
    CLI::App& command =
        program.Add(text, [options](Environment& environment) { return RunView(*options, environment); });
    AddFileArgument(command, options->file);
    options->command = &command;
    AddEncodingOption(program, command, options->encoding);
}

}  // namespace vemrado::tools
