// Counts what the whole program allocates, operator new included, which asks malloc.
#pragma once

#include <cstdint>

struct Allocations_t {
    int64_t count = 0, bytes = 0;
};
// Since the program began; for one thread.
Allocations_t AllocationsSoFar();
