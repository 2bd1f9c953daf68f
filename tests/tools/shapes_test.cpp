// vkm shapes: sources to shape files and back, to the byte.

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "program_run.h"
#include "shape_file.h"
#include "shape_source.h"

namespace vemrado_test {
namespace {

using namespace std::string_literals;
using vemrado::tools::ReadShapeFile;
using vemrado::tools::ReadShapeSource;
using vemrado::tools::ShapeFileError;
using vemrado::tools::ShapeSourceError;
using vemrado::tools::WriteShapeFile;
using vemrado::tools::WriteShapeSource;

const std::string magic = "\xC4\x4A\xB1\x29";

std::string Pack(const std::string& source) {
    return WriteShapeFile(ReadShapeSource(source));
}
std::string Unpack(const std::string& bytes) {
    return WriteShapeSource(ReadShapeFile(bytes));
}

std::string Word(unsigned value) {
    return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8 & 0xFF)};
}

TEST(ShapeSource, PacksAsTheFormatSays) {
    const struct {
        const char* source;
        std::string records;
    } cases[] = {
        {"# nothing\n\n", ""},
        {"height 100\ndrawing\npart 0\n0 0  100 0\n 100 100",
         "HEIGHT%=\x64\0SYM$=\x14\0\0\0\0\0\1\0\3\0\0\0\0\0\x64\0\0\0\x64\0\x64\0"s},
        {"height -2", "HEIGHT%=\xFE\xFF"},
        {"drawing \"a \\\"\\\\\\xE9\"\nwords 1 65535\npart 3\n-1 -32768",
         "NAME$=\5\0a \"\\\xE9SYM$=\x0C\0\1\0\xFF\xFF\1\0\1\xC0\xFF\xFF\0\x80"s},
        {"drawing # no parts", "SYM$=\6\0\0\0\0\0\0\0"s},
        {"drawing\r\npart 2\r\n", "SYM$=\x08\0\0\0\0\0\1\0\0\x80"s},
        {"drawing\nrect 0 1 2 3", "SYM$=\x1C\0\0\0\0\0\1\0\5\0\0\0\1\0\2\0\1\0\2\0\3\0\0\0\3\0\0\0\1\0"s},
        {"drawing\narc 10 20 5 0 90 1", "SYM$=\x10\0\0\0\0\0\1\0\2\0\x0F\0\x14\0\x0A\0\x19\0"s},
        {"record \"X~\" 7\nbytes 0102\nbytes 03", "X~=\3\0\0\0\7\0\0\0\1\2\3"s},
        {"record \"X$abc\"\nbytes FF", "X$abc=\1\0\xFF"s},
        {"record \"&\"\nbytes 01020304", "&=\1\2\3\4"},
    };
    for (const auto& example : cases) {
        SCOPED_TRACE(example.source);
        const std::string bytes = Pack(example.source);
        EXPECT_EQ(bytes, magic + example.records);
        EXPECT_EQ(Pack(Unpack(bytes)), bytes);
    }
}

TEST(ShapeSource, ClosesCirclesAndFillsDiscs) {
    const std::string source = Unpack(Pack("drawing\ncircle 5 -5 100 4\ndisc 0 0 10 6"));
    EXPECT_EQ(source.substr(0, source.find("  part 0\n    10 0")),
              "\ndrawing\n  part 0\n    105 -5  5 95  -95 -5  5 -105  105 -5\n");
    EXPECT_NE(source.find("  part 0\n    4 0  "), std::string::npos) << source;
}

