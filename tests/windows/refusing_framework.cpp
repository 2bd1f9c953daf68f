// The framework stand-in as it would be in a host that takes no extension module.

#include "framework/framework.h"

int AfxInitExtensionModule(AFX_EXTENSION_MODULE*, void*) {
    return 0;
}
