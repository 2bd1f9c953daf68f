// Makes and destroys importers on the module's memory.

#pragma once

#include "vemrado/vkm_interface.h"

namespace vemrado {

// Null when there is no memory.
CVKMInterface* CreateImporter();
// Null is ignored.
void DestroyImporter(CVKMInterface* importer);

}  // namespace vemrado