TEST(ShapeSource, NamesLineAndReasonOfAFault) {
    std::string tooManyPoints = "drawing\npart 0\n";
    for (int i = 0; i < 16384; ++i) tooManyPoints += "0 0\n";
    const struct {
        std::string source;
        size_t line;
        std::string reason;
    } cases[] = {
        {"drawing\n\nfoo 1", 3, "\"foo\" is not a word"},
        {"0 0", 1, "no drawing"},
        {"drawing\n0 0", 2, "after the line \"part\""},
        {"drawing\npart 0\n1 2 3", 3, "two coordinates"},
        {"drawing\npart 0\n1 32768", 3, "32768 is not between -32768 and 32767"},
        {"drawing\npart 4", 2, "between 0 and 3"},
        {"drawing\npart 0\n1 2x", 3, "no whole number"},
        {"drawing name", 1, "double quotes"},
        {"drawing \"name", 1, "closing quote"},
        {"drawing \"\\y\"", 1, "backslash"},
        {"drawing\ncircle 0 0", 2, "takes 3 to 4 values"},
        {"drawing\ncircle 32000 0 1000", 2, "outside the range"},
        {"height", 1, "takes 1 values"},
        {"record \"X\"", 1, "no header"},
        {"record \"X~\"", 1, "second size"},
        {"record \"X$\" 5", 1, "second size"},
        {"bytes 00", 1, "after the line \"record\""},
        {"record \"X$\"\nbytes 0", 2, "two hexadecimal digits"},
        {"record \"X$\"\nbytes 0G", 2, "two hexadecimal digits"},
        {tooManyPoints, 16384, "larger than 65535 bytes"},
    };
    for (const auto& example : cases) {
        SCOPED_TRACE(example.source.substr(0, 60));
        try {
            Pack(example.source);
            ADD_FAILURE() << "no error";
        } catch (const ShapeSourceError& error) {
            EXPECT_EQ(error.Line(), example.line);
            EXPECT_NE(std::string(error.what()).find(example.reason), std::string::npos) << error.what();
        }
    }
    EXPECT_THROW(Pack("record \"X%\"\nbytes 00"), ShapeFileError);
    EXPECT_THROW(Pack("height 1\nrecord \"X&\""), ShapeFileError);
}

TEST(ShapeFile, RejectsWhatIsNoShapeFile) {
    const struct {
        std::string bytes;
        size_t offset;
    } cases[] = {
        {"", 0},
        {"\xC4\x4A\xB1", 0},
        {magic + "SYM", 4},
        {magic + "SYM=", 4},
        {magic + "S M$=", 4},
        {magic + "\0=\1\2"s, 4},
        {magic + std::string(256, 'a') + "$=\0\0"s, 4},
        {magic + "SYM$=\6", 9},
        {magic + "SYM$=\6\0\0\0"s, 11},
        {magic + "X~=\xFF\xFF\xFF\xFF\0\0\0\0"s, 15},
    };
    for (const auto& example : cases) {
        SCOPED_TRACE(testing::PrintToString(example.bytes.substr(0, 20)));
        try {
            ReadShapeFile(example.bytes);
            ADD_FAILURE() << "no error";
        } catch (const ShapeFileError& error) {
            EXPECT_EQ(error.Offset(), example.offset) << error.what();
        }
    }
}

// Any well-formed file: known records with right and wrong values, others of all types, names anywhere.
std::string RandomShapeFile(std::mt19937& random) {
    const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    const auto bytes = [&](size_t count) {
        std::string text;
        while (text.size() < count) text += static_cast<char>(below(256));
        return text;
    };
    std::string file = magic;
    for (unsigned records = below(12); records > 0; --records) {
        const unsigned size = below(40);
        switch (below(8)) {
            case 0:
                file += "HEIGHT%=" + bytes(2);
                break;
            case 1:
                file += "SYM$=" + Word(size) + bytes(size);
                break;
            case 2:
                file += "NAME$=" + Word(size) + bytes(size);
                break;
            case 3:
                file += (below(2) == 0 ? "X~%.z~=" : "~=") + Word(size) + Word(0) + bytes(4) + bytes(size);
                break;
            case 4:
                file += (below(2) == 0 ? "\xE9\x8A@=" : "a!=") + Word(size) + Word(0) + bytes(size);
                break;
            case 5:
                file += "SYM#=" + bytes(8);
                break;
            default: {
                const unsigned parts = below(4);
                std::string words;
                std::string points;
                for (unsigned part = 0; part < parts; ++part) {
                    const unsigned count = below(20);
                    words += Word(below(4) << 14 | count);
                    points += bytes(4 * count);
                }
                const std::string value = bytes(4) + Word(parts) + words + points;
                file += "SYM$=" + Word(static_cast<unsigned>(value.size())) + value;
            }
        }
    }
    return file;
}

