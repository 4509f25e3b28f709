// Counts all allocations of the program. Operator new is included, as it calls malloc.
#pragma once

#include <cstdint>

struct Allocations_t {
    int64_t count = 0, bytes = 0;
};
// Since the program began. For programs with one thread.
Allocations_t AllocationsSoFar();
