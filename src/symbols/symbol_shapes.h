// The drawings of one shape file. A drawing is a list of parts, and a part a list of points.

#pragma once

#include <cstdint>

#include "symbols/shared_string.h"

namespace vemrado {

struct CShapePoint {
    int32_t x;
    int32_t y;
};

// A part word: the number of points, and the kind of the part.
constexpr uint16_t partPointMask = 0x3FFF;
constexpr int partKindShift = 14;
constexpr int partKindNotDrawn = 2;  // the other kinds are open polylines

struct CSymbolShape {
    uint16_t partCount;
    uint16_t secondWord;  // of the file's header, without a use here
    uint8_t* parts;       // part words, then the raw points, as in the file
    CShapePoint* points;  // filled whenever the drawing is drawn
    int16_t offsetX;      // of the last time it was drawn
    int16_t offsetY;
};

// Numbers of the file, which are little-endian wherever they stand.
inline uint16_t ReadWord(const uint8_t* bytes) {
    return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
}

// The sum of the parts' points.
uint32_t CountPoints(const uint8_t* parts, uint16_t partCount);

// The three buffers come from the C allocator.
struct CSymbolShapes {
    CSymbolShapes() = default;
    CSymbolShapes(const CSymbolShapes&) = delete;
    CSymbolShapes& operator=(const CSymbolShapes&) = delete;
    ~CSymbolShapes();

    CSymbolShape* records = nullptr;
    uint8_t* words = nullptr;
    CShapePoint* points = nullptr;
    uint16_t count = 0;  // of drawings; 0: the file is of no use
    uint16_t countCopy = 0;
    int16_t height = 0;  // in units of the file
    uint32_t wordsUsed = 0;
    uint32_t wordsSize = 0;
    uint32_t pointsUsed = 0;
    uint32_t pointsSize = 0;
    CSharedString fileName;
};

// Reads a shape file in two passes, one that measures and one that fills. Nothing is reported: count is 0
// when there is nothing of use. Drawings beyond the 65535th are left out.
//
// A drawing that does not fit the length of its record keeps its number and draws nothing. What a record has
// beyond its drawing is skipped; what the file breaks off before is 0.
CSymbolShapes& LoadShapeFile(CSymbolShapes& shapes, const char* path);
void ReleaseShapes(CSymbolShapes& shapes);

}  // namespace vemrado
