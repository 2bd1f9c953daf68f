// vkm check: what is wrong with maps, with its place in the file. The rules are described in docs/check.md.

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

#include "check_pages.h"
#include "client/atomic_output.h"
#include "client/input_file.h"
#include "client/standard_input.h"
#include "client/system.h"
#include "commands.h"
#include "common_options.h"
#include "feature_file.h"
#include "finding_report.h"
#include "input_progress.h"
#include "inputs.h"
#include "map/map_check.h"
#include "map_source.h"
#include "program.h"
#include "stop_watch.h"

namespace vemrado::tools {
namespace {

constexpr uint64_t defaultMost = 10;
// Names for the rules that look at lines of the file, and for those that look at the map.
constexpr const char* fileGroup = "file";
constexpr const char* mapGroup = "map";

struct CheckOptions {
    InputOptions inputs;
    bool json = false;
    bool strict = false;
    bool listRules = false;
    std::string explained;
    std::vector<std::string> ignored;
    std::vector<std::string> only;
    std::optional<uint64_t> most;
    EncodingChoice encoding;
    std::string output;
};

map::Rule RuleOf(const std::string& name) {
    const auto rule = map::FindRule(name);
    if (!rule) throw Failure(exitUsage, "there is no rule '" + name + "'; 'vkm check --rules' lists them");
    return *rule;
}

// Rules by name, or all of a group.
map::RuleSet RulesOf(const std::vector<std::string>& names) {
    map::RuleSet rules;
    for (const std::string& name : names) {
        if (name == fileGroup) {
            rules |= map::FileRules();
        } else if (name == mapGroup) {
            rules |= ~map::FileRules();
        } else {
            rules.set(static_cast<size_t>(RuleOf(name)));
        }
    }
    return rules;
}

map::RuleSet SelectedRules(const CheckOptions& options) {
    const map::RuleSet all = map::RuleSet().set();
    return (options.only.empty() ? all : RulesOf(options.only)) & ~RulesOf(options.ignored);
}

int ListRules(Environment& environment) {
    for (size_t i = 0; i < map::ruleCount; ++i) {
        const map::RuleText& rule = map::TextOf(static_cast<map::Rule>(i));
        constexpr size_t nameWidth = 24;
        constexpr size_t severityWidth = 9;
        std::string row(rule.name);
        row.resize(std::max(row.size() + 1, nameWidth), ' ');
        row += PaddedRight(TranslatedText(map::severityNames[static_cast<size_t>(rule.severity)]),
                           severityWidth);
        environment.output.Write(row + TranslatedText(rule.summary) + "\n");
    }
    return exitDone;
}

int ExplainRule(const std::string& name, Environment& environment) {
    environment.output.Write(PageOfRule(map::TextOf(RuleOf(name)).name));
    return exitDone;
}

// What is no map is a finding too.
map::Finding ForeignFinding(const client::ForeignFile& foreign, const std::string& shownName) {
    std::string sentence = foreign.what();
    if (sentence.starts_with(shownName + ": ")) sentence.erase(0, shownName.size() + 2);
    return {map::Rule::notVkm, {}, {}, {sentence, {}}, std::nullopt};
}

// Findings on their way to the report. Behind the end of the file those of the whole map are looked for,
// which takes seconds in a large one; a stop ends the program then.
class StoppableCheck : public map::FindingSink {
  public:
    StoppableCheck(const std::string& name, map::FindingSink& next, Environment& around)
        : shownName(name), sink(next), environment(around) {}

    map::ByteSource Watched(map::ByteSource source) {
        return [this, source = std::move(source)](char* to, size_t count) {
            const size_t got = source(to, count);
            if (got == 0 && !watch) {
                environment.output.Flush();
                watch.emplace([this] {
                    environment.Error(StoppedText());
                    std::_Exit(exitInput);
                });
            }
            return got;
        };
    }
    void Take(const map::Finding& finding) override {
        watch.reset();
        sink.Take(finding);
    }
    std::string StoppedText() const {
        return shownName + ": stopped on request; the findings are not complete";
    }

