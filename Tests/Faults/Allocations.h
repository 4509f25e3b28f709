// The allocation under a test's control: told to fail, and counted. The test program's operator new and malloc are
// these; what the C library allocates for itself is not.
#pragma once

#include <cstddef>

enum class Failing_t {
    kOnce,     // one allocation fails, and memory is back for the next
    kForGood,  // that one and all after it
};

// From here on the allocation with this number fails, counted from 1.
void FailAllocation(size_t number, Failing_t failing);
// Whether one has failed since. From here on none does.
bool EndOfFailing();
// The blocks that are allocated now.
size_t LiveBlocks();
