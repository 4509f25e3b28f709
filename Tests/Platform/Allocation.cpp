// Stand-in: the allocation. The test programs are linked with --wrap=malloc.
#include <cstddef>

#include "Tests/Platform/ScriptedPlatform.h"

extern "C" {
void* __real_malloc(size_t size);
void* __wrap_malloc(size_t size);

void* __wrap_malloc(size_t size) {
    const bool fails = size != 0 && size == ClScriptedPlatform::failAllocationOf;
    return fails ? nullptr : __real_malloc(size);
}
}
