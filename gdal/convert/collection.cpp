#include "collection.h"

#include <cpl_conv.h>
#include <cpl_string.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

#include "checked_files.h"
#include "country_parcels.h"
#include "layer_styles.h"
#include "postgis.h"
#include "stored_sheet.h"

namespace vemrado::gdal {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* layerNames[] = {"lines", "points", "texts", "parcels", "sheets"};

double SecondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

}  // namespace

Collection::Collection(const ConvertRequest& wantedRequest, const OpenSettings& openSettings,
                       const OutputFormat& format, Diagnostics& found, const ConvertReports& told,
                       std::vector<SheetReport>& list)
    : request(wantedRequest),
      settings(openSettings),
      diagnostics(found),
      reports(told),
      sheets(list),
      destination(request, format, diagnostics, reports),
      writer(request, settings, [this](double part) { reports.progress(inputsDone, part); }),
      table(openSettings.reference ? &*openSettings.reference : nullptr) {}

Collection::~Collection() = default;

std::optional<Problem> Collection::ChooseLayers() {
    for (const std::string& name : request.layers) {
        const auto* found = std::ranges::find(std::begin(layerNames), std::begin(layerNames) + 4, name);
        const auto kind = static_cast<size_t>(found - std::begin(layerNames));
        if (kind > outputParcels || (kind == outputParcels && !settings.parcels))
            return Problem{ConvertOutcome::badRequest, "there is no layer '" + name + "'"};
        wanted[kind] = true;
    }
    if (request.indexOnly) {
        wanted = {false, false, false, false, true};
    } else if (request.layers.empty()) {
        wanted = {true, true, true, settings.parcels, false};
    }
    return std::nullopt;
}

std::optional<Problem> Collection::ReadTarget() {
    if (request.targetReference.empty()) return std::nullopt;
    if (target.emplace().SetFromUserInput(request.targetReference.c_str()) != OGRERR_NONE)
        return Problem{ConvertOutcome::badRequest,
                       "--t-srs: '" + request.targetReference + "' names no reference system"};
    target->SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    if (settings.reference) return std::nullopt;
    return Problem{ConvertOutcome::badRequest, "--t-srs needs to know what --srs the coordinates are in"};
}

