// Measures reading through GDAL: the loop over the features of a VKM file against the same loop over features
// made from nothing, against the same lines in other formats, and against the import module alone.
//
//   bench_gdal [--size MEGABYTES] [--seed N] [--repeat N] [--folder DIRECTORY] [--json]
//
// The map is lines of two points each, made from the seed. Times are processor time of the only thread, the
// least of the repetitions; every file was written just before, so that it comes from the page cache.

#include <cpl_conv.h>
#include <cpl_string.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>
#include <gdal_utils.h>
#include <ogr_recordbatch.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "driver.h"
#include "vemrado/vkm_details.h"

namespace {

struct Settings {
    double megabytes = 64;
    unsigned seed = 7;
    int repetitions = 3;
    std::string folder = ".";
    bool json = false;
};

// What a loop has seen; loops over the same lines see the same.
struct Seen {
    int64_t lines = 0;
    int64_t styled = 0;  // lines with a style string
    double sum = 0;      // of the coordinates
};

struct Measured {
    std::string name;
    Seen seen;
    double seconds = 0;
};

constexpr const char* codes[] = {"21800", "21900", "22200",
                                 "22400"};  // with line types in the sample symbology

struct Line {
    double west[2];
    double south[2];
    size_t code;
};

class Lines {
  public:
    explicit Lines(unsigned seed) : random(seed) {}

    Line Next() {
        Line line;
        for (int i = 0; i < 2; ++i) {
            line.west[i] = static_cast<double>(74000000 + random() % 500000) / 100.0;
            line.south[i] = static_cast<double>(104000000 + random() % 500000) / 100.0;
        }
        line.code = random() % std::size(codes);
        return line;
    }

  private:
    std::minstd_rand random;
};

class Removed {
  public:
    explicit Removed(std::string name) : path(std::move(name)) {}
    Removed(const Removed&) = delete;
    Removed& operator=(const Removed&) = delete;
    ~Removed() { VSIUnlink(path.c_str()); }

    const char* Path() const { return path.c_str(); }

  private:
    std::string path;
};

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File OpenToWrite(const char* path) {
    File file(std::fopen(path, "wb"), std::fclose);
    if (!file) throw std::runtime_error(std::string("cannot write ") + path);
    return file;
}

void FinishWriting(File& file, const char* ending, const char* path) {
    const bool written = std::fputs(ending, file.get()) >= 0 && std::ferror(file.get()) == 0;
    if (std::fclose(file.release()) != 0 || !written)
        throw std::runtime_error(std::string("cannot write ") + path);
}

// Writes lines until the file is large enough; their number.
int64_t WriteMap(const char* path, const Settings& settings) {
    File file = OpenToWrite(path);
    Lines lines(settings.seed);
    int64_t count = 0;
    double bytes = std::fprintf(file.get(), "&V X 0 0\n&R 0 0 0 0 1000 A\n&U 1\n");
    for (; bytes < settings.megabytes * 1e6; ++count) {
        const Line line = lines.Next();
        bytes += std::fprintf(file.get(), "&L P %.2f %.2f K=%s\n L %.2f %.2f\n", line.west[0], line.south[0],
                              codes[line.code], line.west[1], line.south[1]);
    }
    FinishWriting(file, "&K\n", path);
    return count;
}

// The same lines as a drawing of nothing but entities; GDAL would take minutes to write it.
void WriteDrawing(const char* path, int64_t count, unsigned seed) {
    File file = OpenToWrite(path);
    std::fputs("0\nSECTION\n2\nENTITIES\n", file.get());
    Lines lines(seed);
    for (int64_t i = 0; i < count; ++i) {
        const Line line = lines.Next();
        std::fprintf(file.get(), "0\nLINE\n8\n1\n10\n%.2f\n20\n%.2f\n11\n%.2f\n21\n%.2f\n", -line.west[0],
                     -line.south[0], -line.west[1], -line.south[1]);
    }
    FinishWriting(file, "0\nENDSEC\n0\nEOF\n", path);
}

// A layer whose features come from nothing but the random numbers: fields, lists, geometry and style as those
// of a VKM file have them.
class MadeUpLayer : public OGRLayer {
  public:
    MadeUpLayer(OGRFeatureDefn& schema, int64_t lines, unsigned numbers)
        : definition(&schema), count(lines), seed(numbers), made(numbers) {}

    void ResetReading() override {
        made = Lines(seed);
        next = 0;
    }
    OGRFeatureDefn* GetLayerDefn() override { return definition; }
    int TestCapability(const char*) override { return FALSE; }
    OGRFeature* GetNextFeature() override {
        if (next == count) return nullptr;
        const Line line = made.Next();
        auto feature = new OGRFeature(definition);
        auto stroke = new OGRLineString();
        stroke->setNumPoints(2);
        for (int i = 0; i < 2; ++i) stroke->setPoint(i, -line.west[i], -line.south[i]);
        stroke->assignSpatialReference(definition->GetGeomFieldDefn(0)->GetSpatialRef());
        feature->SetGeometryDirectly(stroke);
        static const char* const types[] = {"P", "L", nullptr};
        const char* const codeList[] = {codes[line.code], "", nullptr};
        feature->SetField(0, 1);
        feature->SetField(1, std::atoi(codes[line.code]));
        feature->SetField(2, codeList);
        feature->SetField(3, types);
        feature->SetStyleString("PEN(c:#000000,w:0.18mm,p:\"1.5mm 0.7mm\")");
        feature->SetFID(++next);
        return feature;
    }

