#include "vemrado/vkm_interface.h"

const int CVKMInterface::flgSymbolsNone = 0;
const int CVKMInterface::flgSymbols = 1;
const int CVKMInterface::flgSymbolsByGPScale = 2;
