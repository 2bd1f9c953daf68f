#include "map_source.h"

#include "client/stop_request.h"

namespace vemrado::tools {

MapSource::MapSource(const std::string& name) : bytes(name) {
    if (bytes.Length() > shortFile) bar.emplace("Reading");
}

map::ByteSource MapSource::Bytes() {
    return [this](char* to, size_t count) {
        const size_t got = bytes.Read(to, count);
        done += got;
        const bool goesOn = bar ? bar->Draw(static_cast<double>(done) / static_cast<double>(bytes.Length()))
                                : !client::StopRequested();
        if (!goesOn) throw Stopped();
        return got;
    };
}

}  // namespace vemrado::tools
