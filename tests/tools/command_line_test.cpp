// The program's manners: exit codes, streams, options, interrupts.

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "program_run.h"

namespace vemrado_test {
namespace {

constexpr const char* smallMap =
    "&V 1 0 0\n&R 0 0 0 0 500 a\n&U 7\n&L P 10 20 K=1101\nL 11 21 S=5\n&T 12 22 'Lhota' K=1018\n&K\n";
constexpr const char* cutMap = "&V 1 0 0\n&U 7\n&L P 10 20 K=1101\n&L P 11 21\n";

struct Case {
    std::vector<std::string> arguments;
    std::string input;
    int exitCode;
    std::string output;  // a part of it; empty: nothing
    std::string errors;  // a part of them; empty: nothing
};

void ExpectPart(const std::string& whole, const std::string& part, const char* what) {
    if (part.empty()) {
        EXPECT_EQ(whole, "") << what;
    } else {
        EXPECT_NE(whole.find(part), std::string::npos)
            << what << ": " << whole << "\ndoes not hold: " << part;
    }
}

std::string Joined(const std::vector<std::string>& words) {
    std::string text = "vkm";
    for (const std::string& word : words) text += " '" + word + "'";
    return text;
}

TEST(CommandLine, EndsAndSpeaksAsDocumented) {
    const TestFolder folder;
    const std::string map = folder.Add("map.vkm", smallMap);
    const std::string cut = folder.Add("cut.vkm", cutMap);
    const std::string marked = folder.Add("marked.vkm", "\xEF\xBB\xBF" + std::string(smallMap));
    const std::string utf8 = folder.Add("utf8.vkm", "&T 12 22 'Žluťoučký kůň' H=2\n&K\n");
    folder.Add("marked.vkm.zip", "PK\3\4 not a map");
    const std::string missing = folder.Path("missing.vkm");
    const std::string lost =
        "cut.vkm: incomplete: its closing record &K is missing, so its last element is lost\n";
    const std::vector<Case> cases = {
        {{"info", map}, "", 0, "1:500", ""},
        {{"info", "-"}, smallMap, 0, "standard input\n", ""},
        {{"dump", "-"}, smallMap, 0, "\"text\":\"Lhota\"", ""},
        {{"dump", map, "-q"}, "", 0, "{\"kind\":\"line\",\"layer\":7", ""},
        // What is incomplete or cannot be used is said, and the rest is done.
        {{"info", cut}, "", 1, "no: ", lost},
        {{"dump", cut}, "", 1, "\"K\":\"1101\"", lost},
        {{"dump", cut, "--quiet"}, "", 1, "\"K\":\"1101\"", lost},
        {{"info", missing, map}, "", 1, "1:500", "missing.vkm"},
        {{"info", "--json", missing}, "", 1, "\"error\": ", "missing.vkm"},
        {{"dump", missing}, "", 1, "", "vkm: "},
        {{"dump", folder.Path("")}, "", 1, "", folder.Path("")},
        {{"info", "-"}, "", 1, "Extents      none", "standard input: incomplete"},
        {{"dump", "-"}, "\x89PNG\r\n\x1A", 1, "", "standard input: not a VKM file (looks like PNG)"},
        {{"info", "-"},
         "\xEF\xBB\xBF" + std::string(smallMap),
         0,
         "1:500",
         "standard input: the UTF-8 byte order mark"},
        {{"dump", marked}, "", 0, "[20,10]", "marked.vkm: the UTF-8 byte order mark"},
        {{"render", marked + ".zip", "-o", folder.Path("x.png")},
         "",
         1,
         "",
         "zip: it is no whole zip archive: it is too short"},
        // Usage.
        {{}, "", 2, "", "Try 'vkm --help'."},
        {{"nonsense"}, "", 2, "", "no command 'nonsense'; the commands are help, "},
        {{"rendr", map}, "", 2, "", "no command 'rendr'; did you mean 'render'?"},
        {{"help", "dmup"}, "", 2, "", "did you mean 'dump'?"},
        {{"help"}, "", 0, "info ", ""},
        {{"help", "dump"}, "", 0, "Examples:", ""},
        {{"version"}, "", 0, "vkm 1.", ""},
        {{"-V"}, "", 0, "vkm 1.", ""},
        {{"info", "a\x1B[31mb.vkm"}, "", 1, "a\\x1B[31mb.vkm", "No such file"},
        // Outputs.
        {{"render", map, "-o", "-"}, "", 2, "", "--format png, svg or pdf"},
        {{"render", "-", "-o", "-", "-f", "svg"}, smallMap, 0, "<svg ", ""},
        {{"render", map, "-o", map, "-f", "png"}, "", 2, "", "an input cannot be the output"},
        {{"shapes", "unpack", map, map}, "", 2, "", "an input cannot be the output"},
        {{"shapes", "pack", "-", "-"}, "height 7\n", 0, "HEIGHT", ""},
        {{"shapes", "pack", "-", "/dev/full"}, "height 7\n", 3, "", "/dev/full: cannot be written: No space"},
        {{"shapes", "pack", "-", "/no/where"}, "height 7\n", 3, "", "/no/where: cannot be written: No such"},
        {{"symbology", "-o", "-"}, "", 2, "", "the sheet needs a file"},
        {{"render", "-", "-o", "-", "-f", "svg", "--data", DATA_FOLDER "/symbology/VKMSym/"},
         "&L P 1 2 S=101\n&K\n",
         0,
         "#symbol-101",
         ""},
        {{"render", map, "-o", "-", "-f", "svg", "--layers", "1-6,8"}, "", 1, "", "nothing to draw"},
        {{"render", map, "-o", "-", "-f", "svg", "--layers", "6-1"}, "", 2, "", "'6-1' is no layer number"},
        // Encodings.
        {{"render", utf8, "-o", "-", "-f", "svg"}, "", 0, "<svg ", "the texts look like utf-8"},
        {{"dump", "-", "-e", "auto"}, FileBytes(utf8), 0, "Žluťoučký kůň", ""},
        {{"dump", utf8, "-e", "auto"}, "", 0, "Žluťoučký kůň", ""},
        {{"info"}, "", 2, "", "Try 'vkm info --help'."},
        {{"info", "-", "-"}, smallMap, 2, "", "standard input can be read only once"},
        {{"dump", map, map}, "", 2, "", "Try 'vkm dump --help'."},
        {{"dump", map, "--encoding", "ebcdic"}, "", 2, "", "there is no encoding 'ebcdic'"},
        {{"dump", map, "--orientation", "3"}, "", 2, "", "there is no axis orientation '3'"},
        {{"dump", map, "--data", folder.Path("nowhere")}, "", 2, "", "nowhere"},
        {{"dump", map, "--data", folder.Path("")}, "", 0, "Lhota", ""},
        {{"--help"}, "", 0, "info ", ""},
        {{"dump", "--help"}, "", 0, "Examples:", ""},
        {{"--version"}, "", 0, "vkm 1.", ""},
    };
    for (const Case& example : cases) {
        SCOPED_TRACE(Joined(example.arguments));
        RunSetting setting;
        setting.input = example.input;
        const RunResult result = RunVkm(example.arguments, setting);
        EXPECT_EQ(result.exitCode, example.exitCode);
        ExpectPart(result.output, example.output, "standard output");
        ExpectPart(result.errors, example.errors, "standard error");
        EXPECT_LE(std::count(result.errors.begin(), result.errors.end(), '\n'), 2) << result.errors;
    }
}

TEST(CommandLine, ReportsInTheUsersLanguageAndEncoding) {
    // The name of the missing file is UTF-8 and stays so.
    const RunResult result = RunVkm({"info", "Čára.vkm"}, {.environment = "LC_ALL=C.UTF-8"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.errors.find("Čára.vkm"), std::string::npos) << result.errors;
}

// Enough elements to fill pipes and buffers many times.
std::string LargeMap() {
    std::string map = "&V 1 0 0\n&U 1\n";
    for (int i = 0; i < 20'000; ++i)
        map += "&L P 1043210.55 743210.12 K=1101\nL 1043211.55 743211.12 K=1101\n";
    return map + "&K\n";
}

TEST(CommandLine, ClosedPipeIsNoError) {
    const TestFolder folder;
    const std::string map = folder.Add("large.vkm", LargeMap());
    for (const char* command : {"dump", "info", "--help"}) {
        const RunResult result = RunVkm(
            command[0] == '-' ? std::vector<std::string>{command} : std::vector<std::string>{command, map},
            {.closeOutputEarly = true});
        EXPECT_EQ(result.exitCode, 0) << command;
        EXPECT_EQ(result.errors, "") << command;
    }
}

TEST(CommandLine, FullDiskIsSaid) {
    const TestFolder folder;
    const std::string map = folder.Add("large.vkm", LargeMap());
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"dump", map}, {"info", map}, {"info", "--json", map}, {"--help"}, {"--version"}}) {
        const RunResult result = RunVkm(arguments, {.outputFile = "/dev/full"});
        EXPECT_EQ(result.exitCode, 3) << Joined(arguments);
        EXPECT_EQ(result.errors, "vkm: standard output: cannot be written: No space left on device\n");
    }
}

TEST(CommandLine, InterruptStopsCleanly) {
    std::string map = LargeMap();
    map.resize(map.size() - 3);  // more is to come
    const std::pair<const char*, int> cases[] = {{"dump", SIGINT}, {"info", SIGTERM}, {"dump", SIGHUP}};
    for (const auto& [command, signal] : cases) {
        const RunResult result = RunVkm({command, "-"}, {.input = map, .interrupt = signal});
        EXPECT_EQ(result.exitCode, 1) << command;
        EXPECT_EQ(result.errors, "vkm: standard input: stopped on request; the output is partial\n")
            << command;
        ASSERT_FALSE(result.output.empty());
        EXPECT_EQ(result.output.back(), '\n') << "the last record is whole";
    }
}

TEST(CommandLine, ManualAndCompletionKnowEveryOption) {
    const std::string manual = RunVkm({"generate", "man"}).output;
    const TestFolder folder;
    const std::string completion = folder.Add("vkm.bash", RunVkm({"generate", "bash-completion"}).output);
    const std::string all = RunVkm({"--help"}).output;
    std::istringstream commands(all.substr(all.find("\nCommands:\n") + 11));
    std::string line;
    int count = 0;
    for (std::getline(commands, line); std::getline(commands, line) && !line.empty(); ++count) {
        const std::string command = line.substr(2, line.find(' ', 2) - 2);
        const std::string help = RunVkm({command, "--help"}).output;
        for (size_t at = help.find("--"); at != std::string::npos; at = help.find("--", at + 2)) {
            const std::string option = help.substr(at, help.find_first_of(" ,\n=", at) - at);
            if (help[at - 1] != ' ' && help[at - 1] != ',') continue;
            std::string escaped;
            for (const char letter : option)
                escaped += letter == '-' ? std::string("\\-") : std::string(1, letter);
            EXPECT_NE(manual.find(escaped), std::string::npos) << command << ' ' << option;
            const std::string script = folder.Add(
                "try.bash", "compopt() { :; }\nsource " + completion + "\nCOMP_WORDS=(vkm " + command + " " +
                                option + ")\nCOMP_CWORD=2\n_vkm\n[[ \" ${COMPREPLY[*]} \" == *\" " + option +
                                " \"* ]]\n");
            EXPECT_EQ(std::system(("bash " + script).c_str()), 0) << command << ' ' << option;
        }
    }
    EXPECT_GE(count, 3) << all;
}

TEST(CommandLine, CompletionOffersValues) {
    const TestFolder folder;
    const std::string completion = folder.Add("vkm.bash", RunVkm({"generate", "bash-completion"}).output);
    const struct {
        std::string words;
        std::string offered;
    } cases[] = {
        {"render --format s", "svg"}, {"convert --layers points,te", "points,texts"},
        {"render --dpi 9", "96"},     {"dump -e a", "auto"},
        {"render --title R", ""},     {"help par", "parcels"},
    };
    for (const auto& test : cases) {
        const std::string script = folder.Add(
            "try.bash", "compopt() { :; }\ncd " + folder.Path("") + "; touch Readme\nsource " + completion +
                            "\nCOMP_WORDS=(vkm " + test.words +
                            ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_vkm\n[[ \"${COMPREPLY[*]}\" == \"" +
                            test.offered + "\" ]]\n");
        EXPECT_EQ(std::system(("bash " + script).c_str()), 0) << test.words;
    }
    for (const char* shell : {"zsh-completion", "fish-completion"}) {
        const std::string text = RunVkm({"generate", shell}).output;
        for (const char* part : {"parcels", "windows-1250", "no-symbols"})
            EXPECT_NE(text.find(part), std::string::npos) << shell << ' ' << part;
    }
}

TEST(CommandLine, SpeaksTheUsersLanguage) {
    const TestFolder folder;
    const std::string map = folder.Add("map.vkm", cutMap);
    const RunResult czech = RunVkm({"help", "render"}, {.environment = "VEMRADO_COUNTRY=0"});
    EXPECT_NE(czech.output.find("Nakreslí soubor jako mapu"), std::string::npos) << czech.output;
    EXPECT_NE(czech.output.find("Vynechá značky"), std::string::npos) << czech.output;
    const RunResult german = RunVkm({"info", map}, {.environment = "VEMRADO_COUNTRY=de"});
    EXPECT_NE(german.errors.find("unvollständig: der Schlusssatz"), std::string::npos) << german.errors;
    const RunResult manual = RunVkm({"generate", "man"}, {.environment = "VEMRADO_COUNTRY=0"});
    EXPECT_NE(manual.output.find("Vypíše parcely"), std::string::npos);
}

// Two parcels side by side, the second without a number and with a free end beside it.
TEST(Parcels, AreListedWithAreasAndNeighbours) {
    const std::string map =
        "&U 1\n&L P 0 0\nL 10 0\nL 10 20\nL 0 20\nL 0 0\n&L P 10 0\nL 40 0\nL 40 20\nL 10 20\n&L P 40 0\nL "
        "50 0\n"
        "&U 2\n&T 5 5 '12/3'\n&K\n";
    const struct {
        std::vector<std::string> arguments;
        std::string output;
    } cases[] = {
        {{"parcels", "-", "--csv"}, "number,area,neighbours\n12/3,200.00,?\n,600.00,12/3\n"},
        {{"parcels", "-"},
         "2 parcels\n      number      area (m2)  neighbours\n        12/3         200.00  ?\n"},
        {{"parcels", "-", "--json"}, "\"neighbours\": [\n      null\n"},
    };
    for (const auto& test : cases) {
        const RunResult run = RunVkm(test.arguments, {.input = map});
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_NE(run.output.find(test.output), std::string::npos) << run.output;
        EXPECT_NE(run.errors.find("1 free ends of boundaries"), std::string::npos) << run.errors;
        EXPECT_NE(run.errors.find("1 parcels without a number"), std::string::npos) << run.errors;
    }
}

}  // namespace
}  // namespace vemrado_test
