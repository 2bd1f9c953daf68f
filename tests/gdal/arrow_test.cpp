// Arrow streams that are made without features, beside OGRLayer's own of the same rows: an attribute filter
// that lets everything through asks for that one.

#include <cpl_vsi.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <ogr_recordbatch.h>
#include <ogrsf_frmts.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "driver.h"

namespace vemrado::gdal {
namespace {

using Dataset = std::unique_ptr<GDALDataset>;

// As text; bytes of geometries as numbers.
void ShowRow(std::ostream& to, const ArrowSchema& schema, const ArrowArray& array, int64_t row) {
    const std::string format = schema.format;
    const auto* validity = format == "+s" ? nullptr : static_cast<const uint8_t*>(array.buffers[0]);
    EXPECT_TRUE(array.null_count == 0 || validity != nullptr) << schema.name;
    if (validity != nullptr && (validity[row / 8] >> row % 8 & 1) == 0)
        return static_cast<void>(to << "none ");
    EXPECT_EQ(schema.n_children, array.n_children) << schema.name;
    if (format == "+s") {
        for (int64_t i = 0; i < array.n_children; ++i) {
            to << schema.children[i]->name << '=';
            ShowRow(to, *schema.children[i], *array.children[i], row);
        }
        return;
    }
    const void* values = array.buffers[1];
    const auto* offsets = static_cast<const int32_t*>(values);
    if (format == "i") {
        to << offsets[row] << ' ';
    } else if (format == "l") {
        to << static_cast<const int64_t*>(values)[row] << ' ';
    } else if (format == "g") {
        to << static_cast<const double*>(values)[row] << ' ';
    } else if (format == "+l") {
        to << "( ";
        for (int32_t i = offsets[row]; i < offsets[row + 1]; ++i)
            ShowRow(to, *schema.children[0], *array.children[0], i);
        to << ") ";
    } else {
        ASSERT_TRUE(format == "u" || format == "z") << format;
        const auto* bytes = static_cast<const char*>(array.buffers[2]);
        for (int32_t i = offsets[row]; i < offsets[row + 1]; ++i)
            format == "z" ? to << (bytes[i] & 255) << ',' : to << bytes[i];
        to << ' ';
    }
}

struct Rows {
    std::vector<int64_t> batches;  // rows of each
    std::vector<std::string> rows;
    int result = 0;  // of the last call

    bool operator==(const Rows&) const = default;
};

Rows Read(OGRLayer& layer, CSLConstList options) {
    Rows read;
    ArrowArrayStream stream;
    ArrowSchema schema;
    if (!layer.GetArrowStream(&stream, options) || stream.get_schema(&stream, &schema) != 0)
        return {{}, {}, -1};
    ArrowArray array;
    while ((read.result = stream.get_next(&stream, &array)) == 0 && array.release != nullptr) {
        read.batches.push_back(array.length);
        for (int64_t row = 0; row < array.length; ++row) {
            std::ostringstream text;
            text.precision(17);
            ShowRow(text, schema, array, row);
            read.rows.push_back(text.str());
        }
        array.release(&array);
    }
    schema.release(&schema);
    stream.release(&stream);
    return read;
}

void Write(const std::string& path, const std::string& text) {
    auto* bytes = static_cast<GByte*>(CPLMalloc(text.size() + 1));
    std::memcpy(bytes, text.data(), text.size());
    VSIFCloseL(VSIFileFromMemBuffer(path.c_str(), bytes, text.size(), TRUE));
}

Dataset Open(const std::string& path, const char* const* options = nullptr) {
    return Dataset(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR, nullptr, options));
}

// More than the driver reads at a time, of lines of one stroke and of several, with every value and without.
std::string MapText(int groups) {
    std::string text = "&R 0 0 0 0 1000 A\n&U 1\n";
    for (int i = 0; i < groups; ++i) {
        const std::string number = std::to_string(i);
        text += "&L P " + number + " 1\n L " + number + " 2.5\n";
        text += "&L P 0 " + number + " K=21900\n L 2 3 S=101 M=2\n C 5 6 K=12\xe9\n P 8 8 R=3\n K 9 " +
                number + " U=50\n";
        text += "&L R " + number + " 7 S=102 K=5\n&L P 3 " + number +
                "\n L 1 1 K=21800\n P 4 4\n P 7 5 M=3\n L 9 7\n";
        text += "&T " + number + " 7 \"\xe8\xedslo\" K=17 H=2 U=100 D=5 F=3\n&T 1 " + number + " \"\"\n";
    }
    return text + "&K\n";
}

class ArrowStream : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        RegisterDriver();
        Write("/vsimem/arrow/map.vkm", MapText(700));
        Write("/vsimem/arrow/cut.vkm", MapText(50).substr(0, 4001));
        Write("/vsimem/arrow/empty.vkm", "&R 0 0 0 0 1000 A\n&K\n");
        std::filesystem::create_directory(folder);
        std::ofstream(folder / "a.vkm", std::ios::binary) << MapText(30);
        std::ofstream(folder / "b.vkm", std::ios::binary) << "no map";
        std::ofstream(folder / "c.vkm", std::ios::binary) << MapText(40);
        CPLSetErrorHandler(CPLQuietErrorHandler);  // of the files that are not whole
    }
    static void TearDownTestSuite() {
        CPLSetErrorHandler(nullptr);
        std::filesystem::remove_all(folder);
    }

    inline static const std::filesystem::path folder =
        testing::TempDir() + "vkm_sheets_" + std::to_string(std::random_device()());
};

