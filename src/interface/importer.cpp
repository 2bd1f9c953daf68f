#include "interface/importer.h"

#include <new>

#include "interface/vkm_input.h"
#include "support/memory_pool.h"

namespace vemrado {

CVKMInterface* CreateImporter() {
    void* memory = AllocateMemory(sizeof(CVkmInput), alignof(CVkmInput));
    if (memory == nullptr) return nullptr;
    try {
        return new (memory) CVkmInput;
    } catch (const std::bad_alloc&) {
        FreeMemory(memory);
        return nullptr;
    }
}

void DestroyImporter(CVKMInterface* importer) {
    if (importer == nullptr) return;
    CVkmInput* input = static_cast<CVkmInput*>(importer);
    input->~CVkmInput();
    FreeMemory(input);
}

}  // namespace vemrado
