#include "map/diff.h"

#include "failure.h"
#include "reader.h"

using namespace vemrado;
using namespace vemrado::capi;

namespace {

vkm_diff_options DefaultDiff() {
    vkm_diff_options options = {};
    options.size = sizeof options;
    options.tolerance = map::usualTolerance;
    return options;
}

struct NoFindings : map::FindingSink {
    void Take(const map::Finding&) override {}
};

void ReadState(const vkm_reader& reader, map::MapState& state) {
    ReadProgress progress;
    const std::unique_ptr<SourceFile> file = OpenOrFail(*reader.source, nullptr, progress);
    NoFindings findings;
    map::CheckedReading reading(BytesOf(*file, *reader.source, reader.options, progress),
                                reader.options.encoding, findings, &state);
    reading.Run();
    if (!reading.Complete())
        throw Failure(VKM_ERROR_READ,
                      "incomplete: its closing record &K is missing, so its last element is lost",
                      reader.source->Name());
}

// Hands changes to the caller's function.
class CallersSink : public map::ChangeSink {
  public:
    CallersSink(const vkm_reader& old, const vkm_reader& now, vkm_on_change onChange, void* callbackContext)
        : oldDecoder(old.options.encoding),
          newDecoder(now.options.encoding),
          function(onChange),
          context(callbackContext) {}

    void Take(const map::Change& change) override {
        const std::string name(map::changeNames[static_cast<size_t>(change.kind)]);
        const std::string thing(map::thingNames[static_cast<size_t>(change.thing)]);
        std::string oldJson, newJson;
        vkm_change told = {};
        told.change = name.c_str();
        told.kind = thing.c_str();
        told.layer = change.layer;
        TakeSide(change.old, oldDecoder, oldJson, told.old_line, told.old_json);
        TakeSide(change.now, newDecoder, newJson, told.new_line, told.new_json);
        if (function(context, &told) != 0) throw Failure(VKM_ERROR_STOPPED, "stopped by the caller");
    }

  private:
    static void TakeSide(const std::optional<map::ChangeSide>& side, client::TextDecoder& decoder,
                         std::string& json, uint64_t& line, const char*& text) {
        if (!side) return;
        json = map::SideJson(*side, decoder);
        line = static_cast<uint64_t>(side->fileLine);
        text = json.c_str();
    }

    client::TextDecoder oldDecoder, newDecoder;
    vkm_on_change function;
    void* context;
};

}  // namespace

void vkm_diff_options_init(vkm_diff_options* options) {
    if (options != nullptr) *options = DefaultDiff();
}

vkm_status vkm_diff(vkm_reader* old_map, vkm_reader* new_map, const vkm_diff_options* options,
                    vkm_on_change on_change, void* context, vkm_error** error) {
    return Guarded(error, [&] {
        Require(old_map != nullptr && new_map != nullptr && on_change != nullptr, "vkm_diff: null");
        Require(options == nullptr || SaysSize(options->size), "vkm_diff: the options do not say their size");
        const vkm_diff_options known =
            options != nullptr ? KnownPart(*options, DefaultDiff()) : DefaultDiff();
        Require(known.tolerance >= 0, "tolerance: below 0");
        map::StateValues values;
        map::MapState old(values);
        map::MapState now(values);
        ReadState(*old_map, old);
        ReadState(*new_map, now);
        CallersSink sink(*old_map, *new_map, on_change, context);
        map::CompareMaps(old, now, values, known.tolerance, sink);
        return VKM_OK;
    });
}
