#include "common_options.h"

#include <vector>

#include "client/axis_orientation.h"
#include "program.h"

namespace vemrado::tools {

void AddFileArgument(CLI::App& command, std::string& file) {
    command.add_option("FILE", file, "The VKM file, or an archive that holds one; - is standard input")
        ->type_name("")
        ->required();
}

void AddEncodingOption(Program& program, CLI::App& command, client::Encoding& encoding) {
    const auto choose = [&encoding](const std::string& name) {
        const auto found = client::FindEncoding(name);
        if (!found) throw CLI::ValidationError("--encoding", "there is no encoding '" + name + "'");
        encoding = *found;
    };
    CLI::Option* option = command.add_option_function<std::string>(
        "-e,--encoding", choose, "Encoding of the file's texts: windows-1250, cp852, iso-8859-2 or utf-8");
    option->type_name("NAME")->default_str(std::string(client::encodingNames[static_cast<size_t>(encoding)]));
    program.SetChoices(*option, {client::encodingNames.begin(), client::encodingNames.end()});
}

void AddOrientationOption(Program& program, CLI::App& command, int& code) {
    const auto choose = [&code](const std::string& text) {
        const auto found = client::FindAxisOrientation(text);
        if (!found)
            throw CLI::ValidationError("--orientation", "there is no axis orientation '" + text + "'");
        code = *found;
    };
    std::vector<std::string> names;
    std::string all;
    for (const client::AxisOrientation& orientation : client::axisOrientations) {
        names.emplace_back(orientation.name);
        all +=
            (names.size() % 4 == 1 ? "\n" : "  ") + names.back() + " = " + std::to_string(orientation.code);
    }
    CLI::Option* option = command.add_option_function<std::string>(
        "--orientation", choose, "What a point (x, y) of the file becomes, by name or number:" + all);
    option->type_name("AXES")->default_str(std::string(client::AxisOrientationName(code)));
    program.SetChoices(*option, names);
}

}  // namespace vemrado::tools
