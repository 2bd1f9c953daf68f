// Czech and German: nothing that people read stays English.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <regex>
#include <set>
#include <sstream>

#include "map/findings.h"
#include "program_run.h"
#include "translation_table.h"

namespace vemrado_test {
namespace {

constexpr std::array<const char*, 2> countries = {"VEMRADO_COUNTRY=0", "VEMRADO_COUNTRY=2"};

// Lines that hold a sentence: three words or more, and no request of the man macros, as examples are.
std::set<std::string> SentencesOf(const std::string& text) {
    static const std::regex sentence("^[^.].*[a-z]{2,} [a-z]{2,} [a-z]{2,}.*");
    std::set<std::string> sentences;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (std::regex_match(line, sentence)) sentences.insert(line);
    }
    return sentences;
}

TEST(Translations, LeaveNoSentenceOfTheHelpInEnglish) {
    const std::vector<std::vector<std::string>> cases = {
        {"generate", "man"}, {"--help"}, {"check", "--rules"}};
    for (const auto& arguments : cases) {
        const std::set<std::string> english = SentencesOf(RunVkm(arguments).output);
        EXPECT_FALSE(english.empty());
        for (const char* country : countries) {
            for (const std::string& line : SentencesOf(RunVkm(arguments, {.environment = country}).output))
                EXPECT_FALSE(english.contains(line)) << country << ": " << line;
        }
    }
}

TEST(Translations, ReachWhatTheLibrariesSay) {
    const TestFolder folder;
    const std::string map =
        folder.Add("map.vkm", "&U 1\n&L P 0 0\nL 9 9 K=\xFF\n&T 1 1 '\xC5\xA1\xC4\x8D' H=x\n&K\n");
    const std::string json = folder.Add("data.vkm", "{\"a\": 1}\n");
    const std::string covered =
        folder.Add("covered.vkm", "&U 1\n&L P 0 0\nL 9 9\n&T 1 1 'none'\n&T 1 1 'none'\n&K\n");
    const struct {
        std::vector<std::string> arguments;
        std::array<const char*, 2> said;
    } cases[] = {
        {{"render", map}, {"--output je povinné", "--output wird gebraucht"}},
        {{"info", map, "--new"}, {"neočekávaný argument: --new", "unerwartetes Argument: --new"}},
        {{"render", map, "-o", "x.png", "--width", "0"},
         {"není v rozsahu 1 až 32767", "nicht im Bereich 1 bis 32767"}},
        {{"info", json}, {"data.vkm: není soubor VKM (vypadá jako JSON)", "data.vkm: keine VKM-Datei"}},
        {{"dump", folder.Path("none.vkm")}, {"none.vkm: takový soubor", "none.vkm: Datei oder Verzeichnis"}},
        {{"shapes", "pack", map, folder.Path("no/x.ksh")},
         {"map.vkm:1: \"&U\" není slovo", "map.vkm:1: \"&U\" ist kein Wort"}},
        {{"convert", map, "-o", "-"}, {"--output: standardní výstup", "--output: die Standardausgabe"}},
        {{"dump", map, "-e", "cp852x"}, {"kódování 'cp852x' neexistuje", "Kodierung 'cp852x' gibt es nicht"}},
        {{"check", map}, {"chyba: 'x' není číslo", "Fehler: 'x' ist keine Zahl"}},
        {{"check", covered}, {"zakrývá 'none' z řádku 4", "verdeckt 'none' aus Zeile 4"}},
        {{"check", covered}, {"žádná jiná není blízko", "keine andere ist in der Nähe"}},
    };
    for (const auto& test : cases) {
        for (size_t i = 0; i < countries.size(); ++i) {
            const RunResult run = RunVkm(test.arguments, {.environment = countries[i]});
            const std::string all = run.output + run.errors;
            EXPECT_NE(all.find(test.said[i]), std::string::npos) << test.said[i] << "\n" << all;
        }
    }
    // Programs read English whatever the user's language is.
    const RunResult lines = RunVkm({"check", "--json", map}, {.environment = countries[0]});
    EXPECT_NE(lines.output.find("\"message\":\"'x' is no number and counts as 0\""), std::string::npos)
        << lines.output;
}

}  // namespace
}  // namespace vemrado_test
