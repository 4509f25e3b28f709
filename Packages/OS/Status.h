// The status that the operations of the lower libraries return, and the record of a library's version.
#pragma once

#include <cstdint>

using status_t = uint32_t;

inline constexpr status_t kSuccess = 1;
inline constexpr status_t kBadValue = 2;  // a bad index, offset or size; data not found
inline constexpr status_t kNoMemory = 3;
inline constexpr status_t kNullPointer = 4;   // a null argument, or an empty container
inline constexpr status_t kFailure = 5;       // failure, nothing more, or not implemented
inline constexpr status_t kNotSupported = 6;  // not available on this system or by this access method

// 16 bytes of NUL-terminated text.
struct LibVersion_t {
    char Major[3];
    char Minor[3];
    char Revision[5];
    char Build[5];
};
static_assert(sizeof(LibVersion_t) == 16);