  private:
    const std::string& shownName;
    map::FindingSink& sink;
    Environment& environment;
    std::optional<StopWatch> watch;
};

// False when the file could not be read to its end, which has been said.
bool CheckFile(const Input& input, const EncodingChoice& encoding, map::CheckSettings settings,
               FindingReport& report, Environment& environment) {
    if (!input.problem.empty()) {
        environment.Error(input.problem);
        return false;
    }
    const std::string shownName = client::SystemTextToUtf8(client::ShownName(input.name.c_str()));
    StoppableCheck check(shownName, report, environment);
    try {
        if (!ChooseEncoding(encoding, input.name, environment, settings.encoding)) return false;
        report.BeginFile(shownName, settings.encoding);
        MapSource source(input.name);
        map::CheckMap(check.Watched(source.Bytes()), source.MarkSkipped(), settings, check);
        return true;
    } catch (const client::ForeignFile& foreign) {
        if (settings.rules[static_cast<size_t>(map::Rule::notVkm)])
            report.Take(ForeignFinding(foreign, shownName));
        return true;
    } catch (const client::UnreadableFile& unreadable) {
        environment.output.Flush();
        environment.Error(unreadable.what());
    } catch (const Stopped&) {
        environment.output.Flush();
        environment.Error(check.StoppedText());
    }
    return false;
}

void WritePage(const FindingPage& page, const std::string& output) {
    try {
        page.Write(output);
    } catch (const client::OutputError& error) {
        throw Failure(exitInternal, error.what());
    }
}

int RunCheck(const CheckOptions& options, Environment& environment) {
    if (options.listRules) return ListRules(environment);
    if (!options.explained.empty()) return ExplainRule(options.explained, environment);
    const std::vector<Input> inputs = FindInputs(options.inputs);
    map::CheckSettings settings;
    settings.rules = SelectedRules(options);
    if ((settings.rules & ~map::FileRules()).any()) settings.codes = map::LoadKnownCodes();
    // Programs get everything unless they ask for less.
    const uint64_t most = options.json ? std::numeric_limits<uint64_t>::max() : defaultMost;
    FindingReport report(environment.output, {options.json, options.most.value_or(most)});
    std::optional<FeatureFile> features;
    FindingPage page;
    const bool isPage = options.output.ends_with(".html");
    if (isPage) {
        report.AddTo(page);
    } else if (!options.output.empty()) {
        report.AddTo(features.emplace(options.output));
    }
    bool allRead = true;
    InputProgress progress(inputs);
    for (const Input& input : inputs) {
        if (client::StopRequested()) break;
        allRead = CheckFile(input, options.encoding, settings, report, environment) && allRead;
        progress.Finish(input);
    }
    if (features) features->Write();
    if (isPage) WritePage(page, options.output);
    report.WriteSummary();
    const bool faulty = report.Count(map::Severity::error) + report.Count(map::Severity::warning) > 0 ||
                        (options.strict && report.Count(map::Severity::note) > 0);
    return allRead && !faulty ? exitDone : exitInput;
}

}  // namespace

void AddCheckCommand(Program& program) {
    const auto options = std::make_shared<CheckOptions>();
    const CommandText text = {
        "check",
        "Say what is wrong with files, with line and column",
        "The reader of a map passes over what it does not understand. This command tells it: each finding "
        "has "
        "its place in the file, its severity and its rule, in the form in which compilers report, so that "
        "editors jump there. A summary by rule stands at the end.\n\n"
        "The exit code is 0 without errors and warnings and 1 with them.",
        {{"vkm check map.vkm", "what is wrong with a map"},
         {"vkm check --json sheets/*.vkm > findings.jsonl", "for programs, one object a line"},
         {"vkm check --only number-cut,number-range map.vkm", "two rules only"},
         {"vkm check --explain number-cut", "what a rule means, with an example"},
         {"vkm check map.vkm -o faults.gpkg", "as points that a GIS opens over the map"},
         {"zcat map.vkm.gz | vkm check --strict -", "a compressed file; notes count too"}}};
    CLI::App& command =
        program.Add(text, [options](Environment& environment) { return RunCheck(*options, environment); });
    AddInputOptions(command, options->inputs);
    command.parse_complete_callback([options] {  // in place of that of the inputs
        const bool needsInput = !options->listRules && options->explained.empty();
        if (needsInput && options->inputs.names.empty() && options->inputs.list.empty())
            throw CLI::RequiredError("FILE, --files-from, --rules or --explain");
    });
    command.add_flag("--json", options->json, "Write findings as JSON Lines");
    command
        .add_option("--max", options->most,
                    "Show so many findings of each rule in a file (default: 10, with --json all)")
        ->type_name("N")
        ->check(NoNegativeNumber());
    command
        .add_option("-o,--output", options->output,
                    "Write all findings as points too, in a format that GDAL writes, such as GeoPackage,\nor "
                    "as a page (.html)")
        ->type_name("OUT");
    command.add_flag("--strict", options->strict, "Notes count for the exit code too");
    std::vector<std::string> names;
    for (size_t i = 0; i < map::ruleCount; ++i)
        names.emplace_back(map::TextOf(static_cast<map::Rule>(i)).name);
    std::vector<std::string> selectable = names;
    selectable.insert(selectable.end(), {fileGroup, mapGroup});
    const auto addRules = [&](const char* name, std::vector<std::string>& rules, const char* says) {
        CLI::Option* option = command.add_option(name, rules, says)
                                  ->type_name("RULE,...")
                                  ->delimiter(',')
                                  ->allow_extra_args(false);
        program.SetChoices(*option, selectable);
    };
    addRules("--only", options->only,
             "Look for these rules only; file and map are all that need a line or the map");
    addRules("--ignore", options->ignored, "Leave these rules out");
    command.add_flag("--rules", options->listRules, "List the rules and exit");
    CLI::Option* explain =
        command.add_option("--explain", options->explained, "Explain a rule with an example and exit")
            ->type_name("RULE");
    program.SetChoices(*explain, names);
    AddEncodingOption(program, command, options->encoding);
}

}  // namespace vemrado::tools
