#include "messages/message_table.h"

#include <cstddef>
#include <iterator>

namespace vemrado {

namespace {

enum Language { english, german, czech, languageCount };

using Texts = const char* [languageCount];

// Windows-1250; a row for each entry, in the order of the entries below.
constexpr Texts messageTexts[] = {
    {"Reading input file", "Lesen Eingangsdatei", "\xC8ten\xED vstupn\xEDho souboru"},
    {"End", "Ende", "Konec"},
    {"File does not contain color table.\nColors will not be imported.",
     "Die Datei enth\xE4lt nicht die Tabelle der Farben.\nDie Farben werden nicht importiert.",
     "Soubor neobsahuje tabulku barev.\nBarvy nebudou importov\xE1ny."},
    {"File does not contain line width table.\nALL lines will be imported with width 0.",
     "Die Datei enth\xE4lt nicht die Tabelle der Liniendicken.\nDie Linien werden mit der Dicke 0 "
     "importiert.",
     "Soubor neobsahuje tabulku \x9A\xED\xF8"
     "ek \xE8"
     "ar.\n\xC8\xE1ry budou importov\xE1ny s \x9A\xED\xF8kou 0."},
    {"File does not contain VKM-Kokes line codes matching table.\nAll line types will be imported as "
     "continuous.",
     "Die Datei enth\xE4lt nicht die Tabelle der Zuordnung der Linientypen VKM zu den Typen Kokes.\n"
     "Die Linien aller Typen werden als voll importiert.",
     "Soubor neobsahuje tabulku p\xF8i\xF8"
     "azen\xED k\xF3"
     "du typ\xF9 \xE8"
     "ar VKM kodu Kokes.\n"
     "\xC8\xE1ry v\x9A"
     "ech typ\xF9 budou importov\xE1ny jako pln\xE9."},
    {"File does not contain VKM-Kokes symbol codes matching table.\nGraphic symbols will not be imported.",
     "Die Datei enth\xE4lt nicht die Tabelle der Zuordnung der Symbole VKM zu den Symbolen Kokes.\n"
     "Die grafischen Symbole werden nicht importiert.",
     "Soubor neobsahuje tabulku p\xF8i\xF8"
     "azen\xED symbolu VKM symbolu Kokes.\n"
     "Grafick\xE9 symboly nebudou importov\xE1ny."},
    {"Symbol file does not exist or it is not possible to read symbols.",
     "Die Datei der Symbole existiert nicht, oder kann nicht eingelesen werden.",
     "Soubor symbol\xF9 neexistuje, nebo z n\xECj nelze \xE8\xEDst symboly."},
    {"Graphic symbols will not be imported.", "Die grafischen Symbole werden nicht importiert.",
     "Grafick\xE9 symboly nebudou importov\xE1ny."},
};

}  // namespace

const char* msgReadingInputFile = messageTexts[0][english];
const char* msgEnd = messageTexts[1][english];
const char* msgNoColorTable = messageTexts[2][english];
const char* msgNoWidthTable = messageTexts[3][english];
const char* msgNoLineCodeTable = messageTexts[4][english];
const char* msgNoSymbolCodeTable = messageTexts[5][english];
const char* msgNoSymbolFile = messageTexts[6][english];
const char* msgSymbolsNotImported = messageTexts[7][english];

void SelectLanguage(int country) {
    const char** const entries[] = {
        &msgReadingInputFile,  &msgEnd,          &msgNoColorTable,      &msgNoWidthTable, &msgNoLineCodeTable,
        &msgNoSymbolCodeTable, &msgNoSymbolFile, &msgSymbolsNotImported};
    static_assert(std::size(entries) == std::size(messageTexts));
    const Language language = country == 0 ? czech : country == 2 ? german : english;
    for (size_t i = 0; i < std::size(entries); ++i) *entries[i] = messageTexts[i][language];
}

}  // namespace vemrado
