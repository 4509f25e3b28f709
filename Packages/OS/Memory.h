// Allocation in this library, and helpers shared by the files of the OS layer. Not installed: a host may use another
// heap, and releases this library's blocks with os_FreeBlock.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "Packages/OS/Status.h"

inline void* os_malloc(size_t size) { return std::malloc(size); }
inline void os_free(void* block) { std::free(block); }
inline void* os_realloc(void* block, size_t size) { return std::realloc(block, size); }

// Returns a new block with a copy of `text`; null if out of memory.
char* CopyOfText(const char* text);

// os_FindFiles refuses names of folders that have this length or more.
inline constexpr size_t kLongestFolder = 258;
// Appends a copy of `name` to the array. Returns 1, or 3 if out of memory.
status_t AddName(const char* name, char*** names, uint32_t* count);
// Stores the array in the out pointers if `status` is 1, otherwise frees it. Returns `status`.
status_t GiveNames(status_t status, char** all, uint32_t known, char*** names, uint32_t* count);
