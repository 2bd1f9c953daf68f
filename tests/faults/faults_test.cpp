// Counted faults through the boundary of the library: reads, opens and memory requests that fail, and files
// that change while they are read. Whatever fails, what was read before is intact, the host gets a documented
// result, the importer can be used again, and nothing is left behind.

#include <gtest/gtest.h>

#include "faults/counted_memory.h"
#include "faults/sample_files.h"
#include "temporary_file.h"
#include "vemrado/vkm_details.h"

namespace vemrado_test {
namespace {

struct Reading {
    bool opened = false;
    bool complete = false;
    int fileErrors = 0;
    size_t cut = SIZE_MAX;  // the element that a failed read was met in
    std::vector<std::string> elements;
    std::vector<std::string> styles;  // of each element

    bool operator==(const Reading&) const = default;
};

void DescribeLine(CVKMDetails& vkm, std::string& element, std::string& style) {
    for (int i = 0; i < vkm.GetElementCount(); ++i) {
        double point[3], m, r, u;
        unsigned int colour = 0;
        int pattern = 0;
        char text[160];
        vkm.GetElementPoint(i, point);
        vkm.GetElementValues(i, &m, &r, &u);
        std::snprintf(text, sizeof text, " %d %.17g %.17g %g %g %g %d ", vkm.GetElementType(i), point[0],
                      point[1], m, r, u, vkm.GetElementSymbolCode(i));
        element.append(text).append(vkm.GetElementCode(i));
        const int result = vkm.GetElementLineStyle(i, &colour, &pattern);
        std::snprintf(text, sizeof text, " %d %X ", result, colour);
        style.append(text).append(LinePatternText(pattern));
        style.append(PointPatternText(vkm.GetElementSymbol(i)));
    }
}

void ReadElements(CVKMDetails& vkm, Reading& reading) {
    while (const int kind = vkm.ReadNext()) {
        int layer, d, f;
        double point[3], h, u;
        std::string element = vkm.GetLayer(&layer);
        element += "/" + std::to_string(layer);
        std::string style;
        if (kind == 2) {
            vkm.GetTextPoint(point);
            vkm.GetTextAttributes(&d, &f, &h, &u);
            element += vkm.GetText() + std::to_string(point[1]) + std::to_string(d + f) + std::to_string(h);
        } else {
            DescribeLine(vkm, element, style);
        }
        reading.elements.push_back(element);
        reading.styles.push_back(style);
    }
    reading.complete = vkm.IsComplete() != 0;
}

// Runs a step; a file error of that file is counted.
template <class Step>
bool WithoutFileError(const std::string& name, Reading& reading, Step step) {
    try {
        step();
        return true;
    } catch (const CFileException& exception) {
        EXPECT_EQ(exception.FileName(), name);
        EXPECT_NE(exception.Reason(), "");
        ++reading.fileErrors;
        return false;
    }
}

// Opens and reads to the end, reading on after a failed read.
Reading ReadAll(CVKMDetails& vkm, const std::string& name) {
    ZrvClearPatterns();
    Reading reading;
    if (!WithoutFileError(name, reading,
                          [&] { reading.opened = vkm.Open(name.c_str(), 1, "", 1, 0, 1) == 1; }))
        return reading;
    while (reading.fileErrors < 3 && !WithoutFileError(name, reading, [&] { ReadElements(vkm, reading); }))
        reading.cut = reading.elements.size();
    vkm.Close();
    return reading;
}

class Faults : public testing::TestWithParam<const char*> {
  protected:
    Faults() : name(GetParam()), expected(ReadOnce()) {
        blocksBefore = countedMemory.blocks;
        mappedBefore = countedMemory.mappedBytes;
    }
    ~Faults() override { countedMemory.StopFailing(); }

    Reading ReadOnce() {
        CVKMInterface* importer = CreateVKMInterface();
        const Reading reading = ReadAll(*VkmDetails(importer), name);
        DestroyVKMInterface(importer);
        return reading;
    }

    void ExpectIntact(const Reading& reading) {
        ASSERT_LE(reading.elements.size(), expected.elements.size());
        for (size_t i = 0; i < reading.elements.size(); ++i) {
            if (i == reading.cut) continue;
            ASSERT_EQ(reading.elements[i], expected.elements[i]) << i;
        }
        EXPECT_TRUE(!reading.complete || reading.elements.size() == expected.elements.size());
    }

