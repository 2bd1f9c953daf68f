#include "client/foreign_file.h"
#include "client/input_file.h"
#include "client/text_encoding.h"
#include "failure.h"
#include "map/map_check.h"
#include "reader.h"

using namespace vemrado;
using namespace vemrado::capi;

namespace {

vkm_check_options DefaultCheck() {
    vkm_check_options options = {};
    options.size = sizeof options;
    return options;
}

size_t PlaceOfRule(const char* name) {
    const auto rule = name != nullptr ? map::FindRule(name) : std::nullopt;
    if (!rule)
        throw Failure(VKM_ERROR_ARGUMENT, std::string("there is no rule '") + (name ? name : "") + "'");
    return static_cast<size_t>(*rule);
}

map::RuleSet RulesOf(const vkm_check_options& options) {
    Require(options.only != nullptr || options.only_count == 0, "only: null, but a count");
    Require(options.ignore != nullptr || options.ignore_count == 0, "ignore: null, but a count");
    map::RuleSet rules;
    if (options.only == nullptr) rules.set();
    for (size_t i = 0; i < options.only_count; ++i) rules.set(PlaceOfRule(options.only[i]));
    for (size_t i = 0; i < options.ignore_count; ++i) rules.reset(PlaceOfRule(options.ignore[i]));
    return rules;
}

// Hands findings to the caller's function.
class CallersSink : public map::FindingSink {
  public:
    CallersSink(const vkm_reader& checked, vkm_on_finding onFinding, void* callbackContext)
        : reader(checked), decoder(checked.options.encoding), function(onFinding), context(callbackContext) {}

    void Take(const map::Finding& finding) override {
        const std::string field = decoder.Decode(finding.field);
        const std::string message = map::MessageOf(finding, field);
        const map::RuleText& rule = map::TextOf(finding.rule);
        const std::string name(rule.name);
        vkm_finding told = {};
        told.rule = name.c_str();
        told.severity = static_cast<vkm_severity>(rule.severity);
        told.file = reader.source->Name().c_str();
        told.line = static_cast<uint64_t>(finding.place.line);
        told.column = static_cast<uint64_t>(finding.place.column);
        told.message = message.c_str();
        told.field = finding.field.empty() ? nullptr : field.c_str();
        told.has_point = finding.point ? 1 : 0;
        if (finding.point) {
            told.point[0] = finding.point->x;
            told.point[1] = finding.point->y;
        }
        if (function(context, &told) != 0)
            throw Failure(VKM_ERROR_STOPPED, "stopped by the caller", reader.source->Name());
    }

  private:
    const vkm_reader& reader;
    client::TextDecoder decoder;
    vkm_on_finding function;
    void* context;
};

void Check(vkm_reader& reader, const map::RuleSet& rules, CallersSink& sink) {
    std::unique_ptr<SourceFile> file;
    ReadProgress progress;
    bool markSkipped = false;
    try {
        file = OpenOrFail(*reader.source, &markSkipped, progress);
    } catch (const client::ForeignFile& foreign) {
        std::string sentence = foreign.what();
        const std::string before = reader.source->Name() + ": ";
        if (sentence.starts_with(before)) sentence.erase(0, before.size());
        if (rules[static_cast<size_t>(map::Rule::notVkm)])
            sink.Take({map::Rule::notVkm, {}, {}, {sentence, {}}, std::nullopt});
        return;
    }
    map::CheckSettings settings;
    settings.rules = rules;
    settings.encoding = reader.options.encoding;
    map::CheckMap(BytesOf(*file, *reader.source, reader.options, progress), markSkipped, settings, sink);
}

}  // namespace

void vkm_check_options_init(vkm_check_options* options) {
    if (options != nullptr) *options = DefaultCheck();
}

vkm_status vkm_check(vkm_reader* reader, const vkm_check_options* options, vkm_on_finding on_finding,
                     void* context, vkm_error** error) {
    return Guarded(error, [&] {
        Require(reader != nullptr && on_finding != nullptr, "vkm_check: null");
        Require(options == nullptr || SaysSize(options->size),
                "vkm_check: the options do not say their size");
        const vkm_check_options known =
            options != nullptr ? KnownPart(*options, DefaultCheck()) : DefaultCheck();
        CallersSink sink(*reader, on_finding, context);
        Check(*reader, RulesOf(known), sink);
        return VKM_OK;
    });
}
