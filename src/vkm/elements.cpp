#include "vkm/elements.h"

#include <utility>

namespace vemrado {

void CVKMLineElements::KeepLongCode(CVKMLineElement& working) {
    int32_t& index = working.code.longCode;
    if (index < 0) {
        longCodes.clear();
        return;
    }
    std::swap(longCodes.front(), longCodes[static_cast<size_t>(index)]);
    longCodes.resize(1);
    index = 0;
}

}  // namespace vemrado
