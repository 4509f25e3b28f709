// Lets a test count allocations and make them fail. This covers operator new and malloc, but not the C library's own
// allocations.
#pragma once

#include <cstddef>

enum class Failing_t {
    kOnce,     // one allocation fails, the next ones succeed
    kForGood,  // that allocation fails, and all after it
};

// Makes the allocation with this number fail, counted from now on and from 1.
void FailAllocation(size_t number, Failing_t failing);
// Lets all allocations succeed again. Returns whether one has failed since FailAllocation.
bool EndOfFailing();
// The number of blocks that are allocated now.
size_t LiveBlocks();
