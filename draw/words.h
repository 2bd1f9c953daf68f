// The words of a map sheet in the host's languages.

#pragma once

#include <array>

#include "zrv320/zrv320.h"

namespace vemrado::draw {

struct Words {
    const char* legend;
    const char* lineTypes;
    const char* symbols;
    const char* otherLines;
    const char* scale;
    const char* north;
    const char* symbology;
    const char* noName;
    const char* changesHeading;
    const char* page;
    const char* overview;
    const char* parts;
    std::array<const char*, 3> changes;  // removed, changed, added
};

inline const Words& HostWords() {
    static constexpr Words czech{"Legenda",
                                 "Druhy čar",
                                 "Značky",
                                 "Ostatní čáry",
                                 "Měřítko",
                                 "S",
                                 "Symbologie",
                                 "beze jména",
                                 "Změny",
                                 "strana",
                                 "Přehled",
                                 "Listy",
                                 {"odstraněno", "změněno", "přidáno"}};
    static constexpr Words german{"Legende",
                                  "Linientypen",
                                  "Symbole",
                                  "Sonstige Linien",
                                  "Maßstab",
                                  "N",
                                  "Symbologie",
                                  "ohne Namen",
                                  "Änderungen",
                                  "Seite",
                                  "Übersicht",
                                  "Blätter",
                                  {"entfernt", "geändert", "hinzugefügt"}};
    static constexpr Words english{"Legend",
                                   "Line types",
                                   "Symbols",
                                   "Other lines",
                                   "Scale",
                                   "N",
                                   "Symbology",
                                   "no name",
                                   "Changes",
                                   "page",
                                   "Overview",
                                   "Parts",
                                   {"removed", "changed", "added"}};
    switch (GetZrvCountry()) {
        case 0:
            return czech;
        case 2:
            return german;
        default:
            return english;
    }
}

}  // namespace vemrado::draw
