// Operations in any order, before the first Open and after the last Close, with faults in between: nothing
// but documented results and exceptions, and nothing is left behind.

#include <gtest/gtest.h>

#include <climits>
#include <random>

#include "faults/counted_memory.h"
#include "faults/sample_files.h"
#include "vemrado/vkm_details.h"

namespace vemrado_test {
namespace {

// A host that calls whatever comes to its mind.
class Host {
  public:
    explicit Host(uint32_t seed) : vkm(VkmDetails(CreateVKMInterface())), random(seed) {
        files.files["empty.vkm"] = "";
        files.files["binary.vkm"] = files["POINTS.ksh"];
    }
    ~Host() { DestroyVKMInterface(vkm); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    int Below(int limit) { return static_cast<int>(random() % static_cast<uint32_t>(limit)); }
    const char* Pick(std::initializer_list<const char*> choices) {
        return choices.begin()[Below(static_cast<int>(choices.size()))];
    }
    int AnyLayer() { return Below(16) - 2; }

    // An operation on an element throws exactly when its index is none; without symbols the index is not
    // looked at.
    template <class Call>
    void OnElement(Call call, bool looksAtIndex = true) {
        const int count = vkm->GetElementCount();
        const int indices[] = {-1, 0, 1, count - 1, count, INT_MAX, INT_MIN};
        const int index = indices[Below(std::size(indices))];
        const bool bad = index < 0 || index >= count;
        bool threw = false;
        try {
            call(index);
        } catch (const CInvalidArgException&) {
            threw = true;
        }
        EXPECT_EQ(threw, bad && looksAtIndex) << index << " of " << count;
    }

    // An operation that reads has a file error for a read that failed, maybe behind what an earlier one took.
    template <class Call>
    int Reading(Call call) {
        try {
            return call();
        } catch (const CFileException&) {
            EXPECT_LE(++fileErrors, files.files.failedReads);
            return -1;
        }
    }

    void StopFailing() {
        files.files.failingRead = files.files.failingOpen = 0;
        countedMemory.StopFailing();
    }

    SampleFiles files;
    CVKMDetails* vkm;
    bool open = false;
    bool symbols = false;  // wanted by the last Open that came to an end

  private:
    int fileErrors = 0;
    std::mt19937 random;
};

void Open(Host& host) {
    const char* name = host.Pick({"a map of many lines.vkm", "a map of many lines.vkm", "odd.vkm",
                                  "empty.vkm", "binary.vkm", "missing.vkm", nullptr});
    const char* layer = host.Pick({"", "roads", nullptr});
    const int symbology = host.Below(2);
    const int flags = host.Below(5);
    const int boxes = host.files.boxes.count;
    const int result =
        host.Reading([&] { return host.vkm->Open(name, symbology, layer, 1 << host.Below(9), 1.5, flags); });
    if (name == nullptr || std::string_view(name) == "missing.vkm") {
        EXPECT_EQ(result, 0);
    }
    if (result == 0 && countedMemory.failing == 0 && host.files.files.failingOpen == 0) {
        EXPECT_EQ(host.files.boxes.count, boxes + 1);
    }
    host.open = result != 0;
    if (result != 0) host.symbols = (flags & 1) != 0;
}

void ReadNext(Host& host) {
    const int kind = host.Reading([&] { return host.vkm->ReadNext(); });
    EXPECT_TRUE(kind == 0 || host.open);
    EXPECT_LE(kind, 2);
    EXPECT_TRUE(kind != 1 || host.vkm->GetElementCount() > 0);
}

struct Operation {
    const char* name;
    void (*call)(Host& host);
};

constexpr Operation operations[] = {
    {"Open", Open},
    {"Close", [](Host& host) { host.vkm->Close(), host.open = false; }},
    {"SetAxisOrientation", [](Host& host) { host.vkm->SetAxisOrientation(host.Below(300) - 20); }},
    {"TransformPoint",
     [](Host& host) {
         double point[3] = {3, 4, 5};
         host.vkm->TransformPoint(point);
         EXPECT_EQ(std::abs(point[0]) + std::abs(point[1]), 7);
     }},
    {"GetExtents",
     [](Host& host) {
         double box[4];
         const int found =
             host.Reading([&] { return host.vkm->GetExtents(&box[0], &box[1], &box[2], &box[3]); });
         EXPECT_TRUE(found != 1 || (box[0] <= box[2] && box[1] <= box[3]));
         EXPECT_TRUE(found <= 0 || host.open);
     }},
    {"SetLayerName",
     [](Host& host) {
         const char* name = host.Pick({"", "x", nullptr, "a layer of a long name"});
         host.vkm->SetLayerName(name);
         int number = -1;
         const std::string layer = host.vkm->GetLayer(&number);
         if (countedMemory.failing == 0 && name != nullptr && *name != '\0') {
             EXPECT_EQ(layer + std::to_string(number), name + std::string("0"));
         }
     }},
    {"ReadNext", ReadNext},
    {"GetElementPoint",
     [](Host& host) {
         double point[3];
         host.OnElement([&](int index) { host.vkm->GetElementPoint(index, point); });
     }},
    {"GetElementSymbol",
     [](Host& host) {
         host.OnElement(
             [&](int index) { EXPECT_TRUE(host.vkm->GetElementSymbol(index) == 0 || host.symbols); },
             host.symbols);
     }},
    {"GetElementSymbolPlacement",
     [](Host& host) {
         double u, m;
         int scaled = 7;
         host.OnElement([&](int index) { host.vkm->GetElementSymbolPlacement(index, &u, &m, &scaled); },
                        host.symbols);
         EXPECT_TRUE(scaled == 7 || (host.symbols && (scaled == 0 || scaled == 2)));
     }},
    {"GetLayer",
     [](Host& host) {
         int number;
         EXPECT_LE(std::string(host.vkm->GetLayer(&number)).size(), 22u);
     }},
    {"GetElementLineStyle",
     [](Host& host) {
         unsigned int colour;
         int pattern;
         host.OnElement([&](int index) { host.vkm->GetElementLineStyle(index, &colour, &pattern); });
     }},
    {"GetElementRValue",
     [](Host& host) {
         double r;
         host.OnElement([&](int index) { host.vkm->GetElementRValue(index, &r); });
     }},
    {"GetElementCount", [](Host& host) { EXPECT_GE(host.vkm->GetElementCount(), 0); }},
    {"GetElementType",
     [](Host& host) {
         host.OnElement([&](int index) {
             const std::string_view types("\0\1CKLPR", 7);
             EXPECT_NE(types.find(static_cast<char>(host.vkm->GetElementType(index))),
                       std::string_view::npos);
         });
     }},
    {"GetLayerValue", [](Host& host) { host.vkm->GetLayerValue(host.AnyLayer()); }},
    {"GetLayerStyle",
     [](Host& host) {
         unsigned int colour;
         int pattern;
         const int layer = host.AnyLayer();
         const int result = host.vkm->GetLayerStyle(layer, &colour, &pattern);
         EXPECT_TRUE(result == 0 || (layer >= 1 && layer <= 11));
     }},
    {"SetLayerValue",
     [](Host& host) {
         const int layer = host.AnyLayer();
         const int before = host.vkm->GetLayerValue(layer);
         host.vkm->SetLayerValue(7, layer);
         const int value = host.vkm->GetLayerValue(layer);
         EXPECT_TRUE(value == before || value == 7);
     }},
    {"GetText", [](Host& host) { EXPECT_LE(std::string(host.vkm->GetText()).size(), 255u); }},
    {"GetTextPoint",
     [](Host& host) {
         double point[3];
         host.vkm->GetTextPoint(point);
     }},
    {"GetTextAttributes",
     [](Host& host) {
         int d, f;
         double h, u;
         host.vkm->GetTextAttributes(&d, &f, &h, &u);
     }},
    {"GetScale", [](Host& host) { EXPECT_GT(host.vkm->GetScale(), 0); }},
    {"details",
     [](Host& host) {
         double m, r, u;
         host.OnElement(
             [&](int index) { EXPECT_LE(std::string(host.vkm->GetElementCode(index)).size(), 300u); });
         host.OnElement([&](int index) { host.vkm->GetElementSymbolCode(index); });
         host.OnElement([&](int index) { host.vkm->GetElementValues(index, &m, &r, &u); });
         host.vkm->GetTextCode();
         host.vkm->GetRelativeCoordinates();
         host.vkm->IsComplete();
         EXPECT_GE(host.vkm->GetLineCount(), 0);
     }},
    {"a read fails",
     [](Host& host) { host.files.files.failingRead = host.files.files.reads + 1 + host.Below(20); }},
    {"an open fails",
     [](Host& host) { host.files.files.failingOpen = host.files.files.opens + 1 + host.Below(4); }},
    {"memory fails", [](Host& host) { countedMemory.StartFailing(1 + host.Below(300), host.Below(2) == 0); }},
    {"no fault", [](Host& host) { host.StopFailing(); }},
};
constexpr int readNextShare = 8;  // of so many calls one is ReadNext

// Returns the names of the operations called.
std::string CallInAnyOrder(uint32_t seed) {
    std::string called;
    Host host(seed);
    host.files.files.mostPerRead = 2000;
    for (int i = 0; i < 200 && !testing::Test::HasFailure(); ++i) {
        const bool reads = host.Below(readNextShare) == 0;
        const Operation& operation = reads ? operations[6] : operations[host.Below(std::size(operations))];
        called.append(operation.name).append("\n");
        operation.call(host);
    }
    host.StopFailing();
    return called;
}

// A host that does everything right, after whom the module holds what it always holds.
int64_t BlocksAfterARightHost() {
    const SampleFiles files;
    CVKMInterface* vkm = CreateVKMInterface();
    EXPECT_EQ(vkm->Open("a map of many lines.vkm", 1, "", 1, 0, 1), 1);
    EXPECT_EQ(vkm->ReadNext(), 1);
    EXPECT_NE(vkm->GetElementSymbol(0), 0);
    EXPECT_EQ(files.boxes.count, 0);
    DestroyVKMInterface(vkm);
    return countedMemory.blocks;
}

TEST(Operations, InAnyOrder) {
    const int64_t blocks = BlocksAfterARightHost();
    for (uint32_t seed = 1; seed <= 300; ++seed) {
        const std::string called = CallInAnyOrder(seed);
        EXPECT_EQ(BlocksAfterARightHost(), blocks);
        ASSERT_FALSE(HasFailure()) << "seed " << seed << ":\n" << called;
    }
}

}  // namespace
}  // namespace vemrado_test
