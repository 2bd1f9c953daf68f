// The exported functions: the factory and the destroyer, each as a static member and as a plain C function.

#include "interface/importer.h"
#include "interface/module/module.h"
#include "vemrado/vkm_interface.h"

CVKMInterface* CVKMInterface::CreateVKMInterface() {
    return vemrado::ModuleAttached() ? vemrado::CreateImporter() : nullptr;
}

void CVKMInterface::DestroyVKMInterface(CVKMInterface* importer) {
    vemrado::DestroyImporter(importer);
}

CVKMInterface* CreateVKMInterface() {
    return CVKMInterface::CreateVKMInterface();
}

void DestroyVKMInterface(CVKMInterface* importer) {
    CVKMInterface::DestroyVKMInterface(importer);
}
