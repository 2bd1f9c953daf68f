// The state of one import: everything that lines of the file change. The importer owns it; the record parsers
// and the element loop work on it.

#pragma once

#include <cstdint>

#include "vkm/elements.h"

namespace vemrado {

// What the header says beside what its records set.
struct CVKMHeader {
    static constexpr size_t mostComments = 65536;  // bytes

    String name;      // the word of the V record
    String date;      // what stands behind the mark of the D record
    String comments;  // a line each
};

struct CVKMReaderState {
    uint32_t axisOrientation = 1;
    double originY = 0;  // V record: added to the second coordinate when coordinates are relative
    double originX = 0;  // V record: added to the first coordinate
    double mapScale = 1000.0;
    double scaleFactor = 1.0;  // mapScale / 1000
    int32_t relativeCoordinates = 0;
    int32_t layerNumber = 0;
    char layerText[4] = {};          // the first two characters of the layer number
    int32_t elementLayerNumber = 0;  // the layer of the element just completed
    char elementLayerText[4] = {};
    CVKMLineElements lineElements;  // the line just completed
    int32_t elementPending = 0;     // the element being read is not yet one of the line's
    uint32_t currentRecord = 1;     // letter of the record being read, or a class of the header's last line
    CVKMText workingText;
    int32_t textPending = 0;  // workingText is not yet in currentText
    CVKMText currentText;     // the text just completed
    CVKMHeader header;
};

}  // namespace vemrado
