// The libraries' names for the standard calls of allocation, and what the OS layer's files share beside them. Not
// installed: a host may have another heap, and gives blocks back by os_FreeBlock.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "Packages/OS/Status.h"

inline void* os_malloc(size_t size) { return std::malloc(size); }
inline void os_free(void* block) { std::free(block); }
inline void* os_realloc(void* block, size_t size) { return std::realloc(block, size); }

// A new block with a copy of `text`; null without memory.
char* CopyOfText(const char* text);

// os_FindFiles: folders whose name is as long or longer are refused.
inline constexpr size_t kLongestFolder = 258;
// Grows the array by a copy of `name`. 1 or 3.
status_t AddName(const char* name, char*** names, uint32_t* count);
// Gives the array out if `status` is 1, and frees it if not.
status_t GiveNames(status_t status, char** all, uint32_t known, char*** names, uint32_t* count);
