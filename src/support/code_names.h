// The names of codes: short texts, kept one behind the other.

#pragma once

#include <cstdint>
#include <string_view>

#include "support/containers.h"

namespace vemrado {

class CodeNames {
  public:
    // The place of a name. May throw std::bad_alloc.
    uint32_t Add(std::string_view name) {
        if (name.empty()) return 0;
        const size_t place = text.size();
        text.append(name).push_back('\0');
        return static_cast<uint32_t>(place);
    }
    // Zero-terminated, valid until the next one is added.
    const char* At(uint32_t place) const { return text.c_str() + place; }
    void Clear() { text.assign(1, '\0'); }

  private:
    String text = String(1, '\0');  // the empty name stands first
};

}  // namespace vemrado
