// Says whether Vemrado.dll beside this program can be loaded.

#include <windows.h>

#include <cstdio>

int main() {
    const HMODULE module = LoadLibraryA("Vemrado.dll");
    if (module == nullptr) {
        std::printf("error %lu\n", GetLastError());
        return 1;
    }
    std::printf("loaded\n");
    return FreeLibrary(module) ? 0 : 2;
}
