#include "Benchmarks/Allocations.h"

#include <cstddef>

static Allocations_t soFar;

Allocations_t AllocationsSoFar() { return soFar; }

static void Count(size_t bytes) {
    soFar.count++;
    soFar.bytes += static_cast<int64_t>(bytes);
}

// A program may replace the C library's allocator, which stays available under these names.
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);

void* malloc(size_t size) {
    Count(size);
    return __libc_malloc(size);
}
void* calloc(size_t count, size_t size) {
    Count(count * size);
    return __libc_calloc(count, size);
}
void* realloc(void* block, size_t size) {
    Count(size);
    return __libc_realloc(block, size);
}
}
