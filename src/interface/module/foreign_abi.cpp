// The members of CVKMInterface that a compiler makes by itself, for hosts of the platform's own compiler: it
// takes them from the library that exports the class. The .def file gives these functions their names.
//
// Member functions get the object first and, for scalar arguments, in the same registers in either compiler's
// code. Constructors and the assignment return the object.

#include <cstdlib>

#include "vemrado/vkm_interface.h"

namespace {

// What an object holds while only its interface part is constructed: every operation is still pure.
[[noreturn]] void PureOperation() {
    std::abort();
}

using Operation = void (*)();
constexpr int operationCount = 22;

struct DispatchTable {
    Operation operations[operationCount];
    constexpr DispatchTable() : operations{} {
        for (Operation& operation : operations) operation = PureOperation;
    }
};
constexpr DispatchTable pureTable;

struct Object {
    const DispatchTable* table;
};
static_assert(sizeof(Object) == sizeof(CVKMInterface));

}  // namespace

extern "C" {

void* vkm_ctor(Object* object) {
    object->table = &pureTable;
    return object;
}

void* vkm_copy_ctor(Object* object, const Object*) {
    return vkm_ctor(object);
}

void vkm_dtor(Object* object) {
    object->table = &pureTable;
}

// The dispatch table belongs to the object's class, which an assignment does not change.
void* vkm_assign(Object* object, const Object*) {
    return object;
}

}  // extern "C"
