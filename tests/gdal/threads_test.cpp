// The driver under eight threads, as desktop GIS programs use it: every thread opens the same file for
// itself, reads its layers interleaved, asks for counts and extents, and datasets opened on one thread are
// read on another and closed on a third. Built with -fsanitize=thread in the preset `thread`.

#include <cpl_vsi.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <ogrsf_frmts.h>

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "driver.h"

namespace vemrado::gdal {
namespace {

constexpr int threads = 8;
constexpr int groups = 1500;  // several batches of each layer
constexpr int pointsOfAll = groups;
constexpr const char* path = "/vsimem/threads.vkm";

using Dataset = std::unique_ptr<GDALDataset>;

class Threads : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        RegisterDriver();
        static std::string text = "&R 0 0 0 0 1000 A\n&U 1\n";
        for (int i = 0; i < groups; ++i) {
            const std::string number = std::to_string(i);
            text += "&L P " + number + " 1 K=21900\n L " + number + " 2 S=201\n L 5 " + number + "\n&T " +
                    number + " 7 \"text\"\n";
        }
        text += "&K\n";
        VSIFCloseL(VSIFileFromMemBuffer(path, reinterpret_cast<GByte*>(text.data()), text.size(), FALSE));
    }

    static Dataset Open() { return Dataset(GDALDataset::Open(path, GDAL_OF_VECTOR)); }

    // Reads the layers in turns; true when all of it is there.
    static bool ReadsWhole(GDALDataset& dataset) {
        std::array<int, 3> counts = {};
        double sum = 0;
        for (bool any = true; any;) {
            any = false;
            for (size_t i = 0; i < counts.size(); ++i) {
                const OGRFeatureUniquePtr feature(dataset.GetLayer(static_cast<int>(i))->GetNextFeature());
                if (feature == nullptr) continue;
                any = true;
                ++counts[i];
                OGREnvelope envelope;
                feature->GetGeometryRef()->getEnvelope(&envelope);
                sum += envelope.MinX;
            }
        }
        return counts == std::array{groups, pointsOfAll, groups} && sum < 0;
    }

    // Runs work(number) on every thread at once.
    template <typename Work>
    static void OnAllThreads(Work work) {
        std::vector<std::thread> running;
        for (int i = 0; i < threads; ++i) running.emplace_back([work, i] { work(i); });
        for (std::thread& thread : running) thread.join();
    }
};

TEST_F(Threads, ReadTheSameFileAtOnce) {
    std::atomic<int> whole = 0;
    OnAllThreads([&](int) {
        for (int round = 0; round < 3; ++round) {
            const Dataset dataset = Open();
            if (dataset != nullptr && ReadsWhole(*dataset)) ++whole;
        }
    });
    EXPECT_EQ(3 * threads, whole);
}

TEST_F(Threads, TakeOverDatasetsOfOthers) {
    std::array<Dataset, threads> datasets;
    std::atomic<int> whole = 0;
    OnAllThreads([&](int i) { datasets[static_cast<size_t>(i)] = Open(); });
    OnAllThreads([&](int i) {
        if (ReadsWhole(*datasets[static_cast<size_t>((i + 1) % threads)])) ++whole;
    });
    OnAllThreads([&](int i) { datasets[static_cast<size_t>((i + 2) % threads)].reset(); });
    EXPECT_EQ(threads, whole);
}

TEST_F(Threads, FilterCountAndStopInTheMiddle) {
    std::atomic<int> right = 0;
    OnAllThreads([&](int i) {
        const Dataset dataset = Open();
        OGRLayer* lines = dataset->GetLayer(0);
        lines->SetSpatialFilterRect(-i - 0.5, -3, -i + 0.5, 0);
        const auto counted = lines->GetFeatureCount();
        OGREnvelope extent;
        const bool found = dataset->GetLayer(2)->GetExtent(&extent) == OGRERR_NONE;
        const OGRFeatureUniquePtr feature(dataset->GetLayer(1)->GetFeature(pointsOfAll));
        if (counted >= 1 && found && extent.MinX == 1.0 - groups && feature != nullptr) ++right;
    });
    EXPECT_EQ(threads, right);
}

}  // namespace
}  // namespace vemrado::gdal
