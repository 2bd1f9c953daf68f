#include "map/map_check.h"

#include <utility>

#include "map/checked_reading.h"
#include "map/map_rules.h"

namespace vemrado::map {
namespace {

class Selection : public FindingSink {
  public:
    Selection(const RuleSet& wanted, FindingSink& next) : rules(wanted), sink(next) {}
    void Take(const Finding& finding) override {
        if (rules[static_cast<size_t>(finding.rule)]) sink.Take(finding);
    }

  private:
    const RuleSet& rules;
    FindingSink& sink;
};

}  // namespace

RuleSet FileRules() {
    RuleSet rules;
    for (size_t rule = 0; rule < static_cast<size_t>(Rule::outsideCountry); ++rule) rules.set(rule);
    return rules;
}

void CheckMap(ByteSource source, bool markSkipped, const CheckSettings& settings, FindingSink& sink) {
    Selection selection(settings.rules, sink);
    const bool wholeMap = MapRules::Wanted(settings.rules);
    MapRules rules(settings.rules, settings.encoding);
    CheckedReading reading(std::move(source), settings.encoding, selection, wholeMap ? &rules : nullptr);
    rules.Attach(reading);
    if ((settings.rules & ~FileRules()).any()) reading.CheckValues(settings.codes);
    if (markSkipped) reading.NoteByteOrderMark();
    reading.Run();
    if (wholeMap) rules.Finish(selection);
}

}  // namespace vemrado::map
