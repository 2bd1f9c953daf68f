// What the file says of an element beyond what a drawing host asks for: codes, symbol codes and values as they stand
// in the file, for converters, listings and statistics.
//
// Every importer that CreateVKMInterface makes has these operations behind the 22 of CVKMInterface; the slots 0 to 21
// are untouched. Strings, indices and failures follow the conventions of vkm_interface.h.

#pragma once

#include "vemrado/vkm_interface.h"

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

  protected:
    CVKMDetails() = default;
    ~CVKMDetails() = default;
};

// The same importer with its details; null stays null.
inline CVKMDetails* VkmDetails(CVKMInterface* importer) { return static_cast<CVKMDetails*>(importer); }