TEST(ShapeFile, ComesBackToTheByte) {
    std::mt19937 random(20);
    for (int i = 0; i < 2000; ++i) {
        const std::string bytes = RandomShapeFile(random);
        const std::string source = Unpack(bytes);
        ASSERT_EQ(Pack(source), bytes) << source;
        ASSERT_EQ(Unpack(Pack(source)), source);
    }
}

TEST(ShapeFile, EveryPrefixIsReadOrRejected) {
    const std::string whole = FileBytes(DATA_FOLDER "/symbology/VKMSym/POINTS.ksh");
    size_t read = 0;
    for (size_t size = 0; size < whole.size(); ++size) {
        try {
            const std::string prefix = whole.substr(0, size);
            ASSERT_EQ(Pack(Unpack(prefix)), prefix);
            ++read;
        } catch (const ShapeFileError&) {
        }
    }
    EXPECT_EQ(read, 62u);  // after the magic number, the height and each name and drawing but the last
}

TEST(ShapesCommand, CommittedFilesAreThoseOfTheirSources) {
    const TestFolder folder;
    for (const std::string name : {"POINTS", "LANDUSE"}) {
        const std::string source = DATA_FOLDER "/symbology/sources/" + name + ".txt";
        const std::string committed = DATA_FOLDER "/symbology/VKMSym/" + name + ".ksh";
        const std::string packed = folder.Path(name);
        const RunResult run = RunVkm({"shapes", "pack", source, packed});
        ASSERT_EQ(run.exitCode, 0) << run.errors;
        EXPECT_EQ(FileBytes(packed), FileBytes(committed));
        // A list of the drawing library takes 1001 points.
        for (const auto& item : ReadShapeFile(FileBytes(committed)).items) {
            const auto* drawing = std::get_if<vemrado::tools::ShapeDrawing>(&item);
            if (drawing == nullptr) continue;
            size_t points = 0;
            for (const auto& part : drawing->parts) points += part.points.size();
            EXPECT_LE(points, 1001u) << drawing->name.value_or("");
        }
    }
}

TEST(ShapesCommand, SampleSymbologyIsWhole) {
    const RunResult run = RunVkm({"symbology", DATA_FOLDER "/symbology"});
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
}

TEST(ShapesCommand, ReportsFaultsOnOneLine) {
    const TestFolder folder;
    const std::string source = folder.Add("bad.txt", "drawing\npart 9\n");
    const std::string noShapes = folder.Add("bad.ksh", magic + "SYM$=\5");
    const struct {
        std::vector<std::string> arguments;
        int exitCode;
        std::string errors;
    } cases[] = {
        {{"pack", source, folder.Path("out")}, 1, source + ":2: 9 is not between 0 and 3"},
        {{"unpack", noShapes}, 1, noShapes + ": the file ends within a record, at byte 9"},
        {{"unpack", folder.Path("none")}, 1, folder.Path("none") + ": No such file or directory"},
        {{"unpack", folder.Path("")}, 1, folder.Path("") + ": Is a directory"},
        {{"pack", source}, 2, "needs the name of the file to write"},
        {{"turn", source}, 2, ""},
    };
    for (const auto& example : cases) {
        std::vector<std::string> arguments = example.arguments;
        arguments.insert(arguments.begin(), "shapes");
        const RunResult run = RunVkm(arguments);
        EXPECT_EQ(run.exitCode, example.exitCode) << run.errors;
        EXPECT_NE(run.errors.find(example.errors), std::string::npos) << run.errors;
        EXPECT_EQ(run.output, "");
    }
    const RunResult piped = RunVkm({"shapes", "unpack", "-"}, {.input = Pack("height 7\n")});
    EXPECT_EQ(piped.exitCode, 0) << piped.errors;
    EXPECT_EQ(piped.output, "height 7\n");
}

}  // namespace
}  // namespace vemrado_test
