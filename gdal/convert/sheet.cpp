#include "sheet.h"

#include <cpl_string.h>
#include <cpl_vsi.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <utility>

#include "client/text_encoding.h"
#include "virtual_files.h"

namespace vemrado::gdal {

namespace {

namespace fs = std::filesystem;

// Reads a file through the module's own eyes, archives and all.
class FileReading {
  public:
    explicit FileReading(const std::string& name)
        : file(virtualFiles.open(virtualFiles.context, name.c_str())) {}
    FileReading(const FileReading&) = delete;
    FileReading& operator=(const FileReading&) = delete;
    ~FileReading() {
        if (file != nullptr) virtualFiles.close(file);
    }

    size_t Read(char* to, size_t count) {
        const int64_t got = file != nullptr ? virtualFiles.read(file, to, count) : 0;
        return got > 0 ? static_cast<size_t>(got) : 0;
    }

  private:
    void* file;
};

// The file on disk that a name leads to or into.
fs::path OnDisk(const std::string& name) {
    std::error_code none;
    fs::path path = name;
    while (path.has_relative_path() && !fs::is_regular_file(path, none)) path = path.parent_path();
    return path;
}

int64_t ModifiedOf(const std::string& name) {
    VSIStatBufL found;
    const std::string file = name.starts_with("/vsi") ? name : OnDisk(name).string();
    if (VSIStatExL(file.c_str(), &found, VSI_STAT_EXISTS_FLAG | VSI_STAT_SIZE_FLAG) != 0) return 0;
    return static_cast<int64_t>(found.st_mtime);
}

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

OGREnvelope SheetFacts::Extent() const {
    OGREnvelope all;
    for (const LayerTotals& layer : layers) {
        if (layer.features > 0) all.Merge(layer.extent);
    }
    return all;
}

FileStamp StampOf(const std::string& file) {
    return {SizeOf(file), ModifiedOf(file), {}};
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

SheetHeader ReadSheetHeader(const std::string& file, client::Encoding encoding) {
    std::string start(1 << 14, '\0');
    FileReading reading(file);
    start.resize(reading.Read(start.data(), start.size()));
    SheetHeader header;
    std::string comments;
    for (size_t begin = 0; begin < start.size();) {
        const size_t end = std::min(start.find('\n', begin), start.size());
        std::string line = start.substr(begin, end - begin);
        begin = end + 1;
        while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
        if (line.empty()) continue;
        if (line.starts_with("&D ")) {
            header.date = line.substr(3, line.find(' ', 3) - 3);
        } else if (line.starts_with("&*")) {
            line.erase(0, line.starts_with("&* ") ? 3 : 2);
            comments += (comments.empty() ? "" : "\n") + line;
        } else if (!line.starts_with("&V") && !line.starts_with("&R")) {
            break;
        }
    }
    header.title = client::TextDecoder(encoding).Decode(comments);
    return header;
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

void Sheet::Count(const Batch& batch) {
    for (const LineRecord& line : batch.lines) {
        gdal::Count(facts.layers[lineLayer], EnvelopeOf(batch, line));
        if (line.strokes > 1) ++facts.layers[lineLayer].multiLines;
    }
    for (const PointRecord& point : batch.points)
        gdal::Count(facts.layers[pointLayer], EnvelopeOf(batch, point));
    for (const TextRecord& text : batch.texts) gdal::Count(facts.layers[textLayer], EnvelopeOf(batch, text));
}

bool Sheet::LookAtStart() {
    client::EncodingEvidence evidence;
    if (!CheckMapFile(source.files.front(), source.names.front(), evidence)) return false;
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
        Count(batch);
        vertices += batch.vertices.size() + batch.texts.size();
        if (vertices > mostVertices) {
            allKept = false;
            kept.clear();
        }
        if (allKept) kept.push_back(std::move(batch));
    }
    facts.mapScale = reader.MapScale();
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