TEST_F(ArrowStream, HasTheRowsOfOgrsOwn) {
    struct Case {
        const char* path;
        std::vector<const char*> openOptions, streamOptions, ignored;
        std::vector<double> rectangle;
        const char* shape = nullptr;
    };
    const char* const map = "/vsimem/arrow/map.vkm";
    const std::string sheets = "VKM:" + folder.string();
    const Case cases[] = {
        {map, {}, {}, {}, {}},
        {map, {"SPLIT_BY_CODE=NO", "SOURCE_FIELD=YES"}, {"MAX_FEATURES_IN_BATCH=1000"}, {}, {}},
        {map, {}, {"MAX_FEATURES_IN_BATCH=3", "INCLUDE_FID=NO"}, {}, {}},
        {map, {}, {"MAX_FEATURES_IN_BATCH=1"}, {"layer", "types", "u_values", "type", "line", "text"}, {}},
        {map, {}, {"MAX_FEATURES_IN_BATCH=0"}, {"OGR_GEOMETRY"}, {}},
        {map, {}, {}, {}, {-10, -10, -2, -2}},
        {map, {}, {}, {}, {}, "POLYGON((-3 -3,-300 -1,-200 -400,-3 -3))"},
        {map, {}, {}, {}, {5, 5, 6, 6}},
        {"/vsimem/arrow/cut.vkm", {}, {"MAX_FEATURES_IN_BATCH=7"}, {}, {}},
        {"/vsimem/arrow/empty.vkm", {}, {}, {}, {}},
        {sheets.c_str(), {"SOURCE_FIELD=YES"}, {"MAX_FEATURES_IN_BATCH=100"}, {}, {}},
    };
    int number = 0;
    for (Case tried : cases) {
        ++number;
        for (auto* list : {&tried.openOptions, &tried.streamOptions, &tried.ignored})
            list->push_back(nullptr);
        for (const char* name : {"lines", "points", "texts"}) {
            SCOPED_TRACE(std::string(tried.path) + ' ' + name + ", case " + std::to_string(number));
            const Dataset dataset = Open(tried.path, tried.openOptions.data());
            ASSERT_NE(nullptr, dataset);
            OGRLayer& layer = *dataset->GetLayerByName(name);
            std::vector<const char*> ignored;
            for (const char* field : tried.ignored) {
                const bool isKnown = field == nullptr || EQUAL(field, "OGR_GEOMETRY") ||
                                     layer.GetLayerDefn()->GetFieldIndex(field) >= 0;
                if (isKnown) ignored.push_back(field);
            }
            layer.SetIgnoredFields(ignored.data());
            if (const auto& box = tried.rectangle; !box.empty())
                layer.SetSpatialFilterRect(box[0], box[1], box[2], box[3]);
            if (tried.shape != nullptr) {
                OGRGeometry* shape = nullptr;
                OGRGeometryFactory::createFromWkt(tried.shape, nullptr, &shape);
                layer.SetSpatialFilter(std::unique_ptr<OGRGeometry>(shape).get());
            }
            EXPECT_TRUE(layer.TestCapability(OLCFastGetArrowStream));
            const Rows made = Read(layer, tried.streamOptions.data());
            layer.SetAttributeFilter("fid >= 0");
            EXPECT_FALSE(layer.TestCapability(OLCFastGetArrowStream));
            EXPECT_EQ(Read(layer, tried.streamOptions.data()), made);
            EXPECT_EQ(layer.GetFeatureCount(), static_cast<GIntBig>(made.rows.size()));
        }
    }
}

TEST_F(ArrowStream, CanBeLeftAtAnyTime) {
    for (const int taken : {0, 1, 2}) {
        Dataset dataset = Open("/vsimem/arrow/map.vkm");
        OGRLayer& layer = *dataset->GetLayerByName("lines");
        const char* const options[] = {"MAX_FEATURES_IN_BATCH=10", nullptr};
        ArrowArrayStream stream;
        ASSERT_TRUE(layer.GetArrowStream(&stream, options));
        std::vector<ArrowArray> kept(static_cast<size_t>(taken));
        for (ArrowArray& array : kept) ASSERT_EQ(0, stream.get_next(&stream, &array));
        if (taken == 1) {
            stream.release(&stream);
            ASSERT_TRUE(layer.GetArrowStream(&stream, nullptr));
        }
        dataset.reset();
        ArrowArray none;
        EXPECT_NE(0, stream.get_next(&stream, &none));
        stream.release(&stream);
        for (int i = 0; i < taken; ++i) {  // arrays outlive what they came from
            ArrowArray& array = kept[static_cast<size_t>(i)];
            EXPECT_EQ(10, array.length);
            EXPECT_EQ(10 * i + 1, static_cast<const int64_t*>(array.children[0]->buffers[1])[0]);
            array.release(&array);
        }
    }
}

// A file that shrinks or goes bad under the reader.
TEST_F(ArrowStream, FailsWhereTheReadingDoes) {
    Write("/vsimem/arrow/gone.vkm", MapText(3));
    const Dataset dataset = Open("/vsimem/arrow/gone.vkm");
    VSIUnlink("/vsimem/arrow/gone.vkm");
    for (const char* filter : {static_cast<const char*>(nullptr), "fid >= 0"}) {
        OGRLayer& layer = *dataset->GetLayerByName("texts");
        layer.SetAttributeFilter(filter);
        const Rows read = Read(layer, nullptr);
        EXPECT_TRUE(read.rows.empty());
        EXPECT_EQ(EIO, read.result);
    }
}

}  // namespace
}  // namespace vemrado::gdal
