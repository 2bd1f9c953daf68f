// The exported functions: the factory and the destroyer, each as a static member and as a plain C function.

#include "interface/importer.h"
#include "vemrado/vkm_interface.h"

CVKMInterface* CVKMInterface::CreateVKMInterface() {
    return vemrado::CreateImporter();
}

void CVKMInterface::DestroyVKMInterface(CVKMInterface* importer) {
    vemrado::DestroyImporter(importer);
}

CVKMInterface* CreateVKMInterface() {
    return vemrado::CreateImporter();
}

void DestroyVKMInterface(CVKMInterface* importer) {
    vemrado::DestroyImporter(importer);
}
