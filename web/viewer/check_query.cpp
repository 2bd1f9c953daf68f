// The findings of a file for the page, in every language that it may turn to.

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "byte_source.h"
#include "json.h"
#include "map/map_check.h"
#include "queries.h"

namespace vemrado::web {
namespace {

constexpr std::array<std::pair<const char*, map::Language>, 3> languages = {
    {{"en", map::Language::english}, {"cs", map::Language::czech}, {"de", map::Language::german}}};

// Keeps the most severe findings, in the order of the file.
class FindingList : public map::FindingSink {
  public:
    FindingList(client::Encoding encoding, size_t mostKept) : decoder(encoding), most(mostKept) {}

    void Take(const map::Finding& finding) override {
        const auto severity = static_cast<size_t>(map::TextOf(finding.rule).severity);
        if (counts[severity]++ >= most) return;
        kept.push_back({severity, TextOf(finding)});
        // Rarely, so that each finding is looked at a few times only.
        if (kept.size() >= 2 * most) LeaveMostSevere();
    }

    std::string Finished() {
        LeaveMostSevere();
        Json answer;
        answer.Begin('{');
        for (size_t i = 0; i < counts.size(); ++i) answer.Member(map::severityNames[i], counts[i]);
        answer.Key("findings").Begin('[');
        for (const Kept& finding : kept) answer.Literal(finding.json);
        return answer.End(']').End('}').Text();
    }

  private:
    struct Kept {
        size_t severity;
        std::string json;
    };

    void LeaveMostSevere() {
        size_t room = most;
        std::array<size_t, map::severityNames.size()> wanted{};
        for (size_t severity = counts.size(); severity-- > 0;) {
            wanted[severity] = std::min(counts[severity], room);
            room -= wanted[severity];
        }
        std::erase_if(kept, [&](const Kept& finding) {
            if (wanted[finding.severity] == 0) return true;
            --wanted[finding.severity];
            return false;
        });
    }

    std::string TextOf(const map::Finding& finding) {
        json = Json();
        const map::RuleText& rule = map::TextOf(finding.rule);
        json.Begin('{').Member("severity",
                               std::string(map::severityNames[static_cast<size_t>(rule.severity)]));
        json.Member("rule", std::string(rule.name));
        PutMessages(finding);
        json.Member("line", finding.place.line).Member("column", finding.place.column);
        // The picture has north up.
        if (finding.point) json.Member("x", -finding.point->y).Member("y", -finding.point->x);
        return json.End('}').Text();
    }

    void PutMessages(const map::Finding& finding) {
        const std::string field = decoder.Decode(finding.field);
        json.Key("messages").Begin('{');
        for (const auto& [name, language] : languages)
            json.Member(name, map::MessageOf(finding, field, map::TranslatorTo(language)));
        json.End('}');
    }

    client::TextDecoder decoder;
    size_t most;
    std::vector<Kept> kept;
    std::array<size_t, map::severityNames.size()> counts{};  // of all findings
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
