#include "collection.h"

#include <cpl_conv.h>
#include <cpl_string.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "checked_files.h"
#include "client/system.h"
#include "country_parcels.h"
#include "layer_styles.h"
#include "postgis.h"
#include "staged_output.h"
#include "styles.h"

namespace vemrado::gdal {

namespace {

using Clock = std::chrono::steady_clock;

constexpr OutputKind mapLayers[] = {outputLines, outputPoints, outputTexts};
constexpr OutputKind everyKind = outputKinds;
constexpr const char* layerNames[] = {"lines", "points", "texts", "parcels", "sheets"};
constexpr FieldSchema sourceField = {"source", OFTString, "File it comes from"};
constexpr FieldSchema scaleField = {"map_scale", OFTReal, "Map scale number of that file"};

const LayerSchema& SchemaOf(OutputKind kind) {
    if (kind == outputLines) return lineSchema;
    return kind == outputPoints ? pointSchema : textSchema;
}

double SecondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

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

Collection::Collection(const ConvertRequest& wantedRequest, const OpenSettings& openSettings,
                       const OutputFormat& outputFormat, Diagnostics& found, const ConvertReports& told,
                       std::vector<SheetReport>& list)
    : request(wantedRequest),
      settings(openSettings),
      format(outputFormat),
      diagnostics(found),
      reports(told),
      sheets(list),
      table(openSettings.reference ? &*openSettings.reference : nullptr) {
    const OGRSpatialReference* reference = settings.reference ? &*settings.reference : nullptr;
    for (const OutputKind kind : mapLayers) {
        definitions[kind] = std::make_unique<Definition>(SchemaOf(kind), reference);
        if (!request.manySheets) continue;
        definitions[kind]->AddField(sourceField);
        definitions[kind]->AddField(scaleField);
    }
}

Collection::~Collection() = default;

std::string Collection::ShownOutput() const {
    return output;
}

bool Collection::InPlace() const {
    return staged == nullptr;
}

// Name of a layer's file: town_lines.shp for town.shp, unless it is the only one.
std::string Collection::PathOf(const char* layer) const {
    const std::string base = CPLGetBasename(output.c_str());
    const bool only = std::ranges::count(wanted, true) == 1;
    const std::string name = only ? base : base + "_" + layer;
    return staged->PathOf(CPLFormFilename(nullptr, name.c_str(), CPLGetExtension(output.c_str())));
}

std::optional<Problem> Collection::Stopped() const {
    return Problem{ConvertOutcome::stopped,
                   ShownOutput() + ": stopped on request; " +
                       (request.mode != OutputMode::create ? "sheets that were written before stay"
                                                           : "nothing was made")};
}

std::optional<Problem> Collection::OutputFailed() {
    const std::string failed = ShownOutput() + ": cannot be written: ";
    if (!reports.goOn()) return Stopped();
    const std::string reason = !FailedWrite().empty() ? FailedWrite() : diagnostics.TakeFailure();
    if (SaysDiskFull(reason) || (staged != nullptr && DiskIsFull(output)))
        return Problem{ConvertOutcome::diskFull, failed + "No space left on device"};
    return Problem{ConvertOutcome::outputFailed, failed + reason};
}

std::optional<Problem> Collection::ChooseLayers() {
    for (const std::string& name : request.layers) {
        const auto* found = std::ranges::find(std::begin(layerNames), std::begin(layerNames) + 4, name);
        const auto kind = static_cast<size_t>(found - std::begin(layerNames));
        if (kind > outputParcels || (kind == outputParcels && !settings.parcels))
            return Problem{ConvertOutcome::badRequest, "there is no layer '" + name + "'"};
        wanted[kind] = true;
    }
    if (request.indexOnly) {
        wanted[outputSheets] = true;
    } else if (request.layers.empty()) {
        wanted = {true, true, true, settings.parcels, false};
    }
    return std::nullopt;
}

std::optional<Problem> Collection::OpenDatabase(const OutputSettings& chosen, const std::string& name) {
    if (!layers->OpenExisting(name)) {
        const std::string reason = diagnostics.TakeFailure();
        return Problem{ConvertOutcome::outputFailed, ShownOutput() + ": cannot be opened: " + reason};
    }
    if (!layers->IsPostgres()) return std::nullopt;
    if (layers->Ask("SELECT extname FROM pg_extension WHERE extname = 'postgis'").empty())
        return Problem{ConvertOutcome::outputFailed, ShownOutput() + ": the database has no PostGIS"};
    if (!layers->Begin()) return OutputFailed();
    if (!chosen.schema.empty() && !layers->Run("CREATE SCHEMA IF NOT EXISTS \"" + chosen.schema + "\""))
        return OutputFailed();
    const std::string schema =
        chosen.schema.empty() ? "current_schema()" : OutputLayers::Quoted(chosen.schema);
    const std::string there = layers->Ask(
        "SELECT tablename FROM pg_tables WHERE tablename IN ('lines', 'points', 'texts', 'parcels', "
        "'sheets') "
        "AND schemaname = " +
        schema);
    if (!there.empty() && request.mode == OutputMode::create)
        return Problem{ConvertOutcome::badRequest,
                       ShownOutput() + ": the table " + there +
                           " is there already; --append adds to it, --update replaces "
                           "sheets in it"};
    return std::nullopt;
}

std::optional<Problem> Collection::OpenOutput(OutputSettings& chosen) {
    const bool isPostgres = EQUAL(format.driver->GetDescription(), "PostgreSQL");
    output = request.output;
    if (!request.nameInFolder.empty()) {
        output = CPLFormFilename(request.output.c_str(), request.nameInFolder.c_str(), nullptr);
        if (!format.extension.empty()) output += "." + format.extension;
    } else if (!isPostgres) {
        output = client::FollowLinks(request.output);
    }
    layers = std::make_unique<OutputLayers>(chosen);
    if (isPostgres) return OpenDatabase(chosen, output);
    const client::FileKind kind = client::KindOfFile(output);
    if (kind != client::FileKind::none && kind != client::FileKind::regular)
        return Problem{ConvertOutcome::badRequest, output + ": cannot be written: it is no regular file"};
    if (chosen.keepExisting && !layers->IsDatabase())
        return Problem{ConvertOutcome::badRequest,
                       output + ": only a GeoPackage, SQLite or PostgreSQL output can be added to"};
    if (chosen.keepExisting && kind == client::FileKind::regular) {
        if (auto problem = OpenDatabase(chosen, output)) return problem;
        return layers->Begin() ? std::nullopt : OutputFailed();
    }
    staged = std::make_unique<StagedOutput>(output);
    std::string reason;
    if (!staged->Make(reason)) {
        const bool full = SaysDiskFull(reason);
        return Problem{full ? ConvertOutcome::diskFull : ConvertOutcome::outputFailed,
                       output + ": cannot be written: " + reason};
    }
    if (format.layout == Layout::separate) return std::nullopt;
    // Until it is put in its place nobody minds what a crash of the machine leaves of it.
    const CPLConfigOptionSetter careless("OGR_SQLITE_SYNCHRONOUS", "OFF", false);
    if (!layers->Create(staged->PathOf(CPLGetFilename(output.c_str()))) || !layers->Begin())
        return OutputFailed();
    return std::nullopt;
}

bool Collection::AddLayers(const SheetFacts& first, OutputKind only) {
    layersAdded = true;
    firstScale = first.mapScale;
    // Programs want one type of geometry in a layer; of many sheets the next may have lines of several
    // strokes.
    const bool multi = request.manySheets || first.layers[lineLayer].multiLines > 0;
    const OGRwkbGeometryType types[] = {multi ? wkbMultiLineString : wkbLineString, wkbPoint, wkbPoint};
    for (const OutputKind kind : mapLayers) {
        const bool wants = Wants(kind) && (only == everyKind || only == kind);
        if (wants && !layers->Add(kind, *definitions[kind]->Get(), types[kind])) return false;
    }
    if (Wants(outputLines)) linesBefore = layers->LastIdentifier(outputLines);
    return true;
}

bool Collection::IsUnchanged(size_t input, FileStamp& stamp) {
    const SheetTable::Row* row = table.Find(request.inputs[input]);
    if (row == nullptr || request.mode != OutputMode::update) return false;
    stamp = StampOf(request.inputs[input]);
    if (!stamp.SameTime(row->stamp)) {
        stamp.hash = HashOf(request.inputs[input]);
        if (stamp.size != row->stamp.size || stamp.hash != row->stamp.hash) return false;
    }
    sheets[input] = row->report;
    extents[input] = row->extent;
    sheets[input].input = input;
    return true;
}

bool Collection::WriteFeature(OutputKind kind, std::unique_ptr<OGRFeature> feature, const Sheet& sheet) {
    if (request.manySheets) {
        const int fields = feature->GetFieldCount();
        feature->SetField(fields - 2, sheet.Name().c_str());
        feature->SetField(fields - 1, sheet.Facts().mapScale);
    }
    return layers->Write(kind, *feature);
}

bool Collection::WriteBatch(const Batch& batch, OutputKind kind, const Sheet& sheet) {
    FeatureNeeds needs;
    // Databases have no room for the styles of single features.
    if (!layers->IsDatabase() && !settings.dataDirectory.empty()) {
        static const Styles styles(*Symbology::Of(settings.dataDirectory));
        needs.styles = &styles;
    }
    const Definition& definition = *definitions[kind];
    const auto write = [&](OGRFeature* made) {
        return WriteFeature(kind, std::unique_ptr<OGRFeature>(made), sheet);
    };
    const size_t records = batch.lines.size() + batch.points.size() + batch.texts.size();
    recordsDone += records;
    const LayerTotals* all = sheet.Facts().layers.data();
    const auto total = static_cast<double>(3 * (all[0].features + all[1].features + all[2].features) + 1);
    reports.progress(inputsDone, static_cast<double>(recordsDone) / total);
    if (kind == outputLines) {
        return std::ranges::all_of(batch.lines, [&](const LineRecord& line) {
            OGRFeature* feature = MakeFeature(definition, batch, line, needs);
            ++linesOfSheet;
            if (layers->IsDatabase()) feature->SetFID(linesBefore + linesOfSheet);
            return write(feature);
        });
    }
    if (kind == outputTexts) {
        return std::ranges::all_of(batch.texts, [&](const TextRecord& text) {
            return write(MakeFeature(definition, batch, text, needs));
        });
    }
    return std::ranges::all_of(batch.points, [&](PointRecord point) {
        if (point.line != 0) point.line += linesBefore;
        return write(MakeFeature(definition, batch, point, needs));
    });
}

// Layer by layer, which a database's bulk load likes best.
bool Collection::WriteSheet(Sheet& sheet, OutputKind only) {
    linesOfSheet = 0;
    recordsDone = 0;
    const bool inMemory = sheet.InMemory();
    const auto writeAll = [&](const Batch& batch) {
        return std::ranges::all_of(mapLayers, [&](OutputKind kind) {
            const bool wants = Wants(kind) && (only == everyKind || only == kind);
            return !wants || WriteBatch(batch, kind, sheet);
        });
    };
    if (!inMemory) return sheet.ForEach(writeAll);
    return std::ranges::all_of(mapLayers, [&](OutputKind kind) {
        const bool wants = Wants(kind) && (only == everyKind || only == kind);
        return !wants || sheet.ForEach([&](const Batch& batch) { return WriteBatch(batch, kind, sheet); });
    });
}

bool Collection::WriteRow(size_t input, const Sheet& sheet, const FileStamp& known) {
    SheetTable::Row row;
    const std::string& file = request.inputs[input];
    row.stamp = known.size > 0 || known.modified > 0 ? known : StampOf(file);
    if (row.stamp.hash.empty()) row.stamp.hash = HashOf(file);
    row.report = sheets[input];
    row.extent = sheet.Facts().Extent();
    return table.Put(*layers, sheet.Name(), row, sheet.Facts().mapScale,
                     ReadSheetHeader(file, settings.encoding));
}

void Collection::LookAt(size_t input, const Sheet& sheet) {
    scales.insert(sheet.Facts().mapScale);
    constexpr double degrees = 360;
    const OGREnvelope extent = extents[input] = sheet.Facts().Extent();
    const bool inDegrees = settings.reference && settings.reference->IsGeographic() != 0;
    const bool far =
        extent.IsInit() && std::max({-extent.MinX, extent.MaxX, -extent.MinY, extent.MaxY}) > degrees;
    if (!inDegrees || !far || std::exchange(toldOfDegrees, true)) return;
    diagnostics.Warn(sheet.Name() +
                     ": the coordinates are metres, but --srs names a reference system in degrees; it labels "
                     "coordinates, --t-srs transforms them");
}

std::optional<Problem> Collection::Unreadable(size_t input) {
    if (!reports.goOn()) return Stopped();
    std::string reason = diagnostics.TakeFailure();
    if (reason.empty()) reason = request.inputs[input] + ": cannot be read";
    if (!request.keepGoing) return Problem{ConvertOutcome::inputFailed, reason};
    sheets[input].reason = reason;
    reports.warn(reason);
    return std::nullopt;
}

std::optional<Problem> Collection::Take(size_t input, OutputKind only) {
    const Clock::time_point begin = Clock::now();
    SheetReport& report = sheets[input];
    std::string file = request.inputs[input];
    FileStamp stamp;
    if (only == everyKind && IsUnchanged(input, stamp)) return std::nullopt;
    const bool isStandardInput = file == standardInputFile;
    if (isStandardInput && !spooled) spooled.emplace();
    if (isStandardInput) file = spooled->Path();

    diagnostics.ReadingBegins();
    std::unique_ptr<Sheet> sheet = std::move(single);
    if (sheet == nullptr) {
        sheet = std::make_unique<Sheet>(file, isStandardInput ? "standard input" : file, settings,
                                        [this] { return !reports.goOn(); });
        if (!sheet->Read()) return Unreadable(input);
    }
    LookAt(input, *sheet);
    diagnostics.WritingBegins();
    const SheetFacts& facts = sheet->Facts();
    if (!layersAdded && !AddLayers(facts, only)) return OutputFailed();
    // An output without the table of sheets may have it all the same.
    const bool mayBeThere = table.Find(sheet->Name()) != nullptr || !layers->WasThere(outputSheets);
    if (request.mode == OutputMode::update && mayBeThere && !RemoveSheet(*layers, sheet->Name()))
        return OutputFailed();
    if (!WriteSheet(*sheet, only) || !FailedWrite().empty() || !diagnostics.Failure().empty())
        return OutputFailed();
    changed = true;
    linesBefore += only == everyKind || only == outputPoints ? facts.layers[lineLayer].features : 0;
    report.made = true;
    report.complete = facts.complete;
    report.lines = static_cast<uint64_t>(facts.layers[lineLayer].features);
    report.points = static_cast<uint64_t>(facts.layers[pointLayer].features);
    report.texts = static_cast<uint64_t>(facts.layers[textLayer].features);
    if (layers->Has(outputSheets) && !WriteRow(input, *sheet, stamp)) return OutputFailed();
    report.seconds += SecondsSince(begin);
    if (request.inputs.size() == 1) single = std::move(sheet);
    return std::nullopt;
}

std::optional<Problem> Collection::WriteSheets(OutputKind only) {
    // An output that is added to takes sheets in this many at a time: each whole, or not at all.
    constexpr size_t together = 100;
    for (size_t input = 0; input < request.inputs.size(); ++input) {
        if (!reports.goOn()) return Stopped();
        if (!sheets[input].reason.empty()) continue;
        if (auto problem = Take(input, only)) return problem;
        const bool commit = InPlace() && request.mode != OutputMode::create && ++sinceCommit % together == 0;
        if (commit && (!layers->Commit() || !layers->Begin())) return OutputFailed();
        inputsDone = input + 1;
        reports.progress(inputsDone, 0.0);
    }
    return std::nullopt;
}

std::optional<Problem> Collection::PutParcels() {
    if (!Wants(outputParcels) || !changed) return std::nullopt;
    parcelsOfAll = std::make_unique<CountryParcels>(settings, request.manySheets, *layers);
    CountryParcels& parcels = *parcelsOfAll;
    for (size_t i = 0; i < sheets.size(); ++i) {
        if (!sheets[i].made) continue;
        const bool isStandardInput = request.inputs[i] == standardInputFile;
        const std::string name = isStandardInput ? "standard input" : request.inputs[i];
        parcels.Add({isStandardInput ? spooled->Path() : name, name, extents[i].MinX, &sheets[i]});
    }
    const std::string name = request.manySheets ? ShownOutput() : parcels.FirstName();
    if (!parcels.Write(name, [this] { return !reports.goOn(); })) return OutputFailed();
    return std::nullopt;
}

bool Collection::Prune() {
    if (!request.prune) return true;
    const std::set<std::string> inputs(request.inputs.begin(), request.inputs.end());
    for (const auto& [name, row] : table.Rows()) {
        if (inputs.contains(name)) continue;
        changed = true;
        if (!layersAdded && !AddLayers(SheetFacts(), everyKind)) return false;
        if (!RemoveSheet(*layers, name)) return false;
    }
    return true;
}

bool Collection::AddStyles() {
    if (request.indexOnly || settings.dataDirectory.empty()) return true;
    if (!layers->IsGeoPackage() && !layers->IsPostgres()) return true;
    std::vector<OGRLayer*> styled;
    for (const OutputKind kind : {outputLines, outputPoints, outputTexts, outputParcels}) {
        if (layers->Has(kind) && !layers->WasThere(kind)) styled.push_back(layers->Layer(kind));
    }
    if (styled.empty()) return true;
    const LayerStyles styles(settings.dataDirectory, firstScale, settings.axisOrientation);
    if (layers->IsGeoPackage()) return styles.AddTo(layers->Dataset(), styled);
    return AddPostgisStyles(*layers, styles, request.schema, styled);
}

void Collection::WarnOfScales() const {
    if (scales.size() < 2 || request.indexOnly) return;
    std::string list;
    for (const double scale : scales)
        list += (list.empty() ? "1:" : ", 1:") + std::string(CPLSPrintf("%.15g", scale));
    diagnostics.Warn(ShownOutput() + ": the sheets have different map scales (" + list +
                     "); the field map_scale says which a feature has");
}

std::optional<Problem> Collection::Finish() {
    const auto isMade = [](const SheetReport& sheet) { return sheet.made; };
    if (std::ranges::none_of(sheets, isMade) && !request.prune) {
        const auto bad =
            std::ranges::find_if(sheets, [](const SheetReport& sheet) { return !sheet.reason.empty(); });
        const std::string reason = bad != sheets.end() ? bad->reason : "";
        // The warnings have said why.
        return Problem{ConvertOutcome::inputFailed,
                       request.keepGoing ? ShownOutput() + ": nothing was made" : reason};
    }
    if (!Prune()) return OutputFailed();
    if (auto problem = PutParcels()) return problem;
    WarnOfScales();
    bool written = AddStyles();
    if (written && layers->IsPostgres()) written = DescribeTables(*layers);
    written = written && layers->Commit() && layers->Close();
    if (!written || !FailedWrite().empty() || !diagnostics.Failure().empty()) return OutputFailed();
    std::string reason;
    if (staged != nullptr && !staged->PutInPlace(reason)) {
        const bool full = SaysDiskFull(reason) || DiskIsFull(output);
        return Problem{full ? ConvertOutcome::diskFull : ConvertOutcome::outputFailed, reason};
    }
    const auto bad = std::ranges::find_if(sheets, [](const SheetReport& sheet) { return !sheet.made; });
    if (bad != sheets.end())
        return Problem{ConvertOutcome::partial, ShownOutput() + ": some sheets were left out"};
    for (const SheetReport& sheet : sheets) {
        if (!sheet.complete)
            return Problem{ConvertOutcome::incomplete,
                           request.inputs[sheet.input] + ": its last element is lost"};
    }
    return std::nullopt;
}

std::optional<Problem> Collection::Run() {
    for (size_t i = 0; i < request.inputs.size(); ++i) {
        sheets.emplace_back();
        sheets.back().input = i;
    }
    extents.resize(sheets.size());
    if (auto problem = ChooseLayers()) return problem;
    OutputSettings chosen = {
        format,      request.schema, request.mode != OutputMode::create,
        request.box, nullptr,        [this](const char* layer) { return PathOf(layer); }};
    if (!request.targetReference.empty()) {
        if (target.emplace().SetFromUserInput(request.targetReference.c_str()) != OGRERR_NONE)
            return Problem{ConvertOutcome::badRequest,
                           "--t-srs: '" + request.targetReference + "' names no reference system"};
        target->SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
        if (!settings.reference)
            return Problem{ConvertOutcome::badRequest,
                           "--t-srs needs to know what --srs the coordinates are in"};
        chosen.target = &*target;
    }
    ForgetFailedWrites();
    if (auto problem = OpenOutput(chosen)) return problem;
    const bool withTable = request.indexOnly || (layers->IsDatabase() && request.manySheets);
    wanted[outputSheets] = request.indexOnly;
    if (withTable && !table.AddTo(*layers)) return OutputFailed();
    if (layers->TakesAnyOrder() || request.indexOnly) {
        if (auto problem = WriteSheets(everyKind)) return problem;
    } else {
        for (const OutputKind kind : mapLayers) {
            if (!Wants(kind)) continue;
            linesBefore = 0;
            layersAdded = false;  // such a format ends a layer where the next one begins
            if (auto problem = WriteSheets(kind)) return problem;
        }
    }
    return Finish();
}

}  // namespace vemrado::gdal
