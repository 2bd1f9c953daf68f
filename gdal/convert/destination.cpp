#include "destination.h"

#include <cpl_conv.h>
#include <cpl_string.h>

#include <filesystem>

#include "checked_files.h"
#include "client/system.h"
#include "staged_output.h"

namespace vemrado::gdal {

namespace {

// What a full disk looks like through the layers between.
bool SaysDiskFull(const std::string& text) {
    return text.find("No space left") != std::string::npos || text.find("disk is full") != std::string::npos;
}

bool DiskIsFull(const std::string& path) {
    constexpr std::uintmax_t almostNothing = 65536;
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    const auto space = std::filesystem::space(folder.empty() ? "." : folder, error);
    return !error && space.available < almostNothing;
}

}  // namespace

Destination::Destination(const ConvertRequest& wanted, const OutputFormat& outputFormat, Diagnostics& found,
                         const ConvertReports& told)
    : request(wanted), format(outputFormat), diagnostics(found), reports(told) {}

Destination::~Destination() {
    layers.reset();
    if (request.output == standardOutputName) FlushStandardOutput();
}

// Name of a layer's file: town_lines.shp for town.shp, unless it is the only one.
std::string Destination::PathOfLayer(const char* layer, bool oneLayer) const {
    const std::string base = CPLGetBasename(path.c_str());
    const std::string file = oneLayer ? base : base + "_" + layer;
    return staged->PathOf(CPLFormFilename(nullptr, file.c_str(), CPLGetExtension(path.c_str())));
}

Problem Destination::Stopped() const {
    const char* state = "nothing was made";
    if (request.mode != OutputMode::create) state = "sheets that were written before stay";
    if (request.output == standardOutputName) state = "the output is partial";
    return {ConvertOutcome::stopped, name + ": stopped on request; " + state};
}

Problem Destination::CannotWrite(const std::string& reason) const {
    const std::string failed = name + ": cannot be written: ";
    if (SaysDiskFull(reason) || (staged != nullptr && DiskIsFull(path)))
        return {ConvertOutcome::diskFull, failed + "No space left on device"};
    return {ConvertOutcome::outputFailed, failed + reason};
}

Problem Destination::Failed() {
    if (!reports.goOn()) return Stopped();
    if (ReaderIsGone()) return Problem{ConvertOutcome::closed, ""};
    return CannotWrite(!FailedWrite().empty() ? FailedWrite() : diagnostics.TakeFailure());
}

// The schema is made where there is none; tables that are there are left alone unless they are to be added
// to.
std::optional<Problem> Destination::PrepareSchema() {
    if (layers->Ask("SELECT extname FROM pg_extension WHERE extname = 'postgis'").empty())
        return Problem{ConvertOutcome::outputFailed, name + ": the database has no PostGIS"};
    if (!layers->Begin()) return Failed();
    const bool named = !request.schema.empty();
    if (named && !layers->Run("CREATE SCHEMA IF NOT EXISTS \"" + request.schema + "\"")) return Failed();
    const std::string schema = named ? OutputLayers::Quoted(request.schema) : "current_schema()";
    const std::string there = layers->Ask(
        "SELECT tablename FROM pg_tables WHERE tablename IN ('lines', 'points', 'texts', 'parcels', "
        "'sheets') AND schemaname = " +
        schema);
    if (there.empty() || request.mode != OutputMode::create) return std::nullopt;
    return Problem{ConvertOutcome::badRequest,
                   name + ": the table " + there +
                       " is there already; --append adds to it, --update replaces sheets in it"};
}

std::optional<Problem> Destination::OpenExisting() {
    if (!layers->OpenExisting(path)) {
        const std::string reason = diagnostics.TakeFailure();
        return Problem{ConvertOutcome::outputFailed, name + ": cannot be opened: " + reason};
    }
    if (layers->IsPostgres()) return PrepareSchema();
    if (!layers->Begin()) return Failed();
    return std::nullopt;
}

std::optional<Problem> Destination::OpenStream(bool oneLayer) {
    if (request.mode != OutputMode::create)
        return Problem{ConvertOutcome::badRequest, "standard output cannot be added to"};
    if (IsTable(format) && !oneLayer)
        return Problem{ConvertOutcome::badRequest,
                       "--output: one table goes to standard output as CSV; --layers lines, points, texts or "
                       "parcels says which"};
    if (!layers->Create(CheckedStandardOutput())) return Failed();
    return std::nullopt;
}

std::optional<Problem> Destination::OpenFile() {
    const client::FileKind kind = client::KindOfFile(path);
    const bool isThere = kind == client::FileKind::regular;
    if (kind != client::FileKind::none && !isThere)
        return Problem{ConvertOutcome::badRequest, name + ": cannot be written: it is no regular file"};
    const bool addsTo = request.mode != OutputMode::create;
    if (addsTo && !layers->IsDatabase())
        return Problem{ConvertOutcome::badRequest,
                       name + ": only a GeoPackage, SQLite or PostgreSQL output can be added to"};
    if (addsTo && isThere) return OpenExisting();
    staged = std::make_unique<StagedOutput>(path);
    std::string reason;
    if (!staged->Make(reason)) return CannotWrite(reason);
    if (format.layout == Layout::separate) return std::nullopt;
    // Until it is put in its place nobody minds what a crash leaves of it.
    const CPLConfigOptionSetter unsynchronised("OGR_SQLITE_SYNCHRONOUS", "OFF", false);
    const CPLConfigOptionSetter withoutJournalFile("OGR_SQLITE_JOURNAL", "MEMORY", false);
    if (!layers->Create(staged->PathOf(CPLGetFilename(path.c_str()))) || !layers->Begin()) return Failed();
    return std::nullopt;
}

std::optional<Problem> Destination::Open(const OGRSpatialReference* target, bool oneLayer) {
    const bool isPostgres = EQUAL(format.driver->GetDescription(), "PostgreSQL");
    name = request.output;
    if (!request.nameInFolder.empty()) {
        name = CPLFormFilename(request.output.c_str(), request.nameInFolder.c_str(), nullptr);
        if (!format.extension.empty()) name += "." + format.extension;
    }
    const bool isStream = request.output == standardOutputName;
    if (isStream) name = "standard output";
    path = isStream || isPostgres || !request.nameInFolder.empty() ? name : client::FollowLinks(name);
    layers = std::make_unique<OutputLayers>(
        OutputSettings{format, request.schema, request.mode != OutputMode::create, request.box, target,
                       [this, oneLayer](const char* layer) { return PathOfLayer(layer, oneLayer); }});
    if (isStream) return OpenStream(oneLayer);
    return isPostgres ? OpenExisting() : OpenFile();
}

std::optional<Problem> Destination::Conclude() {
    const bool written = layers->Commit() && layers->Close();
    if (request.output == standardOutputName) FlushStandardOutput();
    if (!written || !FailedWrite().empty() || !diagnostics.Failure().empty()) return Failed();
    std::string reason;
    if (staged == nullptr || staged->PutInPlace(reason)) return std::nullopt;
    const bool full = SaysDiskFull(reason) || DiskIsFull(path);
    return Problem{full ? ConvertOutcome::diskFull : ConvertOutcome::outputFailed, reason};
}

}  // namespace vemrado::gdal