  private:
    OGRFeatureDefn* definition;
    int64_t count;
    unsigned seed;
    Lines made;
    int64_t next = 0;
};

Seen ReadLayer(OGRLayer& layer) {
    Seen seen;
    layer.ResetReading();
    while (const auto feature = OGRFeatureUniquePtr(layer.GetNextFeature())) {
        const OGRGeometry* geometry = feature->GetGeometryRef();
        if (geometry == nullptr || wkbFlatten(geometry->getGeometryType()) != wkbLineString) continue;
        const OGRLineString* line = geometry->toLineString();
        for (int i = 0; i < line->getNumPoints(); ++i) seen.sum += line->getX(i) + line->getY(i);
        ++seen.lines;
        if (feature->GetStyleString() != nullptr) ++seen.styled;
    }
    return seen;
}

// The geometries are the last column.
void ReadArray(const ArrowArray& array, Seen& seen) {
    constexpr int heading = 9;  // bytes of a line string before its points
    const ArrowArray& geometries = *array.children[array.n_children - 1];
    const auto* offsets = static_cast<const int32_t*>(geometries.buffers[1]);
    const auto* bytes = static_cast<const char*>(geometries.buffers[2]);
    for (int64_t row = 0; row < array.length; ++row) {
        for (int32_t i = offsets[row] + heading; i < offsets[row + 1]; i += 2 * int{sizeof(double)}) {
            double point[2];
            std::memcpy(point, bytes + i, sizeof point);
            seen.sum += point[0] + point[1];
        }
    }
    seen.lines += array.length;
}

Seen ReadStream(OGRLayer& layer, CSLConstList options) {
    Seen seen;
    layer.ResetReading();
    ArrowArrayStream stream;
    if (!layer.GetArrowStream(&stream, options)) throw std::runtime_error("there is no Arrow stream");
    ArrowArray array;
    while (stream.get_next(&stream, &array) == 0 && array.release != nullptr) {
        ReadArray(array, seen);
        array.release(&array);
    }
    stream.release(&stream);
    return seen;
}

Seen Import(const char* path) {
    constexpr int eastAndNorth = 128;
    constexpr int lineRead = 1;
    CVKMDetails* vkm = VkmDetails(CreateVKMInterface());
    if (!vkm || !vkm->Open(path, 0, "", eastAndNorth, 0.0, CVKMInterface::flgSymbolsNone))
        throw std::runtime_error(std::string("cannot open ") + path);
    Seen seen;
    while (const int kind = vkm->ReadNext()) {
        if (kind != lineRead) continue;
        ++seen.lines;
        const int count = vkm->GetElementCount();
        for (int i = 0; i < count; ++i) {
            double point[3];
            vkm->GetElementPoint(i, point);
            seen.sum += point[0] + point[1];
        }
    }
    CVKMInterface::DestroyVKMInterface(vkm);
    return seen;
}

template <typename Read>
Measured Measure(const std::string& name, int repetitions, Read read) {
    Measured measured{name, {}, 0};
    for (int i = 0; i < repetitions; ++i) {
        const std::clock_t start = std::clock();
        measured.seen = read();
        const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        measured.seconds = i == 0 ? seconds : std::min(measured.seconds, seconds);
    }
    return measured;
}

GDALDatasetUniquePtr Open(const char* path) {
    GDALDatasetUniquePtr dataset(GDALDataset::Open(path, GDAL_OF_VECTOR | GDAL_OF_VERBOSE_ERROR));
    if (dataset == nullptr || dataset->GetLayerCount() == 0)
        throw std::runtime_error(std::string("cannot open ") + path);
    return dataset;
}

struct Format {
    const char* driver;
    const char* extension;
    const char* option;
    bool isSlow;  // long enough to be measured once
};
constexpr Format formats[] = {{"DXF", "dxf", nullptr, true},
                              {"CSV", "csv", "GEOMETRY=AS_WKT", true},
                              {"GeoJSONSeq", "geojsonl", nullptr, true},
                              {"FlatGeobuf", "fgb", "SPATIAL_INDEX=NO", false}};

// The lines of the map in another format, with no more fields than layer and code and without a reference
// system, which one of the formats would reproject.
void Translate(GDALDataset& map, const Format& format, const char* path) {
    CPLStringList arguments;
    for (const char* argument : {"-f", format.driver, "-select"}) arguments.AddString(argument);
    arguments.AddString("layer,code");
    for (const char* argument : {"-a_srs", "NONE", "-nlt", "LINESTRING"}) arguments.AddString(argument);
    if (format.option != nullptr) {
        arguments.AddString("-lco");
        arguments.AddString(format.option);
    }
    arguments.AddString("lines");
    GDALVectorTranslateOptions* options = GDALVectorTranslateOptionsNew(arguments.List(), nullptr);
    GDALDatasetH source = GDALDataset::ToHandle(&map);
    int usageError = FALSE;
    CPLPushErrorHandler(CPLQuietErrorHandler);  // one warns that there is no reference system
    GDALDatasetH made = GDALVectorTranslate(path, nullptr, 1, &source, options, &usageError);
    CPLPopErrorHandler();
    GDALVectorTranslateOptionsFree(options);
    if (made == nullptr) throw std::runtime_error(std::string("cannot write ") + path);
    GDALClose(made);
}

void CheckSame(const Measured& measured, const Seen& wanted) {
    // Coordinates are rounded to centimetres or kept, sums run in the same order.
    if (measured.seen.lines == wanted.lines && std::abs(measured.seen.sum / wanted.sum - 1) < 1e-9) return;
    throw std::runtime_error(measured.name +
                             " has other lines than the map: " + std::to_string(measured.seen.lines));
}

std::vector<Measured> MeasureAll(const Settings& settings, const Removed& map) {
    std::vector<Measured> all;
    all.push_back(Measure("import", settings.repetitions, [&] { return Import(map.Path()); }));
    const Seen wanted = all.front().seen;
    const GDALDatasetUniquePtr dataset = Open(map.Path());
    OGRLayer& lines = *dataset->GetLayer(0);
    MadeUpLayer madeUp(*lines.GetLayerDefn(), wanted.lines, settings.seed);
    all.push_back(Measure("driver", settings.repetitions, [&] { return ReadLayer(lines); }));
    all.push_back(Measure("made_up", settings.repetitions, [&] { return ReadLayer(madeUp); }));
    all.push_back(Measure("arrow", settings.repetitions, [&] { return ReadStream(lines, nullptr); }));
    // The driver leaves a stream with an option that it does not know to GDAL.
    const char* const unknown[] = {"UNKNOWN=YES", nullptr};
    all.push_back(Measure("arrow_by_gdal", settings.repetitions, [&] { return ReadStream(lines, unknown); }));
    for (const Format& format : formats) {
        const Removed file(CPLFormFilename(settings.folder.c_str(), "bench_gdal_lines", format.extension));
        VSIUnlink(file.Path());
        if (EQUAL(format.driver, "DXF")) {
            WriteDrawing(file.Path(), wanted.lines, settings.seed);
        } else {
            Translate(*dataset, format, file.Path());
        }
        const int repetitions = format.isSlow ? 1 : settings.repetitions;
        all.push_back(
            Measure(format.driver, repetitions, [&] { return ReadLayer(*Open(file.Path())->GetLayer(0)); }));
    }
    for (const Measured& measured : all) CheckSame(measured, wanted);
    if (all[1].seen.styled != wanted.lines)
        throw std::runtime_error("the driver gives lines without a style");
    return all;
}

void Print(const std::vector<Measured>& all, bool json) {
    if (json) {
        std::printf("{\"lines\": %lld", static_cast<long long>(all.front().seen.lines));
        for (const Measured& measured : all)
            std::printf(", \"%s\": %.6f", measured.name.c_str(), measured.seconds);
        std::printf("}\n");
        return;
    }
    std::printf("%lld lines of two points\n", static_cast<long long>(all.front().seen.lines));
    for (const Measured& measured : all) {
        std::printf("  %-12s %9.3f s %8.2f million lines/s\n", measured.name.c_str(), measured.seconds,
                    static_cast<double>(measured.seen.lines) / measured.seconds / 1e6);
    }
}

Settings ReadArguments(int count, char** arguments) {
    Settings settings;
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--json") {
            settings.json = true;
            continue;
        }
        const char* value = i + 1 < count ? arguments[++i] : nullptr;
        if (value != nullptr && argument == "--size") {
            settings.megabytes = std::atof(value);
        } else if (value != nullptr && argument == "--seed") {
            settings.seed = static_cast<unsigned>(std::atoi(value));
        } else if (value != nullptr && argument == "--repeat") {
            settings.repetitions = std::max(1, std::atoi(value));
        } else if (value != nullptr && argument == "--folder") {
            settings.folder = value;
        } else {
            throw std::invalid_argument(std::string(argument));
        }
    }
    return settings;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Settings settings = ReadArguments(argc, argv);
        vemrado::gdal::RegisterDriver();
        GDALAllRegister();
        const Removed map(CPLFormFilename(settings.folder.c_str(), "bench_gdal_lines", "vkm"));
        WriteMap(map.Path(), settings);
        Print(MeasureAll(settings, map), settings.json);
    } catch (const std::invalid_argument&) {
        std::fputs(
            "usage: bench_gdal [--size MEGABYTES] [--seed N] [--repeat N] [--folder DIRECTORY] [--json]\n",
            stderr);
        return 2;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench_gdal: %s\n", failure.what());
        return 1;
    }
}