    void Repair() {
        files.files.failingRead = files.files.failingOpen = 0;
        files.files.beforeRead = nullptr;
        if (!changing.empty()) files.files[changing] = original;
        countedMemory.StopFailing();
    }

    // The same importer after a fault. Its first line may begin with an element of the reading before.
    void ExpectUsable(CVKMDetails& vkm) {
        Repair();
        const Reading again = ReadAll(vkm, name);
        EXPECT_TRUE(again.opened && again.complete && again.fileErrors == 0);
        ASSERT_EQ(again.elements.size(), expected.elements.size());
        for (size_t i = 1; i < again.elements.size(); ++i) {
            ASSERT_EQ(again.elements[i], expected.elements[i]);
            ASSERT_EQ(again.styles[i], expected.styles[i]);
        }
    }

    // A reading with the faults that are set, and what has to hold after any of them.
    Reading ReadWithFault() {
        files.boxes.count = 0;
        files.files.reads = files.files.opens = countedMemory.requests = 0;
        Reading reading;
        CVKMInterface* importer = CreateVKMInterface();
        if (importer != nullptr) reading = ReadAll(*VkmDetails(importer), name);
        ExpectIntact(reading);
        reads = files.files.reads;
        opens = files.files.opens;
        requests = countedMemory.requests;
        Repair();
        if (importer != nullptr) ExpectUsable(*VkmDetails(importer));
        DestroyVKMInterface(importer);
        EXPECT_EQ(files.files.openFiles, 0);
        EXPECT_EQ(countedMemory.blocks, blocksBefore);
        EXPECT_EQ(countedMemory.mappedBytes, mappedBefore);
        return reading;
    }

