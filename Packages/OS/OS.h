// The os_ layer: what the lower libraries ask of the standard library and the system for their basic needs. Most
// functions are one call of the standard function of their name; what differs is told at the function.
//
// Null       An argument is tested only where a status for it is given.
// Threads    Any number at once.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

extern "C" {
// Blocks that cross the library's border: what the library allocates for its caller is given back by os_FreeBlock, and
// what a caller allocates for the library comes from os_NewBlock. A host's own heap may be another one.
// os_NewBlock gives null without memory; os_FreeBlock takes null.
QUORLIN_API void* os_NewBlock(size_t size);
QUORLIN_API void os_FreeBlock(void* block);

// The length of `text`, without its NUL.
QUORLIN_API uint32_t os_strlen(const char* text);

// Below, equal to or above 0, by bytes.
QUORLIN_API int32_t os_strcmp(const char* first, const char* second);

// Copies at most `count` characters of `source` and always ends with a NUL, unlike the standard function: the
// destination has room for count + 1. Nothing is written behind the NUL. Gives `destination`.
QUORLIN_API char* os_strncpy(char* destination, const char* source, size_t count);

// Fills the first `count` bytes of a destination of `size` bytes.
// Status  1; 2 size above 2^63, nothing filled, or count above size, the whole destination filled;
//         4 null destination
QUORLIN_API status_t os_memset(void* destination, size_t size, int value, size_t count);

// Copies `count` bytes into a destination of `size` bytes; the two must not overlap. A count of 0 does nothing.
// Status  1; 2 size above 2^63, or count above size; 4 null destination or source
//         A null source or a count above the size leaves the whole destination zeroed.
QUORLIN_API status_t os_memcpy(void* destination, size_t size, const void* source, size_t count);

// Opens a stream, which is the caller's to close. Null on failure, and for a null path or mode.
QUORLIN_API FILE* os_fopen(const char* path, const char* mode);

// Formats into `size` bytes, cut to fit and always NUL-terminated. Gives the length, or -1 when the text was cut or
// could not be formatted. A null buffer, a null format or a size of 0 gives -1.
QUORLIN_API int32_t os_vsnprintf(char* buffer, size_t size, const char* format, va_list arguments)
    QUORLIN_PRINTF_LIKE(3, 0);

// As os_vsnprintf, with at most `count` characters before the NUL.
QUORLIN_API int32_t os_snprintf(char* buffer, size_t size, size_t count, const char* format, ...)
    QUORLIN_PRINTF_LIKE(4, 5);

// The performance counter in whole milliseconds, from a start that the system chooses.
// Status  1; 4 null argument; otherwise the system's last error
QUORLIN_API status_t os_GetTimestampMs(uint64_t* milliseconds);
}
