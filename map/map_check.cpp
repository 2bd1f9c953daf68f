#include "map/map_check.h"

#include <utility>

#include "map/checked_reading.h"

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

void CheckMap(ByteSource source, bool markSkipped, const CheckSettings& settings, FindingSink& sink) {
    Selection selection(settings.rules, sink);
    CheckedReading reading(std::move(source), settings.encoding, selection, nullptr);
    if (markSkipped) reading.NoteByteOrderMark();
    reading.Run();
}

}  // namespace vemrado::map
