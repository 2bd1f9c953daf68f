// All that the symbology of a directory draws with, by code, taken from the module once.

#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "map/symbology.h"

namespace vemrado::gdal {

struct NamedPen {
    std::string name;  // of the code, often empty
    map::Pen pen;
};

struct NamedDrawing {
    std::string name;
    map::SymbolDrawing drawing;
};

struct Symbology {
    std::map<int, NamedPen> pens;         // by the code of a line
    std::map<int, NamedDrawing> symbols;  // by the code of a symbol; those with strokes

    // The symbology in VKMSym of a directory, read at the first call for it in the process. Problems are
    // reported to GDAL as warnings then.
    static std::shared_ptr<const Symbology> Of(const std::string& dataDirectory);
};

}  // namespace vemrado::gdal
