// What the file and the symbology say beyond what a drawing host asks for: codes, symbol codes and values as
// they stand in the file, places in it, its header, and the symbology by code; for converters, listings,
// pictures and statistics.
//
// Every importer that CreateVKMInterface makes has these operations behind the 22 of CVKMInterface; the slots
// 0 to 21 are untouched. Strings, indices and failures follow the conventions of vkm_interface.h.

#pragma once

#include "vemrado/vkm_interface.h"

// A line element as CopyElements gives it.
struct VkmElement {
    double x;  // the point, turned as GetElementPoint has it
    double y;
    double valueM;
    double valueR;
    double valueU;
    const char* code;  // K value; empty when it has none. Valid as long as the line
    int type;          // as GetElementType
    int symbolCode;    // S value
    int fileLine;      // as GetElementFileLine
};

// A point of a symbol's drawing, in units of the host's pattern around the insertion point, y up.
struct VkmSymbolPoint {
    double x;
    double y;
    int draws;  // 1: a straight stroke leads here from the point before; 0: the pen is moved here
};

// Coordinates farther than 1,000,000 km are no place.
inline constexpr double farthestPlace = 1e9;

// A line as GetLine gives it, with room of the caller's for its elements: arrays with an entry for each.
struct VkmLine {
    int room;        // entries of each array
    double* points;  // x and y of each element, turned as GetElementPoint has it: two entries
    char* types;     // C, K, L, P or R; ? for any other letter, 0 for none
    // K values; "" for none. Neighbours of one code share one text. Valid as long as the line.
    const char** codes;
    // Written only when an element has one of them.
    int* symbolCodes;  // S
    double* valuesM;
    double* valuesR;
    double* valuesU;

    int count;  // of elements
    int layer;
    int fileLine;  // on which it begins
    int layerNameLength;
    const char* layerName;
    int hasValues;     // 1: an element has an S, M, R or U value
    int severalCodes;  // 1: not all elements have the same code
    int beginsAgain;   // 1: an element but the first has type P
    int hasNoType;     // 1: an element has no type
    int hasNoPlace;    // 1: a coordinate is no number, or beyond farthestPlace
};

// A text as GetTextRecord gives it; members are as the accessors have them.
struct VkmText {
    double x;
    double y;
    double scaledH;
    double valueU;
    int valueD;
    int valueF;
    int code;
    int layer;
    int fileLine;
    int length;  // of the text
    const char* text;
    const char* layerName;
    int layerNameLength;
};

class CVKMDetails : public CVKMInterface {
  public:
    // K value of a line element, as text; empty when it has none.
    virtual const char* GetElementCode(int index) = 0;
    // S value of a line element, the symbol code; 0 when it has none.
    virtual int GetElementSymbolCode(int index) = 0;
    // M value (1 when it has none), R value and U value (0 when it has none) of a line element.
    virtual void GetElementValues(int index, double* valueM, double* valueR, double* valueU) = 0;
    // K value of the text just read, after the text defaults of its layer; 0 when it has none.
    virtual int GetTextCode() = 0;
    // 1 when the file's coordinates are relative to the offsets of its header.
    virtual int GetRelativeCoordinates() = 0;
    // 1 once the closing record has been read: no element was lost at the end of the file.
    virtual int IsComplete() = 0;
    // Lines read since the importer was made; the last element ended on this line.
    virtual int GetLineCount() = 0;

    // Copies line elements of the line just read, from an index on, at most count. Returns how many there
    // were.
    virtual int CopyElements(int first, int count, VkmElement* elements) = 0;

    // --- Places in the file: its lines are numbered from 1 ---

    // The line on which the line or text just read begins; 0 before the first.
    virtual int GetFileLine() = 0;
    // The line on which a line element begins.
    virtual int GetElementFileLine(int index) = 0;

    // --- The header, of the file opened last ---

    // The word of its V record, what stands behind the mark of its D record, and its comments, a line each
    // and at most 65,536 bytes in all. Empty when it has none.
    virtual const char* GetHeaderName() = 0;
    virtual const char* GetHeaderDate() = 0;
    virtual const char* GetHeaderComments() = 0;
    // The offsets in force for relative coordinates: what is added to the file's first and to its second
    // coordinate.
    virtual void GetOrigin(double* first, double* second) = 0;

    // --- The symbology by code, once Open or LoadSymbology has loaded it ---
    //
    // A code without an entry is no failure: the lookups return 0 for it, and write nothing.

    // The directory that holds VKMSym, for every symbology that is loaded afterwards. Null or empty: the one
    // that the registry names.
    virtual void SetDataDirectory(const char* directory) = 0;
    // Loads the symbology as Open does, without a file; with symbols or not. Problems are shown in one
    // message box.
    virtual void LoadSymbology(int withSymbols) = 0;

    // The line codes of the mapping table in the order of the file, each once. GetLineCode gives one by its
    // place with the line type that it leads to and its name: what stands behind the two numbers, often
    // empty, never null. Returns 1, or 0 for any other place.
    virtual int GetLineCodeCount() = 0;
    virtual int GetLineCode(int place, int* code, int* lineType, const char** name) = 0;
    // The name of a line code; empty when there is no such code.
    virtual const char* GetLineCodeName(int code) = 0;
    // Colour and width (mm on paper, 0: none is given) of the line type that a code leads to, and the number
    // of its dash pattern, 0: continuous. Returns 1, or 0 when the code leads to no line type.
    virtual int GetLineStyle(int code, unsigned int* colour, double* width, int* dashPattern) = 0;
    // The lengths of the dash pattern of a code, mm, drawn and gap in turn; at most 1,001, valid until the
    // next load. Returns their number; 0 when the code has no dash pattern or the table lacks it.
    virtual int GetLineDashes(int code, const double** lengths) = 0;
    // The host's line-pattern number of a code, as GetElementLineStyle gives it.
    virtual int GetLinePattern(int code) = 0;

    // The same for symbols; GetSymbolCode gives the symbol's number in the symbol table.
    virtual int GetSymbolCodeCount() = 0;
    virtual int GetSymbolCode(int place, int* code, int* symbol, const char** name) = 0;
    virtual const char* GetSymbolCodeName(int code) = 0;
    // The drawing of a symbol code: its points, valid until the next call. Returns their number; 0 when the
    // drawing is empty, -1 when the code leads to none that can be read.
    virtual int GetSymbolDrawing(int code, const VkmSymbolPoint** points) = 0;
    // The host's point-pattern number of a symbol code, as GetElementSymbol gives it.
    virtual int GetSymbolPattern(int code) = 0;

    // --- An element as a whole, for who takes everything of it ---

    // Fills in a line. Returns 1, or 0 when the arrays have too little room: the count is filled in alone
    // then.
    virtual int GetLine(VkmLine* line) = 0;
    // Fills in a text.
    virtual void GetTextRecord(VkmText* text) = 0;

  protected:
    CVKMDetails() = default;
    ~CVKMDetails() = default;
};

// The same importer with its details; null stays null.
inline CVKMDetails* VkmDetails(CVKMInterface* importer) {
    return static_cast<CVKMDetails*>(importer);
}
