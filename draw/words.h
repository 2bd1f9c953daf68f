// The words of a map sheet in the host's languages.

#pragma once

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
};

inline const Words& HostWords() {
    static constexpr Words czech{"Legenda", "Druhy čar", "Značky",     "Ostatní čáry",
                                 "Měřítko", "S",         "Symbologie", "beze jména"};
    static constexpr Words german{"Legende", "Linientypen", "Symbole",    "Sonstige Linien",
                                  "Maßstab", "N",           "Symbologie", "ohne Namen"};
    static constexpr Words english{"Legend", "Line types", "Symbols",   "Other lines",
                                   "Scale",  "N",          "Symbology", "no name"};
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
