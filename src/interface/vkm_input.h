// The importer: the one class behind CVKMInterface. It owns everything of one import: the open file, the
// state of the reader, the element that the host is copying out, the symbology tables and the progress
// window.

#pragma once

#include <cstdint>

#include "framework/framework.h"
#include "support/containers.h"
#include "tables/kokes_tables.h"
#include "vemrado/vkm_details.h"
#include "vkm/line_reader.h"
#include "vkm/reader_state.h"

namespace vemrado {

class CVkmInput final : public CVKMDetails {
  public:
    // May throw std::bad_alloc.
    CVkmInput();
    CVkmInput(const CVkmInput&) = delete;
    CVkmInput& operator=(const CVkmInput&) = delete;
    ~CVkmInput();

    int Open(const char* fileName, int loadSymbology, const char* newLayerName, int axisOrientation,
             double gpScale, int flags) override;
    void Close() override;
    void SetAxisOrientation(int axisOrientation) override;
    void TransformPoint(double* point) override;
    int GetExtents(double* minimumFirst, double* minimumSecond, double* maximumFirst,
                   double* maximumSecond) override;
    void SetLayerName(const char* newLayerName) override;
    int ReadNext() override;
    void GetElementPoint(int index, double* point) override;
    int GetElementSymbol(int index) override;
    int GetElementSymbolPlacement(int index, double* valueU, double* valueM, int* byGPScale) override;
    const char* GetLayer(int* layerNumber) override;
    int GetElementLineStyle(int index, unsigned int* colour, int* pattern) override;
    void GetElementRValue(int index, double* valueR) override;
    int GetElementCount() override;
    int GetElementType(int index) override;
    int GetLayerValue(int layer) override;
    int GetLayerStyle(int layer, unsigned int* colour, int* pattern) override;
    void SetLayerValue(int value, int layer) override;
    const char* GetText() override;
    void GetTextPoint(double* point) override;
    void GetTextAttributes(int* valueD, int* valueF, double* scaledH, double* valueU) override;
    double GetScale() override;

    const char* GetElementCode(int index) override;
    int GetElementSymbolCode(int index) override;
    void GetElementValues(int index, double* valueM, double* valueR, double* valueU) override;
    int GetTextCode() override;
    int GetRelativeCoordinates() override;
    int IsComplete() override;
    int GetLineCount() override;
    int CopyElements(int first, int count, VkmElement* elements) override;
    int GetFileLine() override;
    int GetElementFileLine(int index) override;
    const char* GetHeaderName() override;
    const char* GetHeaderDate() override;
    const char* GetHeaderComments() override;
    void GetOrigin(double* first, double* second) override;
    void SetDataDirectory(const char* directory) override;
    void LoadSymbology(int withSymbols) override;
    int GetLineCodeCount() override;
    int GetLineCode(int place, int* code, int* lineType, const char** name) override;
    const char* GetLineCodeName(int code) override;
    int GetLineStyle(int code, unsigned int* colour, double* width, int* dashPattern) override;
    int GetLineDashes(int code, const double** lengths) override;
    int GetLinePattern(int code) override;
    int GetSymbolCodeCount() override;
    int GetSymbolCode(int place, int* code, int* symbol, const char** name) override;
    const char* GetSymbolCodeName(int code) override;
    int GetSymbolDrawing(int code, const VkmSymbolPoint** points) override;
    int GetSymbolPattern(int code) override;
    int GetLine(VkmLine* line) override;
    void GetTextRecord(VkmText* text) override;

  private:
    // The element of an index; throws the framework's invalid-argument exception for any other index.
    const CVKMLineElement& ElementAt(int index) const {
        const size_t place = static_cast<uint32_t>(index);  // far beyond every count when it is negative
        if (place >= state.lineElements.Count()) AfxThrowInvalidArgException();
        return state.lineElements[place];
    }
    bool SymbolsWanted() const;
    int LayerNameLength() const;
    bool OpenFile(const char* fileName);
    void OpenProgressWindow();
    // Draws the progress and pumps the thread's messages. False when the user asks to stop, and when the file
    // was closed meanwhile.
    bool UpdateProgress();
    // Throws the framework's file exception for a failed read of the input file.
    [[noreturn]] void ThrowReadError() const;

    uint32_t openFlags = 0;  // flags of the last successful Open
    CKokesTables tables;
    CVKMReaderState state;
    String layerName;  // replaces the file's layers when not empty
    String inputFileName;
    CVKMLineReader reader;  // holds the input file
    int32_t fileOpen = 0;
    uint32_t filesClosed = 0;
    void* progressWindow = nullptr;
    uint32_t fileLength = 0;        // lower 32 bits
    uint32_t progressStep = 0;      // bytes per progress unit
    uint32_t progressPosition = 0;  // last position drawn
    Array<VkmSymbolPoint> drawing;  // of the symbol asked for last
    bool outOfMemory = false;       // an operation without a failure result of its own found no memory
};

}  // namespace vemrado
