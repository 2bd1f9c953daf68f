// The findings of a file for the page, in every language that it may turn to.

#include <array>
#include <utility>

#include "byte_source.h"
#include "json.h"
#include "map/map_check.h"
#include "queries.h"

namespace vemrado::web {
namespace {

constexpr std::array<std::pair<const char*, map::Language>, 3> languages = {
    {{"en", map::Language::english}, {"cs", map::Language::czech}, {"de", map::Language::german}}};

class FindingList : public map::FindingSink {
  public:
    FindingList(client::Encoding encoding, size_t mostKept) : decoder(encoding), most(mostKept) {
        json.Begin('[');
    }

    void Take(const map::Finding& finding) override {
        ++counts[static_cast<size_t>(map::TextOf(finding.rule).severity)];
        if (kept++ >= most) return;
        const map::RuleText& rule = map::TextOf(finding.rule);
        json.Begin('{').Member("severity",
                               std::string(map::severityNames[static_cast<size_t>(rule.severity)]));
        json.Member("rule", std::string(rule.name));
        PutMessages(finding);
        json.Member("line", finding.place.line).Member("column", finding.place.column);
        // The picture has north up.
        if (finding.point) json.Member("x", -finding.point->y).Member("y", -finding.point->x);
        json.End('}');
    }

    std::string Finished() {
        Json answer;
        json.End(']');
        answer.Begin('{');
        for (size_t i = 0; i < counts.size(); ++i) answer.Member(map::severityNames[i], counts[i]);
        return answer.Key("findings").Literal(json.Text()).End('}').Text();
    }

  private:
    void PutMessages(const map::Finding& finding) {
        const std::string field = decoder.Decode(finding.field);
        json.Key("messages").Begin('{');
        for (const auto& [name, language] : languages)
            json.Member(name, map::MessageOf(finding, field, map::TranslatorTo(language)));
        json.End('}');
    }

    client::TextDecoder decoder;
    size_t most;
    size_t kept = 0;
    std::array<size_t, map::severityNames.size()> counts{};
    Json json;
};

}  // namespace

std::string Check(const Sheet& sheet, size_t most) {
    FindingList findings(sheet.Encoding(), most);
    map::CheckSettings settings;
    settings.encoding = sheet.Encoding();
    settings.codes = map::LoadKnownCodes();
    const PageBytes bytes = BytesOf(sheet.File());
    map::CheckMap(bytes.source, bytes.markSkipped, settings, findings);
    return findings.Finished();
}

}  // namespace vemrado::web
