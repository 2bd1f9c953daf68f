#include "map_states.h"

#include "client/input_file.h"
#include "client/standard_input.h"
#include "client/system.h"
#include "map_source.h"

namespace vemrado::tools {
namespace {

struct NoFindings : map::FindingSink {
    void Take(const map::Finding&) override {}
};

}  // namespace

bool ReadMapState(const std::string& name, client::Encoding encoding, map::MapState& state,
                  Environment& environment) {
    const std::string shownName = client::SystemTextToUtf8(client::ShownName(name.c_str()));
    try {
        MapSource source(name);
        NoFindings findings;
        map::CheckedReading reading(source.Bytes(), encoding, findings, &state);
        reading.Run();
        if (reading.Complete()) return true;
        environment.Error(shownName +
                          ": incomplete: its closing record &K is missing, so its last element is lost");
    } catch (const client::ForeignFile& foreign) {
        environment.Error(foreign.what());
    } catch (const client::UnreadableFile& unreadable) {
        environment.Error(unreadable.what());
    } catch (const Stopped&) {
        environment.Error(shownName + ": stopped on request; nothing was compared");
    }
    return false;
}

}  // namespace vemrado::tools
