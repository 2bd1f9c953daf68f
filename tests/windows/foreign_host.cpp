// A host in the conventions of the platform's own compiler: no headers, no runtime, no exceptions. Imports
// the file that the command line names last and writes the digest; ends with the number of the first check
// that failed.
//
// FOREIGN_PUBLIC_HEADER: with the interface as the module ships it; otherwise with a class declared as
// imported as a whole, which takes constructors, destructor and assignment from the module too.

extern "C" {
__declspec(dllimport) void* GetStdHandle(unsigned long which);
__declspec(dllimport) int WriteFile(void* file, const void* text, unsigned long count, unsigned long* written,
                                    void* overlapped);
__declspec(dllimport) const char* GetCommandLineA();
[[noreturn]] __declspec(dllimport) void ExitProcess(unsigned int code);
int _fltused = 0;
}

#if defined(FOREIGN_PUBLIC_HEADER)
#include "vemrado/vkm_interface.h"
#else
class __declspec(dllimport) CVKMInterface {
  public:
    static const int flgSymbolsNone;
    static const int flgSymbols;
    static const int flgSymbolsByGPScale;
    static CVKMInterface* CreateVKMInterface();
    static void DestroyVKMInterface(CVKMInterface* importer);
    CVKMInterface(const CVKMInterface& other);
    CVKMInterface& operator=(const CVKMInterface& other);

    virtual int Open(const char*, int, const char*, int, double, int) = 0;
    virtual void Close() = 0;
    virtual void SetAxisOrientation(int) = 0;
    virtual void TransformPoint(double*) = 0;
    virtual int GetExtents(double*, double*, double*, double*) = 0;
    virtual void SetLayerName(const char*) = 0;
    virtual int ReadNext() = 0;
    virtual void GetElementPoint(int, double*) = 0;
    virtual int GetElementSymbol(int) = 0;
    virtual int GetElementSymbolPlacement(int, double*, double*, int*) = 0;
    virtual const char* GetLayer(int*) = 0;
    virtual int GetElementLineStyle(int, unsigned int*, int*) = 0;
    virtual void GetElementRValue(int, double*) = 0;
    virtual int GetElementCount() = 0;
    virtual int GetElementType(int) = 0;
    virtual int GetLayerValue(int) = 0;
    virtual int GetLayerStyle(int, unsigned int*, int*) = 0;
    virtual void SetLayerValue(int, int) = 0;
    virtual const char* GetText() = 0;
    virtual void GetTextPoint(double*) = 0;
    virtual void GetTextAttributes(int*, int*, double*, double*) = 0;
    virtual double GetScale() = 0;

  protected:
    CVKMInterface();
    ~CVKMInterface();
};
#endif

#include "import_digest.h"

namespace {

// An implementation of the host's own: every operation answers with its slot.
class HostImplementation : public CVKMInterface {
  public:
    mutable int slot = -1;
    int Open(const char*, int, const char*, int, double, int) override { return slot = 0; }
    void Close() override { slot = 1; }
    void SetAxisOrientation(int) override { slot = 2; }
    void TransformPoint(double*) override { slot = 3; }
    int GetExtents(double*, double*, double*, double*) override { return slot = 4; }
    void SetLayerName(const char*) override { slot = 5; }
    int ReadNext() override { return slot = 6; }
    void GetElementPoint(int, double*) override { slot = 7; }
    int GetElementSymbol(int) override { return slot = 8; }
    int GetElementSymbolPlacement(int, double*, double*, int*) override { return slot = 9; }
    const char* GetLayer(int*) override { return slot = 10, ""; }
    int GetElementLineStyle(int, unsigned int*, int*) override { return slot = 11; }
    void GetElementRValue(int, double*) override { slot = 12; }
    int GetElementCount() override { return slot = 13; }
    int GetElementType(int) override { return slot = 14; }
    int GetLayerValue(int) override { return slot = 15; }
    int GetLayerStyle(int, unsigned int*, int*) override { return slot = 16; }
    void SetLayerValue(int, int) override { slot = 17; }
    const char* GetText() override { return slot = 18, ""; }
    void GetTextPoint(double*) override { slot = 19; }
    void GetTextAttributes(int*, int*, double*, double*) override { slot = 20; }
    double GetScale() override { return slot = 21; }
};

int checks = 0;

void Check(bool holds) {
    ++checks;
    if (!holds) ExitProcess(static_cast<unsigned int>(checks));
}

void CheckConstructors() {
    HostImplementation first;
    volatile CVKMInterface* hidden = &first;
    CVKMInterface* interface = const_cast<CVKMInterface*>(hidden);
    Check(interface->GetScale() == 21 && first.slot == 21);
    HostImplementation second(first);
    Check(second.slot == 21);
    interface = &second;
    Check(interface->GetElementCount() == 13 && second.slot == 13);
    first = second;
    interface = &first;
    Check(first.slot == 13 && interface->ReadNext() == 6);
}

void Write(const char* text) {
    unsigned long count = 0, written = 0;
    while (text[count] != 0) ++count;
    WriteFile(GetStdHandle(static_cast<unsigned long>(-11)), text, count, &written, nullptr);
}

void WriteNumber(unsigned long long number) {
    char text[22] = {};
    int at = 20;
    do {
        text[at--] = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (number != 0);
    Write(text + at + 1);
    Write(" ");
}

const char* LastArgument() {
    const char* last = GetCommandLineA();
    for (const char* at = last; *at != 0; ++at) {
        if (*at == ' ' && at[1] != 0 && at[1] != ' ') last = at + 1;
    }
    return last;
}

}  // namespace

extern "C" void hostmain() {
    Check(CVKMInterface::flgSymbolsNone == 0);
    Check(CVKMInterface::flgSymbols == 1);
    Check(CVKMInterface::flgSymbolsByGPScale == 2);
    CheckConstructors();
    CVKMInterface::DestroyVKMInterface(nullptr);
    CVKMInterface* vkm = CVKMInterface::CreateVKMInterface();
    Check(vkm != nullptr);
    const ImportDigest digest = Import(vkm, LastArgument());
    CVKMInterface::DestroyVKMInterface(vkm);
    Check(digest.opened == 1);
    WriteNumber(static_cast<unsigned long long>(digest.elements));
    WriteNumber(digest.hash);
    ExitProcess(0);
}