    SampleFiles files;
    const std::string name;
    Reading expected;
    int64_t blocksBefore = 0;
    int64_t mappedBefore = 0;
    // Of the last reading with a fault.
    int reads = 0;
    int opens = 0;
    int requests = 0;
    // A file that another program changes.
    std::string changing;
    std::string original;
};

INSTANTIATE_TEST_SUITE_P(Maps, Faults, testing::Values("a map of many lines.vkm", "odd.vkm"),
                         [](const auto& each) { return *each.param == 'o' ? "OddMap" : "LongMap"; });

TEST_P(Faults, AreMeasuredByACompleteReading) {
    EXPECT_TRUE(expected.complete);
    EXPECT_GE(expected.elements.size(), 4u);
    EXPECT_EQ(files.boxes.count, 0) << files.boxes.texts;
    std::string styles;
    for (const std::string& style : expected.styles) styles += style;
    for (const char* expectedStyle : {" 1 ", "L_", "S_"}) {
        EXPECT_EQ(styles.find(expectedStyle) != std::string::npos,
                  name == "a map of many lines.vkm" || *expectedStyle == ' ');
    }
}

TEST_P(Faults, EveryReadFails) {
    files.files.mostPerRead = 700;
    int fileErrors = 0;
    int boxes = 0;
    for (int n = 1; reads >= n - 1; ++n) {
        SCOPED_TRACE(n);
        files.files.failingRead = n;
        const Reading reading = ReadWithFault();
        if (HasFailure()) return;
        EXPECT_LE(reading.fileErrors + files.boxes.count, 1);
        EXPECT_EQ(reading.complete, reading.opened);
        fileErrors += reading.fileErrors;
        boxes += files.boxes.count;
    }
    EXPECT_GT(fileErrors, name == "a map of many lines.vkm" ? 10 : 0);
    EXPECT_GT(boxes, 5);
}

TEST_P(Faults, EveryOpenFails) {
    const int boxesBefore = MessageBoxes::ofShapeFiles;
    int boxesOfRound = boxesBefore;
    int changed = 0;
    for (int n = 1; opens >= n - 1; ++n) {
        SCOPED_TRACE(n);
        files.files.failingOpen = n;
        const Reading reading = ReadWithFault();
        if (HasFailure()) return;
        EXPECT_TRUE(n == 1 ? !reading.opened : reading.complete);
        EXPECT_EQ(reading.fileErrors, 0);
        changed += reading.styles != expected.styles;
        constexpr int mapAndTables = 7;  // two tables are opened twice
        const int shapeFiles = MessageBoxes::ofShapeFiles - boxesOfRound;
        EXPECT_EQ(files.boxes.count, n <= mapAndTables ? 1 : shapeFiles) << files.boxes.texts;
        boxesOfRound += shapeFiles;
    }
    EXPECT_GT(changed, 2);
    // Of the shape files only the first to fail shows a box, here or in an earlier test; the odd map has no
    // symbols.
    EXPECT_EQ(MessageBoxes::ofShapeFiles, name == "odd.vkm" ? boxesBefore : 1);
}

TEST_P(Faults, EveryReadMeetsAFileThatShrinksOrGrows) {
    files.files.mostPerRead = 1000;
    for (const std::string& each : {name, SymbologyFiles::Path("DKM1_3.TB"),
                                    SymbologyFiles::Path("WKOKES.COL"), SymbologyFiles::Path("POINTS.ksh")}) {
        changing = each;
        original = files.files[each];
        for (const std::string& changed :
             {original.substr(0, original.size() / 2), std::string(), original + original}) {
            reads = 0;
            for (int n = 1; reads >= n - 1; ++n) {
                SCOPED_TRACE(each + " " + std::to_string(n));
                files.files.beforeRead = [&] {
                    if (files.files.reads == n) files.files[changing] = changed;
                };
                const Reading reading = ReadWithFault();
                EXPECT_EQ(reading.fileErrors, 0);
                if (HasFailure()) return;
            }
        }
    }
}

// Every request fails, alone and with all that follow, from the importer's creation to its last element.
TEST_P(Faults, EveryMemoryRequestFails) {
    for (const bool andLater : {false, true}) {
        int incomplete = 0;
        requests = 0;
        for (int n = 1; requests >= n - 1; ++n) {
            SCOPED_TRACE(std::to_string(n) + (andLater ? " and later" : ""));
            countedMemory.StartFailing(n, andLater);
            const Reading reading = ReadWithFault();
            EXPECT_EQ(reading.fileErrors, 0);
            if (HasFailure()) return;
            incomplete += reading != expected;
        }
        EXPECT_GT(incomplete, 80) << "few requests fail";
    }
}

// The extents are found whole or not at all.
TEST_P(Faults, EveryMemoryRequestOfTheExtentsFails) {
    double expectedBox[4] = {};
    int failures = 0;
    int n = -1;
    for (bool failed = true; failed && n < 1000;) {
        SCOPED_TRACE(++n);
        CVKMInterface* importer = CreateVKMInterface();
        ASSERT_NE(importer, nullptr);
        ASSERT_EQ(importer->Open(name.c_str(), 0, "", 1, 0, 0), 1);
        double box[4];
        countedMemory.StartFailing(n, n % 2 == 0);
        const int found = importer->GetExtents(&box[0], &box[1], &box[2], &box[3]);
        failed = n == 0 || countedMemory.requests >= n;
        countedMemory.StopFailing();
        if (n == 0) std::copy(box, box + 4, expectedBox);
        if (found != 0) {
            EXPECT_TRUE(std::equal(box, box + 4, expectedBox));
        }
        failures += found == 0;
        DestroyVKMInterface(importer);
    }
    EXPECT_EQ(failures, n - 1) << "each request but the last, which is one too many";
}

// The file on disk changes between two elements.
TEST(FaultsOnDisk, FilesShrinkAndGrow) {
    std::string map;
    constexpr size_t lines = 40000;
    for (size_t i = 0; i < lines; ++i) map += "&L C 1 " + std::to_string(i) + "\nL 3 4\n";
    for (const size_t size : {size_t{0}, map.size() / 2, map.size() * 2}) {
        const TemporaryFile file(map);
        CVKMInterface* importer = CreateVKMInterface();
        ASSERT_EQ(importer->Open(file.Path(), 0, "", 1, 0, 0), 1);
        size_t count = 0;
        for (double point[3]; importer->ReadNext() == 1; ++count) {
            importer->GetElementPoint(0, point);
            ASSERT_EQ(point[0], count % lines);
            if (count != 10) continue;
            std::filesystem::resize_file(file.Path(), std::min(size, map.size()));
            if (size > map.size()) std::ofstream(file.Path(), std::ios::app | std::ios::binary) << map;
        }
        if (size > map.size()) {
            EXPECT_EQ(count, 2 * lines - 1);
        } else {
            EXPECT_LT(count, size == 0 ? lines - 1 : lines);
            EXPECT_GT(count, 10u);
        }
        DestroyVKMInterface(importer);
    }
}

}  // namespace
}  // namespace vemrado_test
