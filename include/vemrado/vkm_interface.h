// Vemrado: reads VKM files, the text exchange format of digital cadastral maps.
//
// This is the interface that hosts of the module's own kind use; vkm_details.h adds to it. A host makes an importer,
// opens a file with it, takes the elements one by one and gives the importer back:
//
//     CVKMInterface* vkm = CreateVKMInterface();
//     if (vkm && vkm->Open("map.vkm", 0, "", 1, 0.0, CVKMInterface::flgSymbolsNone)) {
//         while (int kind = vkm->ReadNext()) { /* 1: a line, 2: a text; copy it out with the accessors */ }
//         vkm->Close();
//     }
//     DestroyVKMInterface(vkm);
//
// Conventions
//   int           signed 32-bit; a result described as 1 or 0 is a truth value
//   double        64-bit IEEE real
//   point         three doubles: first, second and third coordinate (the third is always 0 in imported points)
//   strings       8-bit, zero-terminated: file names in the system's code page, texts of the file byte for byte as
//                 they stand in it (usually Windows-1250). Strings that an operation returns belong to the importer
//                 and stay valid until the next ReadNext, GetExtents, SetLayerName, Open or DestroyVKMInterface.
//   colour        red + green * 256 + blue * 65536
//   index         position of a line element in the line that ReadNext has just completed, from 0 to
//                 GetElementCount() - 1. Any other index throws the framework's invalid-argument exception, which
//                 derives from std::invalid_argument; the importer is unchanged then.
//
// Threads: one importer serves one thread at a time; importers of different threads work side by side, symbology
// included. Calls into the host's drawing and info-window libraries come one at a time. Open, ReadNext and GetExtents
// pump the calling thread's window messages every 50 lines.
//
// Failures: a file that cannot be opened is shown to the user in a message box and Open returns 0. A read error in
// the middle of a file leaves Open or ReadNext as the framework's file exception, which derives from
// std::runtime_error. When memory runs out, CreateVKMInterface returns null and Open, ReadNext, GetExtents and the
// lookups return 0; the importer can still be destroyed.
//
// See docs/integration.md for life cycle, message boxes and environment variables, docs/vkm-format.md for the file.

#pragma once

#if defined(_WIN32)
#if defined(VEMRADO_BUILDING_MODULE)
#define VEMRADO_API  // the module's .def file lists the exports
#else
#define VEMRADO_API __declspec(dllimport)
#endif
#else
#define VEMRADO_API __attribute__((visibility("default")))
#endif

// Hosts call the operations by their position: their order is part of the binary interface.
class CVKMInterface {
  public:
    // Values of the flags argument of Open, combined as bits.
    VEMRADO_API static const int flgSymbolsNone;       // 0: no symbols
    VEMRADO_API static const int flgSymbols;           // 1: symbols of line elements
    VEMRADO_API static const int flgSymbolsByGPScale;  // 2: the host scales symbols by its GP scale

    // Makes an importer. Null when there is no memory for it.
    VEMRADO_API static CVKMInterface* CreateVKMInterface();

    // Destroys an importer and everything that it owns; an open file and its progress window are closed. Null is
    // ignored.
    VEMRADO_API static void DestroyVKMInterface(CVKMInterface* importer);

    // Copies nothing: the interface has no data of its own.
    CVKMInterface(const CVKMInterface&) = default;
    CVKMInterface& operator=(const CVKMInterface&) = default;

    // --- Slots 0 to 5: the file and its settings ---

    // Opens a VKM file and reads its header.
    //   fileName         the file
    //   loadSymbology    not 0: load the symbology tables too; their problems are shown in one message box and never
    //                    make Open fail
    //   layerName        as SetLayerName; null counts as empty
    //   axisOrientation  as SetAxisOrientation
    //   gpScale          accepted, not used
    //   flags            flgSymbols, flgSymbolsByGPScale, or both
    // Returns 1 when the file is open, 0 when it could not be opened (settings are unchanged then) or when memory
    // ran out on the way (settings may be the new ones).
    virtual int Open(const char* fileName, int loadSymbology, const char* layerName, int axisOrientation,
                     double gpScale, int flags) = 0;

    // Closes the file and the progress window. Without an open file it does nothing. What was read last, the
    // settings and the symbology stay readable.
    virtual void Close() = 0;

