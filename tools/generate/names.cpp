#include "names.h"

#include <array>
#include <initializer_list>

namespace generate {

namespace {

struct Letter {
    uint16_t unicode;
    uint8_t windows1250;
};

constexpr std::array<Letter, 30> czechLetters{{
    {0x00C1, 0xC1}, {0x00C9, 0xC9}, {0x00CD, 0xCD}, {0x00D3, 0xD3}, {0x00DA, 0xDA}, {0x00DD, 0xDD},
    {0x00E1, 0xE1}, {0x00E9, 0xE9}, {0x00ED, 0xED}, {0x00F3, 0xF3}, {0x00FA, 0xFA}, {0x00FD, 0xFD},
    {0x010C, 0xC8}, {0x010D, 0xE8}, {0x010E, 0xCF}, {0x010F, 0xEF}, {0x011A, 0xCC}, {0x011B, 0xEC},
    {0x0147, 0xD2}, {0x0148, 0xF2}, {0x0158, 0xD8}, {0x0159, 0xF8}, {0x0160, 0x8A}, {0x0161, 0x9A},
    {0x0164, 0x8D}, {0x0165, 0x9D}, {0x016E, 0xD9}, {0x016F, 0xF9}, {0x017D, 0x8E}, {0x017E, 0x9E},
}};

std::vector<std::string> Converted(std::initializer_list<const char*> names) {
    std::vector<std::string> converted;
    for (const char* name : names) converted.push_back(ToWindows1250(name));
    return converted;
}

}  // namespace

// The Czech letters all take two bytes in UTF-8.
std::string ToWindows1250(std::string_view utf8) {
    std::string text;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto first = static_cast<uint8_t>(utf8[i]);
        if (first < 0x80) {
            text += static_cast<char>(first);
            continue;
        }
        char found = '?';
        if (first >= 0xC2 && first < 0xE0 && i + 1 < utf8.size()) {
            const auto second = static_cast<uint8_t>(utf8[++i]);
            const int unicode = (first & 0x1F) << 6 | (second & 0x3F);
            for (const Letter& letter : czechLetters) {
                if (letter.unicode == unicode) found = static_cast<char>(letter.windows1250);
            }
        }
        text += found;
    }
    return text;
}

Names::Names()
    : towns(Converted({"Třešňovec", "Lípová Lhota", "Kačín", "Vlčí Důl", "Hrušová", "Jílovec", "Březůvka",
                       "Šípkov", "Žabovřesky", "Řepiště", "Čížov", "Ďáblův Mlýn", "Úvalno", "Ovčíny",
                       "Světlá", "Ťuhýkov"})),
      mainRoads(Converted({"Nádražní", "Hlavní", "Brněnská", "Pražská", "Krajinská", "Městská", "Dlouhá",
                           "Třída Svornosti", "Nábřežní", "Zámecká", "Hřbitovní", "Jihlavská"})),
      streets(Converted({"Školní",   "Růžová",     "Příčná",     "Úzká",      "Květná",      "Na Výsluní",
                         "Zahradní", "Ořechová",   "Polní",      "Lipová",    "Pod Kaštany", "Krátká",
                         "Mlýnská",  "U Studánky", "Ke Hřišti",  "Višňová",   "Slunečná",    "Tichá",
                         "Řeznická", "Hrnčířská",  "Tkalcovská", "Jabloňová", "Na Vyhlídce", "U Sýpky",
                         "Březová",  "Ševcovská",  "Na Příkopě", "Zvonařská", "Šeříková",    "V Zátiší"})),
      fields(Converted({"Za humny",  "Dlouhé lány", "Na skřivánku",   "Kopaniny",   "V loužích",
                        "Pod hájem", "Nivky",       "Padělky",        "U křížku",   "Ořešiny",
                        "Špitálky",  "Černé země",  "Díly za mlýnem", "Úlehle",     "Na šancích",
                        "Žlíbky",    "Příhon",      "Trávníky",       "Vinohrádky", "Křivé kusy"})),
      forests(Converted({"Doubrava", "Černý les", "Bažantnice", "V borkách", "Kněží hora", "Obecní háj",
                         "Paseky", "Březina"})),
      streams(Converted(
          {"Bystřička", "Ovčí potok", "Říčka", "Vrbový potok", "Mlýnská strouha", "Žlebský potok"})),
      square(ToWindows1250("Náměstí")),
      church(ToWindows1250("kostel")),
      park(ToWindows1250("Městský sad")),
      cemetery(ToWindows1250("hřbitov")),
      sports(ToWindows1250("hřiště")),
      works(ToWindows1250("dílny")),
      pond(ToWindows1250("rybník")),
      upper(ToWindows1250("Horní ")),
      lower(ToWindows1250("Dolní ")) {}

}  // namespace generate
