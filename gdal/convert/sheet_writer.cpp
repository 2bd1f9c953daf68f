#include "sheet_writer.h"

#include <algorithm>
#include <utility>

#include "styles.h"

namespace vemrado::gdal {

namespace {

constexpr FieldSchema sourceField = {"source", OFTString, "File it comes from"};
constexpr FieldSchema scaleField = {"map_scale", OFTReal, "Map scale number of that file"};

const LayerSchema& SchemaOf(OutputKind kind) {
    if (kind == outputLines) return lineSchema;
    return kind == outputPoints ? pointSchema : textSchema;
}

}  // namespace

SheetWriter::SheetWriter(const ConvertRequest& wanted, const OpenSettings& openSettings, Progress told)
    : request(wanted), settings(openSettings), progress(std::move(told)) {
    const OGRSpatialReference* reference = settings.reference ? &*settings.reference : nullptr;
    for (const OutputKind kind : mapLayers) {
        definitions[kind] = std::make_unique<Definition>(SchemaOf(kind), reference);
        if (!request.manySheets) continue;
        definitions[kind]->AddField(sourceField);
        definitions[kind]->AddField(scaleField);
    }
}

bool SheetWriter::AddLayers(OutputLayers& output, const std::array<bool, outputKinds>& wanted,
                            const SheetFacts& first) {
    layers = &output;
    writes = wanted;
    // Programs want one type of geometry in a layer; of many sheets the next may have lines of several
    // strokes.
    const bool multi = request.manySheets || first.layers[lineLayer].multiLines > 0;
    const OGRwkbGeometryType types[] = {multi ? wkbMultiLineString : wkbLineString, wkbPoint, wkbPoint};
    for (const OutputKind kind : mapLayers) {
        if (writes[kind] && !layers->Add(kind, *definitions[kind]->Get(), types[kind])) return false;
    }
    linesBefore = writes[outputLines] ? layers->LastIdentifier(outputLines) : 0;
    return true;
}

bool SheetWriter::WriteFeature(OutputKind kind, std::unique_ptr<OGRFeature> feature, const Sheet& sheet) {
    if (request.manySheets) {
        const int fields = feature->GetFieldCount();
        feature->SetField(fields - 2, sheet.Name().c_str());
        feature->SetField(fields - 1, sheet.Facts().mapScale);
    }
    return layers->Write(kind, *feature);
}

void SheetWriter::TellProgress(const Batch& batch, const SheetFacts& facts) {
    recordsDone += batch.lines.size() + batch.points.size() + batch.texts.size();
    GIntBig features = 0;
    for (const LayerTotals& layer : facts.layers) features += layer.features;
    progress(static_cast<double>(recordsDone) / static_cast<double>(3 * features + 1));
}

bool SheetWriter::WriteLayer(const Batch& batch, OutputKind kind, const Sheet& sheet) {
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
    TellProgress(batch, sheet.Facts());
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

// Layer by layer, which a database's bulk load likes best; a sheet that has to be read again, in one pass.
bool SheetWriter::Write(Sheet& sheet) {
    linesOfSheet = 0;
    recordsDone = 0;
    bool written;
    if (sheet.InMemory()) {
        written = std::ranges::all_of(mapLayers, [&](OutputKind kind) {
            return !writes[kind] ||
                   sheet.ForEach([&](const Batch& batch) { return WriteLayer(batch, kind, sheet); });
        });
    } else {
        written = sheet.ForEach([&](const Batch& batch) {
            return std::ranges::all_of(
                mapLayers, [&](OutputKind kind) { return !writes[kind] || WriteLayer(batch, kind, sheet); });
        });
    }
    linesBefore += sheet.Facts().layers[lineLayer].features;
    return written;
}

}  // namespace vemrado::gdal
