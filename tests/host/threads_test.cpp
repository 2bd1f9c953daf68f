// Importers of several threads, side by side: each sees what it would see alone.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <string>

#include "framework/framework.h"
#include "on_threads.h"
#include "temporary_file.h"
#include "vemrado/vkm_details.h"
#include "zrv320/zrv320.h"

namespace {

using vemrado_test::OnThreads;

constexpr int threadCount = 8;

std::string PatternText(const PatternElement* element) {
    if (element == nullptr) return "none";
    std::string text;
    for (; element->code != '@'; ++element) {
        text += std::to_string(element->x) + "," + std::to_string(element->y) + "," +
                std::to_string(element->code) + " ";
    }
    return text;
}

// All that the importer says of a map, with what the patterns are drawn like in place of their numbers.
std::string Everything(const char* path, bool symbology) {
    std::string all;
    const auto add = [&all](auto... values) { ((all += std::to_string(values) + " "), ...); };
    CVKMDetails* vkm = VkmDetails(CreateVKMInterface());
    if (vkm->Open(path, symbology, "", 1, 0, symbology ? CVKMInterface::flgSymbols : 0) == 0)
        all = "not open";
    double point[3], valueM, valueR, valueU;
    int numbers[3];
    while (const int kind = vkm->ReadNext()) {
        all += vkm->GetLayer(numbers);
        if (kind == 2) {
            vkm->GetTextPoint(point);
            vkm->GetTextAttributes(&numbers[0], &numbers[1], &valueR, &valueU);
            all += vkm->GetText();
            add(point[0], point[1], numbers[0], numbers[1], valueR, valueU, vkm->GetTextCode());
        }
        for (int i = 0; kind == 1 && i < vkm->GetElementCount(); ++i) {
            unsigned int colour = 0;
            int pattern = 0;
            vkm->GetElementPoint(i, point);
            vkm->GetElementValues(i, &valueM, &valueR, &valueU);
            add(point[0], point[1], valueM, valueR, valueU, vkm->GetElementLineStyle(i, &colour, &pattern),
                colour);
            all += vkm->GetElementCode(i) + PatternText(ZrvLinePattern(pattern)) +
                   PatternText(ZrvPointPattern(vkm->GetElementSymbol(i))) + "\n";
        }
    }
    add(vkm->IsComplete(), vkm->GetLineCount());
    DestroyVKMInterface(vkm);
    return all;
}

TEST(Threads, EveryImporterReadsAsIfAlone) {
    std::string map = "&R 0 0 0 0 1000 A\n";
    for (int i = 0; i < 400; ++i) {
        const std::string number = std::to_string(i);
        map += "&U " + std::to_string(1 + i % 11) + "\n&L P " + number +
               " 1.5 K=" + std::to_string(21000 + i * 7 % 1000) + "\n L " + number +
               " 2 S=" + std::to_string(100 + i % 200) + " U=" + number + "\n C 5 " + number +
               " K=a-code-that-is-long-" + number + "\n&T " + number + " 7 \"text " + number + "\" K=1001\n";
    }
    const TemporaryFile file(map + "&K\n");
    FrameworkSetDataDirectory(VEMRADO_SAMPLE_SYMBOLOGY);
    const std::array alone = {Everything(file.Path(), false), Everything(file.Path(), true)};
    ASSERT_NE(alone[0], alone[1]);
    std::atomic<int> same = 0;
    OnThreads(threadCount, [&](int number) {
        for (size_t round = 0; round < 6; ++round) {
            const size_t symbology = (static_cast<size_t>(number) + round) % 2;
            if (Everything(file.Path(), symbology != 0) == alone[symbology]) ++same;
        }
    });
    FrameworkSetDataDirectory(nullptr);
    EXPECT_EQ(same, 6 * threadCount);
}

// A thread's own files, symbology and boxes are no other thread's.
TEST(Threads, ServicesOfEachThread) {
    struct Own {
        std::string number, boxes;
        int opened = 0;
    };
    const auto open = [](void* context, const char* path) -> void* {
        ++static_cast<Own*>(context)->opened;
        static_cast<void>(path);
        return nullptr;
    };
    const auto take = [](void* context, const char* text, unsigned int) {
        static_cast<Own*>(context)->boxes += text;
        return 1;
    };
    const TemporaryFile file("&L C 1 1\n&K\n");
    std::array<Own, threadCount> owns;
    std::atomic<int> right = 0;
    OnThreads(threadCount, [&](int number) {
        Own& own = owns[static_cast<size_t>(number)];
        own.number = "/gone-" + std::to_string(number);
        const FrameworkFileProvider provider = {&own, open, nullptr, nullptr, nullptr};
        const FrameworkThreadServices services = {take, &own, &provider, own.number.c_str()};
        const FrameworkThreadServices none = {};
        EXPECT_EQ(FrameworkSetThreadServices(&services), nullptr);
        EXPECT_EQ(FrameworkSetThreadServices(&none), &services);
        EXPECT_EQ(FrameworkGetDataDirectory(), nullptr) << "a null member leaves the process's";
        FrameworkSetThreadServices(&services);
        Everything(file.Path(), true);
        FrameworkSetThreadServices(nullptr);
        const auto lines = std::count(own.boxes.begin(), own.boxes.end(), '\n');
        size_t found = 0, count = 0;
        while ((found = own.boxes.find(own.number + "\\", found) + 1) != 0) ++count;
        if (count == 5 && lines == 6 && own.opened == 6) ++right;
    });
    EXPECT_EQ(right, threadCount) << owns[0].boxes;
}

}  // namespace