    // Sets the axis orientation for every point read afterwards. A point (x, y) becomes
    //   1: (x, y)    2: (x, -y)    4: (-x, y)    8: (-x, -y)
    //   16: (y, x)   32: (-y, x)   64: (y, -x)   128: (-y, -x)
    // Any other code leaves points unchanged.
    virtual void SetAxisOrientation(int axisOrientation) = 0;

    // Turns the first two coordinates of a host's point, double[3], by the current axis orientation.
    virtual void TransformPoint(double* point) = 0;

    // Reads all remaining elements and gives the bounding box of their points. Returns 1, or 0 when any bound was
    // not found; the bounds hold their start values +-1.797693e308 then. Consumes the elements: reopen the file to
    // read them.
    virtual int GetExtents(double* minimumFirst, double* minimumSecond, double* maximumFirst,
                           double* maximumSecond) = 0;

    // A name that is not empty replaces the file's layers in GetLayer.
    virtual void SetLayerName(const char* layerName) = 0;

    // --- Slot 6: the next element ---

    // Reads until the next element is complete. Returns 1 for a line, 2 for a text, 0 at the end of the data or when
    // the user stopped the import. A file without its closing record loses its last element.
    virtual int ReadNext() = 0;

    // --- Slots 7 to 14: after a line (10: after a text too) ---

    // Copies the point of a line element to point, double[3].
    virtual void GetElementPoint(int index, double* point) = 0;

    // The host's point-pattern number for the symbol of a line element, registered with the drawing library on first
    // use; 0 when there is none. Without flgSymbols always 0, and the index is not checked.
    virtual int GetElementSymbol(int index) = 0;

    // How the symbol of a line element is placed: its U value (rotation), its M value (scale), and flgSymbolsByGPScale
    // if Open was called with that bit, else 0. Returns 1, or 0 when the element has no symbol (nothing is written).
    // Without flgSymbols always 0, and the index is not checked.
    virtual int GetElementSymbolPlacement(int index, double* valueU, double* valueM, int* byGPScale) = 0;

    // The layer of the element just read: its number and its name, at most two characters; or 0 and the name set by
    // SetLayerName.
    virtual const char* GetLayer(int* layerNumber) = 0;

    // Colour and host line-pattern number (0: continuous) for the code of a line element. Returns 1, or 0 when the
    // code leads to no line type (both are 0 then) or the element has no code (nothing is written).
    virtual int GetElementLineStyle(int index, unsigned int* colour, int* pattern) = 0;

    // The R value of a line element.
    virtual void GetElementRValue(int index, double* valueR) = 0;

    // Number of line elements of the line just read.
    virtual int GetElementCount() = 0;

    // Type letter of a line element: the character code of C, K, L, P or R; 1 for any other letter, 0 for none.
    virtual int GetElementType(int index) = 0;

    // --- Slots 15 to 17: the layer table, layers 1 to 11 once symbology was loaded ---

    // The value that the host stored for a layer; 0 when there is no such layer.
    virtual int GetLayerValue(int layer) = 0;

    // Colour and host line-pattern number of a layer. Returns 1, or 0 when there is no such layer (nothing is written).
    virtual int GetLayerStyle(int layer, unsigned int* colour, int* pattern) = 0;

    // Stores a value of the host's own for a layer. Ignored when there is no such layer.
    virtual void SetLayerValue(int value, int layer) = 0;

    // --- Slots 18 to 20: after a text ---

    // The text just read, at most 255 characters.
    virtual const char* GetText() = 0;

    // Copies the insertion point of the text to point, double[3].
    virtual void GetTextPoint(double* point) = 0;

    // D and F values, H value (size) times map scale / 1000, and U value (rotation) of the text.
    virtual void GetTextAttributes(int* valueD, int* valueF, double* scaledH, double* valueU) = 0;

    // --- Slot 21 ---

    // The map scale number of the file, 1000 when the file gives none.
    virtual double GetScale() = 0;

  protected:
    CVKMInterface() = default;
    ~CVKMInterface() = default;  // not virtual: only DestroyVKMInterface ends an importer
};

extern "C" {
// The static members again, for hosts that look functions up by their plain names.
VEMRADO_API CVKMInterface* CreateVKMInterface();
VEMRADO_API void DestroyVKMInterface(CVKMInterface* importer);
}
