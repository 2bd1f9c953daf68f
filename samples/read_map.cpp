// Prints where the elements of a VKM file lie.

#include <cstdio>

#include "vemrado/vkm_interface.h"

int main(int argc, char** argv) {
    CVKMInterface* vkm = CreateVKMInterface();
    if (argc < 2 || !vkm || !vkm->Open(argv[1], 0, "", 1, 0.0, CVKMInterface::flgSymbolsNone)) return 1;
    std::printf("scale 1:%g\n", vkm->GetScale());
    while (int kind = vkm->ReadNext()) {  // 1: a line, 2: a text
        int layer = 0;
        double point[3] = {};
        if (kind == 1) vkm->GetElementPoint(vkm->GetElementCount() - 1, point);
        if (kind == 2) vkm->GetTextPoint(point);
        std::printf("layer %s: %s %.2f %.2f\n", vkm->GetLayer(&layer), kind == 1 ? "line to" : vkm->GetText(),
                    point[0], point[1]);
    }
    DestroyVKMInterface(vkm);
}
