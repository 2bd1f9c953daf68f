// The module's own global allocation functions: everything that is created inside the module, by the C++
// runtime linked into it too, comes from mainPool. They are not exported, and so neither replace the host's
// nor mix with them.
//
// None of them throws: plain new gives null when there is no memory, against what the standard asks of it.
// GCC is kept from taking its result for not null with -fcheck-new. Clang has no such option, so the module's
// own code creates objects with the nothrow forms and with containers that test for null.

#include <cstddef>
#include <new>

#include "support/memory_pool.h"

namespace {

constexpr size_t plainAlignment = 4;
static_assert(__STDCPP_DEFAULT_NEW_ALIGNMENT__ == plainAlignment,
              "the compiler must expect what the pool gives");

void* Allocate(size_t size) {
    return vemrado::AllocateMemory(size, plainAlignment);
}

void* Allocate(size_t size, std::align_val_t alignment) {
    return vemrado::AllocateMemory(size, static_cast<size_t>(alignment));
}

}  // namespace

void* operator new(size_t size) {
    return Allocate(size);
}
void* operator new[](size_t size) {
    return Allocate(size);
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new(size_t size, std::align_val_t alignment) {
    return Allocate(size, alignment);
}
void* operator new[](size_t size, std::align_val_t alignment) {
    return Allocate(size, alignment);
}
void* operator new(size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return Allocate(size, alignment);
}
void* operator new[](size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return Allocate(size, alignment);
}

void operator delete(void* block) noexcept {
    vemrado::FreeMemory(block);
}
void operator delete[](void* block) noexcept {
    vemrado::FreeMemory(block);
}
void operator delete(void* block, size_t) noexcept {
    vemrado::FreeMemory(block);
}
void operator delete[](void* block, size_t) noexcept {
    vemrado::FreeMemory(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    vemrado::FreeMemory(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    vemrado::FreeMemory(block);
}
void operator delete(void* block, std::align_val_t) noexcept {
    vemrado::FreeMemory(block);
}
void operator delete[](void* block, std::align_val_t) noexcept {
    vemrado::FreeMemory(block);
}
void operator delete(void* block, size_t, std::align_val_t) noexcept {
    vemrado::FreeMemory(block);
}
void operator delete[](void* block, size_t, std::align_val_t) noexcept {
    vemrado::FreeMemory(block);
}
void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept {
    vemrado::FreeMemory(block);
}
void operator delete[](void* block, std::align_val_t, const std::nothrow_t&) noexcept {
    vemrado::FreeMemory(block);
}
