#include "sheet.h"

#include <cpl_string.h>
#include <cpl_vsi.h>

#include <chrono>
#include <memory>
#include <utility>

#include "last_change.h"
#include "virtual_files.h"

namespace vemrado::gdal {

namespace {

int64_t SizeOf(const std::string& name) {
    VSIStatBufL found;
    if (VSIStatL(name.c_str(), &found) == 0) return static_cast<int64_t>(found.st_size);
    FileReading reading(name);
    std::vector<char> block(1 << 16);
    int64_t size = 0;
    while (const size_t got = reading.Read(block.data(), block.size())) size += static_cast<int64_t>(got);
    return size;
}

}  // namespace

FileStamp StampOf(const std::string& file) {
    return {SizeOf(file), LastChangeOf(file), {}};
}

// FNV-1a: it tells a change, and is no protection against somebody who wants to hide one.
std::string HashOf(const std::string& file) {
    constexpr uint64_t prime = 1099511628211u;
    uint64_t hash = 14695981039346656037u;
    FileReading reading(file);
    std::vector<char> block(1 << 18);
    while (const size_t got = reading.Read(block.data(), block.size())) {
        for (size_t i = 0; i < got; ++i) hash = (hash ^ static_cast<unsigned char>(block[i])) * prime;
    }
    return CPLString().Printf("%016llx", static_cast<unsigned long long>(hash));
}

Sheet::Sheet(const std::string& file, const std::string& name, const OpenSettings& settings,
             std::function<bool()> stopRequested) {
    source.files = {file};
    source.names = {name};
    source.states.resize(1);
    source.encoding = settings.encoding;
    source.angleUnit = settings.angleUnit;
    source.splitByCode = settings.splitByCode;
    guessEncoding = settings.guessEncoding;
    source.axisOrientation = settings.axisOrientation;
    source.stopRequested = std::move(stopRequested);
}

bool Sheet::LookAtStart() {
    client::EncodingEvidence evidence;
    if (!CheckMapFile(source.files.front(), source.names.front(), evidence)) return false;
    source.states.front().checked = true;
    if (guessEncoding) source.encoding = evidence.Guess().value_or(source.encoding);
    return true;
}

bool Sheet::Read() {
    constexpr size_t mostVertices = 1000000;
    if (!LookAtStart()) return false;
    ElementReader reader(source, Content::everything);
    size_t vertices = 0;
    while (reader.State() == ReadState::reading) {
        Batch batch;
        reader.Fill(batch);
        Count(facts.layers, batch);
        vertices += batch.vertices.size() + batch.texts.size();
        if (vertices > mostVertices) {
            allKept = false;
            kept.clear();
        }
        if (allKept) kept.push_back(std::move(batch));
    }
    header = reader.LastHeader();
    facts.mapScale = header.mapScale;
    facts.complete = !source.states.front().truncated;
    return reader.State() == ReadState::complete;
}

bool Sheet::ReadAlone(const std::function<bool(const Batch&)>& visit) {
    return LookAtStart() && ReadThrough(visit);
}

bool Sheet::ForEach(const std::function<bool(const Batch&)>& visit) {
    if (allKept) {
        for (const Batch& batch : kept) {
            if (source.stopRequested && source.stopRequested()) return false;
            if (!visit(batch)) return false;
        }
        return true;
    }
    return ReadThrough(visit);
}

bool Sheet::ReadThrough(const std::function<bool(const Batch&)>& visit) {
    ElementReader reader(source, Content::everything);
    Batch batch;
    while (reader.State() == ReadState::reading) {
        reader.Fill(batch);
        if (!visit(batch)) return false;
    }
    return reader.State() == ReadState::complete;
}

}  // namespace vemrado::gdal
