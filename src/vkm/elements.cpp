#include "vkm/elements.h"

#include <utility>

namespace vemrado {

void CVKMLineElements::Grow() {
    // Not more than the room that the line itself needs: what stands before it is free.
    const size_t wanted = elements.size() + elements.size() / 2 + growthStep;
    elements.resize(wanted);
}

void CVKMLineElements::MoveWorkingToStart() {
    CVKMLineElement working = Working();
    if (!longCodes.empty()) {
        int32_t& index = working.code.longCode;
        if (index > 0) std::swap(longCodes.front(), longCodes[static_cast<size_t>(index)]);
        longCodes.resize(index < 0 ? 0 : 1);
        if (index > 0) index = 0;
    }
    first = 0;
    if (elements.size() > keptElements) {
        elements.resize(growthStep + 1);
        elements.shrink_to_fit();
    }
    elements.front() = working;
}

}  // namespace vemrado
