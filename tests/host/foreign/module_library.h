// The module as a foreign host has it: a library loaded by its path, functions found by name, operations
// called by their position. Nothing of the module or of the host's stand-ins is linked to the program.

#pragma once

#include <stdexcept>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

class ModuleLibrary {
  public:
    explicit ModuleLibrary(const char* path = VEMRADO_LIBRARY) {
#if defined(_WIN32)
        handle = LoadLibraryA(path);
        if (!handle) throw std::runtime_error(std::string("cannot load ") + path);
#else
        handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
        if (!handle) throw std::runtime_error(dlerror());
#endif
    }
    ModuleLibrary(const ModuleLibrary&) = delete;
    ModuleLibrary& operator=(const ModuleLibrary&) = delete;
    ~ModuleLibrary() {
#if defined(_WIN32)
        FreeLibrary(handle);
#else
        dlclose(handle);
#endif
    }

    // A function of the library, or on Linux of the libraries that it brought along; null when there is none.
    template <class Function>
    Function* Find(const char* name) const {
#if defined(_WIN32)
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(handle, name)));
#else
        return reinterpret_cast<Function*>(dlsym(handle, name));
#endif
    }

    void* Create() const {
        return Find<void*()>("CreateVKMInterface")();
    }
    void Destroy(void* importer) const {
        Find<void(void*)>("DestroyVKMInterface")(importer);
    }

  private:
#if defined(_WIN32)
    HMODULE handle;
#else
    void* handle;
#endif
};

// An importer and its operations by slot.
class ForeignImporter {
  public:
    explicit ForeignImporter(const ModuleLibrary& module) : library(module), importer(module.Create()) {}
    ForeignImporter(const ForeignImporter&) = delete;
    ForeignImporter& operator=(const ForeignImporter&) = delete;
    ~ForeignImporter() { library.Destroy(importer); }

    template <class Result, class... Arguments>
    Result Call(int slot, Arguments... arguments) const {
        using Operation = Result (*)(void*, Arguments...);
        void* const* operations = *static_cast<void* const* const*>(importer);
        return reinterpret_cast<Operation>(operations[slot])(importer, arguments...);
    }

    int Open(const char* path, int flags = 0, int loadSymbology = 0) const {
        return Call<int, const char*, int, const char*, int, double, int>(0, path, loadSymbology, "", 1, 0.0,
                                                                          flags);
    }
    void Close() const { Call<void>(1); }
    int ReadNext() const { return Call<int>(6); }

  private:
    const ModuleLibrary& library;
    void* importer;
};
