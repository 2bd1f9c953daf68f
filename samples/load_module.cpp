// Counts the elements of a VKM file with a module that is loaded by name at run time.

#include <dlfcn.h>

#include <cstdio>

#include "vemrado/vkm_interface.h"

struct Module {
    void* library;
    CVKMInterface* (*create)();
    void (*destroy)(CVKMInterface*);
};

bool Load(const char* path, Module& module) {
    module.library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!module.library) return false;
    module.create = reinterpret_cast<CVKMInterface* (*)()>(dlsym(module.library, "CreateVKMInterface"));
    module.destroy = reinterpret_cast<void (*)(CVKMInterface*)>(dlsym(module.library, "DestroyVKMInterface"));
    return module.create && module.destroy;
}

int main(int argc, char** argv) {
    Module module = {};
    if (argc < 3 || !Load(argv[1], module)) {
        std::fprintf(stderr, "usage: load_module MODULE FILE\n");
        return 2;
    }
    int counts[3] = {};
    CVKMInterface* vkm = module.create();
    const bool opened = vkm && vkm->Open(argv[2], 0, "", 1, 0.0, 0);
    if (opened) {
        while (int kind = vkm->ReadNext()) ++counts[kind];
        vkm->Close();
    }
    module.destroy(vkm);
    dlclose(module.library);  // only when every importer is destroyed
    std::printf("%d lines, %d texts\n", counts[1], counts[2]);
    return opened ? 0 : 1;
}
