// The basic functions of the os_ layer, through which the lower libraries call the standard library and the system. A
// function behaves as the standard function of its name, except as said here.
//
// Null       Arguments must not be null, unless a result for null is listed.
// Threads    All functions may be called by several threads at once.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

extern "C" {
// Allocation across the library's border, where the host may use another heap: blocks that the library allocates for
// its caller are released with os_FreeBlock, and blocks that a caller allocates for the library come from os_NewBlock.
// os_NewBlock returns null if out of memory; os_FreeBlock accepts null.
QUORLIN_API void* os_NewBlock(size_t size);
QUORLIN_API void os_FreeBlock(void* block);

// Returns the length of `text` without its NUL.
QUORLIN_API uint32_t os_strlen(const char* text);

// Compares by bytes. Returns a number below, equal to or above 0.
QUORLIN_API int32_t os_strcmp(const char* first, const char* second);

// Copies at most `count` characters of `source`, and a NUL. Unlike the standard function it always writes one NUL, and
// nothing after it, so `destination` must have room for count + 1. Returns `destination`.
QUORLIN_API char* os_strncpy(char* destination, const char* source, size_t count);

// Fills the first `count` bytes of a destination of `size` bytes.
// Status  1; 2 size above 2^63, nothing filled, or count above size, the whole destination filled;
//         4 null destination
QUORLIN_API status_t os_memset(void* destination, size_t size, int value, size_t count);

// Copies `count` bytes to a destination of `size` bytes. They must not overlap. A count of 0 does nothing.
// Status  1; 2 size above 2^63, or count above size; 4 null destination or source
//         A null source or a count above the size zeroes the whole destination.
QUORLIN_API status_t os_memcpy(void* destination, size_t size, const void* source, size_t count);

// Opens a stream. The caller closes it. Returns null on failure, or if path or mode is null.
QUORLIN_API FILE* os_fopen(const char* path, const char* mode);

// Formats into `size` bytes. The text is cut to fit and always NUL-terminated. Returns its length, or -1 if it was cut
// or couldn't be formatted, if buffer or format is null, or if the size is 0.
QUORLIN_API int32_t os_vsnprintf(char* buffer, size_t size, const char* format, va_list arguments)
    QUORLIN_PRINTF_LIKE(3, 0);

// As os_vsnprintf, but writes at most `count` characters before the NUL.
QUORLIN_API int32_t os_snprintf(char* buffer, size_t size, size_t count, const char* format, ...)
    QUORLIN_PRINTF_LIKE(4, 5);

// Returns the system's monotonic clock in whole milliseconds.
// Status  1; 4 null argument; otherwise the system's last error
QUORLIN_API status_t os_GetTimestampMs(uint64_t* milliseconds);
}
