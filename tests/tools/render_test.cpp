// Pictures as people ask for them: vkm render and vkm symbology.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "program_run.h"

namespace vemrado_test {
namespace {

// Two layers, a symbol, and a text with Czech letters in Windows-1250.
constexpr const char* smallMap =
    "&R 0 0 0 0 1000\n&U 1\n&L P 1043010 743010 K=21900\nL 1043010 743060\nL 1043060 743060\n"
    "&L P 1043020 743020 S=101\n&U 7\n&T 1043030 743030 \"\x8Elu\x9Dou\xE8k\xFD k\xF9\xF2\" H=2\n&K\n";

bool Holds(const std::string& whole, const std::string& part) {
    return whole.find(part) != std::string::npos;
}

TEST(Render, MakesPicturesOfEachKind) {
    const TestFolder folder;
    const std::string map = folder.Add("map.vkm", smallMap);
    for (const char* legend : {"", "--legend"}) {
        for (const char* name : {"map.png", "map.SVG", "map.pdf"}) {
            std::vector<std::string> arguments = {"render", map, "-o", folder.Path(name)};
            if (*legend) arguments.push_back(legend);
            const RunResult run = RunVkm(arguments);
            EXPECT_EQ(run.exitCode, 0) << name << run.errors;
            EXPECT_EQ(run.output + run.errors, "");
        }
        EXPECT_EQ(FileBytes(folder.Path("map.png")).substr(1, 3), "PNG");
        const std::string svg = FileBytes(folder.Path("map.SVG"));
        for (const char* part : {"<g id=\"layer-1\">", "<g id=\"layer-7\">", "class=\"line-21900\"",
                                 "xlink:href=\"#symbol-101\"", ">Žluťoučký kůň</text>"}) {
            EXPECT_TRUE(Holds(svg, part)) << part;
        }
        EXPECT_EQ(Holds(svg, "<g id=\"legend\">"), *legend != '\0');
        EXPECT_EQ(system(("xmllint --noout " + folder.Path("map.SVG")).c_str()), 0);
        ASSERT_EQ(system(("pdftotext " + folder.Path("map.pdf")).c_str()), 0);
        EXPECT_TRUE(Holds(FileBytes(folder.Path("map.txt")), "Žluťoučký kůň"));
    }
}

TEST(Render, RefusesAndLeavesTheOldPicture) {
    const TestFolder folder;
    const std::string map = folder.Add("map.vkm", smallMap);
    const std::string far = folder.Add("far.vkm", "&L P 0 0\nL 0 900000000\n&K\n");
    const std::string cut = folder.Add("cut.vkm", "&L P 0 0\nL 0 9\n&L P 0 0\n");
    const std::string empty = folder.Add("empty.vkm", "&K\n");
    const std::string picture = folder.Add("old.png", "old");
    const struct {
        std::vector<std::string> arguments;
        int exitCode;
        const char* errors;
    } cases[] = {
        {{map, "-o", folder.Path("map.gif")}, 2, "ends in .png, .svg or .pdf"},
        {{map}, 2, "--output is required"},
        {{map, "-o", picture, "--width", "0"}, 2, "--width"},
        {{map, "-o", picture, "--bbox", "1,1,1,9"}, 2, "no area"},
        {{map, "-o", picture, "--angle-unit", "turns"}, 2, "no angle unit 'turns'"},
        {{map, "-o", picture, "--layers", "5"}, 1, "map.vkm: nothing to draw"},
        {{empty, "-o", picture}, 1, "empty.vkm: nothing to draw"},
        {{folder.Path("missing.vkm"), "-o", picture}, 1, "missing.vkm"},
        {{map, "-o", picture, "--bbox=0,0,9,9"},
         1,
         "in the --bbox: the map lies in -1043060,-743060,-1043010,-743010"},
        {{map, "-o", picture, "--title", "a\x01"}, 2, "no control characters"},
        {{map, "-o", picture, "--bbox=-1100000,-800000,-1000000,-700000"},
         2,
         "590551 x 590551 pixels is too large"},
        {{far, "-o", picture, "--width", "3000", "--bbox", "0,0,1,3e5"},
         2,
         "3000 x 9e+08 pixels is too large"},
        {{map, "-o", folder.Path("nowhere/map.png")}, 3, "nowhere"},
        {{map, "-o", folder.Path("map.html"), "--layers", "1"}, 2, "--layers: does not apply to a page"},
        {{map, map, "-o", folder.Path("map.html")}, 2, "a page for the browser holds one map"},
        {{map, "-o", picture, "--page", "a4"}, 2, "--page: pages are made as PDF"},
        {{map, "-o", folder.Path("p.pdf"), "--page", "a9"}, 2, "there is no paper 'a9'"},
        {{map, "-o", folder.Path("p.pdf"), "--page", "20x300"}, 2, "100 to 5080 mm"},
        {{map, "-o", folder.Path("p.pdf"), "--page", "a4", "--width", "9"}, 2, "exclude each other"},
        {{map, "-o", folder.Path("p.pdf"), "--landscape"}, 2, "--landscape needs --page"},
        {{map, "-o", picture, "--scale", "fit"}, 2, "--scale fit needs --page"},
        {{map, "-o", picture, "--scale", "0.5"}, 2, "'0.5' is no scale"},
        {{map, "-o", folder.Path("p.pdf"), "--page", "a6", "--scale", "1"},
         2,
         "more than 400 pages at 1 : 1;"},
    };
    for (const auto& test : cases) {
        std::vector<std::string> arguments = test.arguments;
        arguments.insert(arguments.begin(), "render");
        const RunResult run = RunVkm(arguments);
        EXPECT_EQ(run.exitCode, test.exitCode) << test.errors;
        EXPECT_TRUE(Holds(run.errors, test.errors)) << run.errors << "\n" << test.errors;
    }
    EXPECT_EQ(FileBytes(picture), "old");
    const std::filesystem::directory_iterator files(folder.Path(""));
    EXPECT_EQ(std::distance(begin(files), end(files)), 5);  // no leftovers

    // What was read is drawn, and the loss is said.
    const RunResult run = RunVkm({"render", cut, "-o", picture});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(Holds(run.errors, "its last element is lost")) << run.errors;
    EXPECT_EQ(FileBytes(picture).substr(1, 3), "PNG");
}

// 100 m by 30 m of ground, with a text over the edge between two pages and a number on each.
TEST(Render, SpreadsAMapOverPagesWithAnOverview) {
    const TestFolder folder;
    const std::string map = folder.Add("map.vkm",
                                       "&R 0 0 0 0 1000\n&U 1\n&L P 0 0 K=21900\nL 0 30\nL 100 30\nL 100 0\n"
                                       "&T 50 10 '2109/1' H=2 D=5\n&T 5 10 '17' H=2\n&K\n");
    const struct {
        std::vector<std::string> options;
        const char* pages;               // of pdfinfo, without what separates them
        int numbers;                     // 2109/1 on the overview and on one page, not cut on both
        std::vector<const char*> texts;  // of the whole, each page's before the next
    } cases[] = {
        {{"--page", "a4"}, "1 595.276 x 841.89 pts (A4)", 1, {"Scale 1 : 1000", "page 1 / 1"}},
        {{"--page", "A5", "--landscape", "--scale", "500"},
         "3 595.276 x 419.528 pts",
         2,
         {"Parts: 2, Scale 1 : 500", "page 1 / 3", "2109/1", "page 3", "page 2 / 3", "page 2", "page 3 / 3"}},
        {{"--page", "100x120", "--scale", "fit", "--legend"},
         "2 283.465 x 340.157 pts",
         1,
         {"Scale 1 : 2000", "page 1 / 2", "parcel boundary", "page 2 / 2"}},
    };
    for (const auto& test : cases) {
        std::vector<std::string> arguments = {"render", map, "-o", folder.Path("map.pdf")};
        arguments.insert(arguments.end(), test.options.begin(), test.options.end());
        const RunResult run = RunVkm(arguments);
        EXPECT_EQ(run.exitCode, 0) << run.errors;
        const std::string command = "cd " + folder.Path("") +
                                    " && pdftotext map.pdf && pdfinfo map.pdf | sed -n " +
                                    "'s/^Pages: *//p; s/^Page size: *//p' | tr '\\n' ' ' > info.txt";
        ASSERT_EQ(system(command.c_str()), 0);
        EXPECT_EQ(FileBytes(folder.Path("info.txt")), std::string(test.pages) + " ");
        const std::string texts = FileBytes(folder.Path("map.txt"));
        for (const char* text : test.texts) EXPECT_TRUE(Holds(texts, text)) << text << "\n" << texts;
        int numbers = 0;
        for (size_t at = 0; (at = texts.find("2109/1", at)) != std::string::npos; ++at) ++numbers;
        EXPECT_EQ(numbers, test.numbers) << texts;
    }
}

// One wrong point must not cost more than the rest of the map, and a text at the edge must not read as
// another one.
TEST(Render, StaysSmallWhereAPointIsFarAway) {
    const TestFolder folder;
    std::string lines = "&R 0 0 0 0 1000\n&U 1\n";
    for (int i = 0; i < 20; ++i)
        lines += "&L P 1043010 74301" + std::to_string(i % 10) + " K=21900\nL 1043060 743060\n";
    const std::string map = folder.Add("far.vkm", lines + "&T 0 0 '2109/1' H=2\n&K\n");
    for (const char* name : {"far.svg", "far.png", "far.pdf"}) {
        const RunResult run = RunVkm({"render", map, "-o", folder.Path(name), "--legend", "--width", "800"});
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_TRUE(Holds(run.errors, "one point lies 1281 km from the rest; --bbox=-1043060,-743060,"))
            << run.errors;
        EXPECT_TRUE(Holds(run.errors, "leaves it out (it is at 0.00 0.00)")) << run.errors;
        EXPECT_LT(FileBytes(folder.Path(name)).size(), 100'000U) << name;
    }
    EXPECT_TRUE(Holds(FileBytes(folder.Path("far.svg")), ">-600000</text>"));
    for (const auto& [box, shown] :
         {std::pair{"--bbox=-20,-20,20,20", true}, std::pair{"--bbox=-2,-20,2,20", false}}) {
        RunVkm({"render", map, "-o", folder.Path("part.svg"), box});
        EXPECT_EQ(Holds(FileBytes(folder.Path("part.svg")), "2109/1"), shown) << box;
    }
    // Labels of S-JTSK are positive, whichever way the picture's axes run.
    RunVkm({"render", map, "-o", folder.Path("part.svg"), "--legend",
            "--bbox=-1043060,-743060,-1043010,-743010"});
    EXPECT_TRUE(Holds(FileBytes(folder.Path("part.svg")), ">743040</text>"));
}

TEST(Render, DrawsChangesInColourOverAGreyMap) {
    const TestFolder folder;
    const std::string head = "&R 0 0 0 0 1000\n&U 1\n&L P 10 10 K=21900\nL 10 60\n";
    const std::string old =
        folder.Add("old.vkm", head + "&T 30 20 'gone' H=2\n&T 30 40 'was' H=2\n&L P 15 15 S=101\n&K\n");
    const std::string now =
        folder.Add("now.vkm", head + "L 40 60\n&T 30 40 'is' H=2\n&L P 15 15 S=103\n&T 9 9 'same' H=2\n&K\n");
    folder.Add("cut.vkm", head);
    const auto render = [&](const std::string& before, const std::string& after, const char* option) {
        return RunVkm({"render", after, "--changes", before, "-o", folder.Path("diff.svg"), option});
    };
    EXPECT_EQ(render(old, now, "--legend").exitCode, 0);
    const std::string svg = FileBytes(folder.Path("diff.svg"));
    const auto group = [&svg](const std::string& id) {
        const size_t begin = svg.find("<g id=\"" + id + "\">");
        return begin == std::string::npos ? std::string()
                                          : svg.substr(begin, svg.find("</g>", begin) - begin);
    };
    const struct {
        const char* group;
        const char* part;
    } parts[] = {{"layer-1", "class=\"line-21900\""},
                 {"layer-1", "fill=\"#a5a5a5\" font-size=\"2.743\""},
                 {"added", "class=\"added\" d=\"M"},
                 {"added", ">same</text>"},
                 {"changed", "fill=\"#2850c8\""},
                 {"changed", ">is</text>"},
                 {"changed", "xlink:href=\"#symbol-103\""},
                 {"removed", "fill=\"#c81e1e\""},
                 {"removed", ">gone</text>"},
                 {"legend", ">changed</text>"}};
    for (const auto& [id, part] : parts) EXPECT_TRUE(Holds(group(id), part)) << id << " " << part << svg;
    EXPECT_TRUE(Holds(svg, ".line-21900 { stroke: #a5a5a5") && Holds(svg, ".added { stroke: #1e963c"));
    EXPECT_FALSE(Holds(svg, ">was</text>"));
    // The added segment lies on the grey one whichever way the axes run.
    for (const char* axes : {"x,y", "x,-y", "-x,y", "-x,-y", "y,x", "-y,x", "y,-x", "-y,-x"}) {
        RunVkm({"render", now, "--changes", old, "-o", folder.Path("turned.svg"), "--orientation",
                std::string("(") + axes + ")"});
        const std::string turned = FileBytes(folder.Path("turned.svg"));
        const size_t added = turned.find("<path class=\"added\" d=\"M");
        ASSERT_NE(added, std::string::npos) << axes;
        const size_t begin = turned.find('M', added) + 1;
        const std::string segment = turned.substr(begin, turned.find('"', begin) - begin);
        EXPECT_LT(turned.find(segment), added) << axes << turned;
    }
    EXPECT_EQ(render(now, now, "--no-symbols").exitCode, 0);
    EXPECT_FALSE(Holds(FileBytes(folder.Path("diff.svg")), "<g id=\"changed\">"));
    for (const auto& [tolerance, removed] :
         {std::pair{"--tolerance=0.3", false}, std::pair{"--tolerance=0.1", true}}) {
        render(folder.Add("near.vkm", head + "&T 9.2 9 'same' H=2\n&K\n"), now, tolerance);
        EXPECT_EQ(Holds(FileBytes(folder.Path("diff.svg")), "<g id=\"removed\">"), removed) << tolerance;
    }
    EXPECT_EQ(RunVkm({"render", now, "--tolerance=1", "-o", folder.Path("x.svg")}).exitCode, 2);
    EXPECT_EQ(render(old, "-", "--legend").exitCode, 2);
    EXPECT_EQ(render(folder.Path("cut.vkm"), now, "--legend").exitCode, 1);
}

TEST(Render, DrawsSheetsSideBySide) {
    const TestFolder folder;
    folder.Add("west.vkm", "&U 1\n&L P 0 0 K=21900\nL 0 10\n&K\n");
    folder.Add("east.vkm", "&U 1\n&L P 10 0 K=21900\nL 10 10\n&K\n");
    const std::string picture = folder.Path("both.svg");
    const RunResult run = RunVkm({"render", folder.Path(""), "-o", picture});
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    const std::string svg = FileBytes(picture);
    EXPECT_TRUE(Holds(svg, "width=\"16mm\" height=\"16mm\"")) << svg;
    EXPECT_NE(svg.find("class=\"line-21900\""), svg.rfind("class=\"line-21900\""));
    folder.Add("worse.vkm", "no map");
    EXPECT_EQ(RunVkm({"render", folder.Path(""), "-o", picture}).exitCode, 1);
    EXPECT_EQ(FileBytes(picture), svg);
}

TEST(Render, DrawsWithoutSymbologyAndSaysSoInTheHostsLanguage) {
    const TestFolder folder;
    const std::string map = folder.Add("map.vkm", smallMap);
    const std::string noWidths = folder.Path("data");
    std::filesystem::create_directories(noWidths + "/VKMSym");
    folder.Add("data/VKMSym/WKOKES.COL", "[white]\n");
    const struct {
        const char* country;
        const char* says;
        const char* heading;
    } cases[] = {
        {"VEMRADO_COUNTRY=0", "Soubor neobsahuje", "Druhy čar"},
        {"VEMRADO_COUNTRY=1", "File does not contain line width table.", "Line types"},
        {"VEMRADO_COUNTRY=2", "Datei", "Linientypen"},
    };
    for (const auto& test : cases) {
        RunSetting setting;
        setting.environment = test.country;
        const std::string svg = folder.Path("map.svg");
        const RunResult run = RunVkm({"render", map, "-o", svg, "--legend", "--data", noWidths}, setting);
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_TRUE(Holds(run.errors, test.says)) << run.errors;
        EXPECT_TRUE(Holds(FileBytes(svg), test.heading));
        EXPECT_TRUE(Holds(FileBytes(svg), ".line-21900 { stroke: #000000; stroke-width: 0.13 }"));
    }
}

TEST(Symbology, OfTheSampleMapsIsWholeAndDrawn) {
    const TestFolder folder;
    const RunResult run = RunVkm({"symbology", "-o", folder.Path("sheet.svg")});
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    EXPECT_TRUE(Holds(run.output, "21900"));
    const std::string svg = FileBytes(folder.Path("sheet.svg"));
    EXPECT_TRUE(Holds(svg, "class=\"line-21900\"") && Holds(svg, "xlink:href=\"#symbol-101\""));
    EXPECT_EQ(system(("xmllint --noout " + folder.Path("sheet.svg")).c_str()), 0);
}

TEST(Symbology, ListsEveryProblem) {
    const TestFolder folder;
    std::filesystem::create_directories(folder.Path("VKMSym"));
    folder.Add("VKMSym/WKOKES.COL", "[white]\n[width]\n");
    folder.Add("VKMSym/WKOKES.CAR", "-1 0\n1 1 -7\n3 1 -1\n");
    folder.Add("VKMSym/DKM1_3.TB", ":L\n5 1\n6 2\n7 3\n:S\n9 4\n");
    for (const char* directory : {"", "VKMSym", "VKMSym/"}) {
        const RunResult run = RunVkm({"symbology", folder.Path(directory)});
        EXPECT_EQ(run.exitCode, 1);
        for (const char* problem :
             {"WKOKES.SYM", "line code 5: there is no dash pattern 7", "line code 6: there is no line type 2",
              "symbol code 9: the drawings of symbol 4"}) {
            EXPECT_TRUE(Holds(run.errors, problem)) << problem << "\n" << run.errors;
        }
    }
    EXPECT_EQ(RunVkm({"symbology", folder.Path("nowhere")}).exitCode, 2);
}

}  // namespace
}  // namespace vemrado_test