bool Collection::AddLayers(const SheetFacts& first, const Wanted& now) {
    layersAdded = true;
    firstScale = first.mapScale;
    return writer.AddLayers(Layers(), now, first);
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

bool Collection::WriteRow(size_t input, const Sheet& sheet, const FileStamp& known) {
    SheetTable::Row row;
    const std::string& file = sheet.File();
    row.stamp = known.size > 0 || known.modified > 0 ? known : StampOf(file);
    if (row.stamp.hash.empty()) row.stamp.hash = HashOf(file);
    row.report = sheets[input];
    row.extent = sheet.Facts().Extent();
    return table.Put(Layers(), sheet.Name(), row, sheet.Facts().mapScale, sheet.Header());
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
    if (!reports.goOn()) return destination.Stopped();
    std::string reason = diagnostics.TakeFailure();
    if (reason.empty()) reason = request.inputs[input] + ": cannot be read";
    if (!request.keepGoing) return Problem{ConvertOutcome::inputFailed, reason};
    sheets[input].reason = reason;
    reports.warn(reason);
    return std::nullopt;
}

// Writes the sheet in place of what the output has of it.
bool Collection::Replace(Sheet& sheet) {
    // An output without the table of sheets may have it all the same.
    const bool mayBeThere = table.Find(sheet.Name()) != nullptr || !Layers().WasThere(outputSheets);
    if (request.mode == OutputMode::update && mayBeThere && !RemoveSheet(Layers(), sheet.Name()))
        return false;
    changed = true;
    return writer.Write(sheet) && FailedWrite().empty() && diagnostics.Failure().empty();
}

std::optional<Problem> Collection::Take(size_t input, const Wanted& now) {
    const Clock::time_point begin = Clock::now();
    SheetReport& report = sheets[input];
    std::string file = request.inputs[input];
    FileStamp stamp;
    if (IsUnchanged(input, stamp)) return std::nullopt;
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
    if (!layersAdded && !AddLayers(facts, now)) return destination.Failed();
    if (!Replace(*sheet)) return destination.Failed();
    report.made = true;
    report.complete = facts.complete;
    report.lines = static_cast<uint64_t>(facts.layers[lineLayer].features);
    report.points = static_cast<uint64_t>(facts.layers[pointLayer].features);
    report.texts = static_cast<uint64_t>(facts.layers[textLayer].features);
    if (Layers().Has(outputSheets) && !WriteRow(input, *sheet, stamp)) return destination.Failed();
    report.seconds += SecondsSince(begin);
    if (request.inputs.size() == 1) single = std::move(sheet);
    return std::nullopt;
}

std::optional<Problem> Collection::WriteSheets(const Wanted& now) {
    // An output that is added to takes sheets in this many at a time: each whole, or not at all.
    constexpr size_t together = 100;
    const bool commits = destination.InPlace() && request.mode != OutputMode::create;
    for (size_t input = 0; input < request.inputs.size(); ++input) {
        if (!reports.goOn()) return destination.Stopped();
        if (!sheets[input].reason.empty()) continue;
        if (auto problem = Take(input, now)) return problem;
        const bool isDue = commits && ++sinceCommit % together == 0;
        if (isDue && (!Layers().Commit() || !Layers().Begin())) return destination.Failed();
        inputsDone = input + 1;
        reports.progress(inputsDone, 0.0);
    }
    return std::nullopt;
}

std::optional<Problem> Collection::WriteAll() {
    if (Layers().TakesAnyOrder() || request.indexOnly) return WriteSheets(wanted);
    for (const OutputKind kind : mapLayers) {
        if (!wanted[kind]) continue;
        Wanted now{};
        now[kind] = true;
        layersAdded = false;  // such a format ends a layer where the next one begins
        if (auto problem = WriteSheets(now)) return problem;
    }
    return std::nullopt;
}

// Of all sheets that the output has now: those of the run from their files, others as they lie in it.
std::optional<Problem> Collection::PutParcels() {
    const bool areThere = Layers().IsThere("parcels");
    if (!wanted[outputParcels]) {
        if (!areThere || !changed || !Layers().Has(outputSheets)) return std::nullopt;
        diagnostics.Warn(destination.Name() +
                         ": its parcels are no longer those of its sheets; --parcels makes them again");
        if (!ForgetParcelCounts(Layers())) return destination.Failed();
        return std::nullopt;
    }
    if (areThere && !changed && table.CountsParcels()) return std::nullopt;
    if (!layersAdded && !AddLayers(SheetFacts(), wanted)) return destination.Failed();
    // The outlines of transformed sheets say nothing of where their lines lie.
    constexpr double anywhere = -std::numeric_limits<double>::infinity();
    const auto westOf = [&](const OGREnvelope& extent) { return target ? anywhere : extent.MinX; };
    parcelsOfAll = std::make_unique<CountryParcels>(settings, request.manySheets, Layers());
    CountryParcels& parcels = *parcelsOfAll;
    std::set<std::string> made;
    for (size_t i = 0; i < sheets.size(); ++i) {
        if (!sheets[i].made) continue;
        const bool isStandardInput = request.inputs[i] == standardInputFile;
        const std::string name = isStandardInput ? "standard input" : request.inputs[i];
        parcels.Add({isStandardInput ? spooled->Path() : name, name, westOf(extents[i]), &sheets[i]});
        made.insert(name);
    }
    for (const auto& [name, row] : table.Rows()) {
        if (made.contains(name)) continue;
        parcels.Add({KeepsSheets(Layers()) ? "" : name, name, westOf(row.extent), nullptr});
    }
    const std::string name = request.manySheets ? destination.Name() : parcels.FirstName();
    if (!parcels.Write(name, [this] { return !reports.goOn(); })) return destination.Failed();
    return std::nullopt;
}

bool Collection::Prune() {
    if (!request.prune) return true;
    const std::set<std::string> inputs(request.inputs.begin(), request.inputs.end());
    std::vector<std::string> gone;
    for (const auto& [name, row] : table.Rows()) {
        if (!inputs.contains(name)) gone.push_back(name);
    }
    if (gone.empty()) return true;
    changed = true;
    if (!layersAdded && !AddLayers(SheetFacts(), wanted)) return false;
    return std::ranges::all_of(gone, [&](const std::string& name) {
        table.Forget(name);
        return RemoveSheet(Layers(), name);
    });
}

bool Collection::AddStyles() {
    if (request.indexOnly || settings.dataDirectory.empty()) return true;
    if (!Layers().IsGeoPackage() && !Layers().IsPostgres()) return true;
    std::vector<OGRLayer*> styled;
    for (const OutputKind kind : {outputLines, outputPoints, outputTexts, outputParcels}) {
        if (Layers().Has(kind) && !Layers().WasThere(kind)) styled.push_back(Layers().Layer(kind));
    }
    if (styled.empty()) return true;
    const auto styles =
        LayerStyles::Of(settings.dataDirectory, firstScale, request.manySheets, settings.axisOrientation);
    if (Layers().IsGeoPackage()) return styles->AddTo(Layers().Dataset(), styled);
    return AddPostgisStyles(Layers(), *styles, request.schema, styled);
}

void Collection::WarnOfScales() const {
    if (scales.size() < 2 || request.indexOnly) return;
    std::string list;
    for (const double scale : scales)
        list += (list.empty() ? "1:" : ", 1:") + std::string(CPLSPrintf("%.15g", scale));
    diagnostics.Warn(destination.Name() + ": the sheets have different map scales (" + list +
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
                       request.keepGoing ? destination.Name() + ": nothing was made" : reason};
    }
    if (!Prune()) return destination.Failed();
    if (auto problem = PutParcels()) return problem;
    WarnOfScales();
    if (!AddStyles()) return destination.Failed();
    if (Layers().IsPostgres() && !DescribeTables(Layers())) return destination.Failed();
    if (auto problem = destination.Conclude()) return problem;
    return Conclusion();
}

