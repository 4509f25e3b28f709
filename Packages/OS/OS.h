// The os_ layer: what the lower libraries ask of the standard library and the system for their basic needs.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Packages/OS/Status.h"
#include "Packages/Platform/Export.h"

// The libraries' names for the standard calls.
inline void* os_malloc(size_t size) { return std::malloc(size); }
inline void os_free(void* block) { std::free(block); }
inline void* os_realloc(void* block, size_t size) { return std::realloc(block, size); }
