#include "vkm/elements.h"

#include <utility>

namespace vemrado {

void CVKMLineElements::SetLongCode(std::string_view value) {
    longCodes.emplace_back(value);
    working->code.longCode = static_cast<int32_t>(longCodes.size() - 1);
}

void CVKMLineElements::Grow() {
    const auto before = static_cast<size_t>(first - elements.data());
    elements.resize(elements.size() + elements.size() / 2 + growthStep);
    first = elements.data() + before;
    working = first + count;
}

void CVKMLineElements::MoveWorkingToStart() {
    CVKMLineElement element = *working;
    if (!longCodes.empty()) {
        int32_t& index = element.code.longCode;
        if (index > 0) std::swap(longCodes.front(), longCodes[static_cast<size_t>(index)]);
        longCodes.resize(index < 0 ? 0 : 1);
        if (index > 0) index = 0;
    }
    if (elements.size() > keptElements) {
        elements.resize(growthStep + 1);
        elements.shrink_to_fit();
    }
    first = working = elements.data();
    *working = element;
}

}  // namespace vemrado
