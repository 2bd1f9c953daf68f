// Translations of what map/ and the host's libraries say of files: such a sentence is found by its pattern,
// behind the name of the file that it is about.

#pragma once

#include "map/translation.h"

namespace vemrado::map {

// clang-format off
inline constexpr Translation fileTranslations[] = {
{"No such file or directory", "takový soubor nebo adresář neexistuje", "Datei oder Verzeichnis nicht gefunden"},
{"Permission denied", "přístup odmítnut", "keine Berechtigung"},
{"Is a directory", "je to adresář", "ist ein Verzeichnis"},
{"Not a directory", "není to adresář", "ist kein Verzeichnis"},
{"not a VKM file (looks like {})", "není soubor VKM (vypadá jako {})", "keine VKM-Datei (sieht aus wie {})"},
{"not a VKM file (no line opens a record)", "není soubor VKM (žádný řádek neotevírá záznam)", "keine VKM-Datei (keine Zeile beginnt einen Satz)"},
{"plain text without a record", "prostý text bez záznamu", "reiner Text ohne Satz"},
{"binary data", "binární data", "Binärdaten"},
{"a Windows program", "program pro Windows", "ein Windows-Programm"},
{"an office document", "kancelářský dokument", "ein Office-Dokument"},
{"a shape file of polygons or lines", "shapefile s polygony nebo čarami", "eine Shape-Datei mit Flächen oder Linien"},
{"UTF-16 text", "text v UTF-16", "Text in UTF-16"},
{"the UTF-8 byte order mark before its first record was skipped",
 "značka pořadí bajtů UTF-8 před prvním záznamem byla přeskočena",
 "die UTF-8-Bytereihenfolge-Marke vor dem ersten Satz wurde übergangen"},
{"{} bytes are no characters of {} and were replaced by U+FFFD; {}",
 "počet bajtů, které nejsou znaky {1} a byly nahrazeny U+FFFD: {0}; {2}",
 "{} Bytes sind keine Zeichen von {} und wurden durch U+FFFD ersetzt; {}"},
{"{} bytes are no characters of {} and were replaced by U+FFFD",
 "počet bajtů, které nejsou znaky {1} a byly nahrazeny U+FFFD: {0}",
 "{} Bytes sind keine Zeichen von {} und wurden durch U+FFFD ersetzt"},
{"the texts look like {}: try {}", "texty vypadají jako {}: zkuste {}", "die Texte sehen nach {} aus: zu versuchen ist {}"},
{"the file cannot be read any more", "soubor už nelze číst", "die Datei ist nicht mehr zu lesen"},
{"I/O error", "chyba čtení", "Lesefehler"},
{"Input/output error", "chyba čtení nebo zápisu", "Ein- oder Ausgabefehler"},
};
// clang-format on

static_assert(IsComplete(fileTranslations), "a text lacks a language");

}  // namespace vemrado::map