// What is to be said of an output that was made.
std::optional<Problem> Collection::Conclusion() const {
    const auto bad = std::ranges::find_if(sheets, [](const SheetReport& sheet) { return !sheet.made; });
    if (bad != sheets.end())
        return Problem{ConvertOutcome::partial, destination.Name() + ": some sheets were left out"};
    const auto cut = std::ranges::find_if(sheets, [](const SheetReport& sheet) { return !sheet.complete; });
    if (cut == sheets.end()) return std::nullopt;
    return Problem{ConvertOutcome::incomplete, request.inputs[cut->input] + ": its last element is lost"};
}

std::optional<Problem> Collection::Run() {
    for (size_t i = 0; i < request.inputs.size(); ++i) {
        sheets.emplace_back();
        sheets.back().input = i;
    }
    extents.resize(sheets.size());
    if (auto problem = ChooseLayers()) return problem;
    if (auto problem = ReadTarget()) return problem;
    ForgetFailedWrites();
    const bool oneLayer = std::ranges::count(wanted, true) == 1;
    if (auto problem = destination.Open(target ? &*target : nullptr, oneLayer)) return problem;
    const bool withTable = request.indexOnly || (Layers().IsDatabase() && request.manySheets);
    if (withTable && !table.AddTo(Layers())) return destination.Failed();
    if (auto problem = WriteAll()) return problem;
    return Finish();
}

}  // namespace vemrado::gdal
