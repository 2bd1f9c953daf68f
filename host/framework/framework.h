// Stand-in of the host's application framework: what the module needs of it, and the handlers by which a host
// of our own gives each service its shape.
//
// Host and module share this library in one process, so what is thrown here has one type for both.
// Any thread may call. Handlers are process-wide and are set while no other thread is in the framework or the
// module; a thread may have services of its own besides.

#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#if defined(_WIN32)
#if defined(VEMRADO_BUILDING_FRAMEWORK)
#define FRAMEWORK_API __declspec(dllexport)
#else
#define FRAMEWORK_API __declspec(dllimport)
#endif
#else
#define FRAMEWORK_API __attribute__((visibility("default")))
#endif

// --- Extension modules ---

// One per module, kept for as long as the module is loaded.
struct AFX_EXTENSION_MODULE {
    int initialized;
    void* moduleHandle;
    class CDynLinkLibrary* library;  // owned by the framework
};

// A module's place in the framework's chain of extension libraries. The framework deletes it in
// AfxTermExtensionModule; a module derives from it so that its own deallocation function is used.
class FRAMEWORK_API CDynLinkLibrary {
  public:
    explicit CDynLinkLibrary(AFX_EXTENSION_MODULE* record);
    CDynLinkLibrary(const CDynLinkLibrary&) = delete;
    CDynLinkLibrary& operator=(const CDynLinkLibrary&) = delete;
    virtual ~CDynLinkLibrary();

    CDynLinkLibrary* next = nullptr;
    AFX_EXTENSION_MODULE* module;
};

extern "C" {
// Returns 1, or 0 when the framework cannot take the module; its load must fail then.
FRAMEWORK_API int AfxInitExtensionModule(AFX_EXTENSION_MODULE* record, void* moduleHandle);
FRAMEWORK_API void AfxTermExtensionModule(AFX_EXTENSION_MODULE* record, int terminateAll);
// Modules registered at the moment.
FRAMEWORK_API int FrameworkModuleCount();

// --- Message boxes ---

constexpr unsigned int frameworkExclamationOk = 48;  // MB_OK | MB_ICONEXCLAMATION

// Shows a box through the handler; without one as text on standard error (Linux) or by MessageBoxA (Windows).
FRAMEWORK_API int AfxMessageBox(const char* text, unsigned int style, unsigned int helpContext);

// The text is in Windows-1250 where it comes from the module's message table; file names in it are in the
// system's code page. The handler returns the button's number (1: OK).
typedef int (*FrameworkMessageBoxHandler)(void* context, const char* text, unsigned int style);
FRAMEWORK_API void FrameworkSetMessageBoxHandler(FrameworkMessageBoxHandler handler, void* context);

// --- Message pump ---

// Called whenever the module pumps the thread's messages; on Linux this hook is the pump, on Windows it runs
// after the window messages.
typedef void (*FrameworkPumpHook)(void* context);
FRAMEWORK_API void FrameworkSetPumpHook(FrameworkPumpHook hook, void* context);
FRAMEWORK_API void FrameworkPumpMessages();

// --- File provider ---

// Where one is set, every file that the module opens is asked for here first; a file that the provider does
// not open is then looked for on disk.
struct FrameworkFileProvider {
    void* context;
    // A file of the provider's own, or null when it has none by that name. The path is as the module has it.
    void* (*open)(void* context, const char* path);
    // Bytes read (0 at the end), or -1 on failure.
    int64_t (*read)(void* file, void* destination, size_t count);
    // Length in bytes; 0 when not known.
    int64_t (*length)(void* file);
    void (*close)(void* file);
};
// The provider is copied; null removes it.
FRAMEWORK_API void FrameworkSetFileProvider(const FrameworkFileProvider* provider);
// The provider in force, or null.
FRAMEWORK_API const FrameworkFileProvider* FrameworkGetFileProvider();

// --- Registry override ---

// A text that stands for the registry values "LocalPath" and "SharedPath" of the host's data directories, in
// place of the registry; null goes back to the registry. Copied.
FRAMEWORK_API void FrameworkSetDataDirectory(const char* directory);
// The directory in force, or null.
FRAMEWORK_API const char* FrameworkGetDataDirectory();

// --- Services of one thread ---

// What a thread has in place of the process's services; a null member leaves that one as it is.
struct FrameworkThreadServices {
    FrameworkMessageBoxHandler messageBoxHandler;
    void* messageBoxContext;
    const FrameworkFileProvider* fileProvider;
    const char* dataDirectory;
};
// Sets the calling thread's services; null: none of its own. Not copied: they stay the caller's and must live
// as long as they are set. Returns what was set before, to be set again afterwards.
FRAMEWORK_API const FrameworkThreadServices* FrameworkSetThreadServices(
    const FrameworkThreadServices* services);
}

// --- Exceptions ---

// A bad argument of the host's. Thrown by AfxThrowInvalidArgException only.
class FRAMEWORK_API CInvalidArgException : public std::invalid_argument {
  public:
    CInvalidArgException();
    CInvalidArgException(const CInvalidArgException&) = default;
    ~CInvalidArgException() override;
};

// A failed read of an open file. what() is one line that names file and reason.
class FRAMEWORK_API CFileException : public std::runtime_error {
  public:
    CFileException(const char* fileName, const char* reason);
    CFileException(const CFileException&) = default;
    ~CFileException() override;
    const std::string& FileName() const { return fileName; }
    const std::string& Reason() const { return reason; }

  private:
    std::string fileName;
    std::string reason;
};

[[noreturn]] FRAMEWORK_API void AfxThrowInvalidArgException();
[[noreturn]] FRAMEWORK_API void AfxThrowFileException(const char* fileName, const char* reason);
