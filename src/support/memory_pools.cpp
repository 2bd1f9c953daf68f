#include "support/memory_pool.h"

namespace vemrado {

constinit CMemoryPool mainPool __attribute__((init_priority(101))) ("main");
constinit CMemoryPool stringPool __attribute__((init_priority(101))) ("strings");

}  // namespace vemrado
