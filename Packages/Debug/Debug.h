// Trace handles and output. A trace call never changes what its caller does.
#pragma once

#include <cstdint>

#include "Packages/OS/Status.h"
#include "Packages/Platform/Export.h"

struct DebugRecord_t;
using DebugHandle_t = DebugRecord_t*;

// Levels: each one bit, combined as in kErrorExit.
inline constexpr uint32_t kEntry = 1;
inline constexpr uint32_t kInfo = 2;
inline constexpr uint32_t kParams = 4;
inline constexpr uint32_t kWarning = 8;
inline constexpr uint32_t kError = 16;
inline constexpr uint32_t kExit = 32;
inline constexpr uint32_t kErrorExit = kError | kExit;  // an error that ends the function

extern "C" {
QUORLIN_API status_t DebugLibInit(const char* name, DebugHandle_t* handle);
QUORLIN_API status_t DebugLibExit(DebugHandle_t handle);
QUORLIN_API status_t DebugTrace(DebugHandle_t handle, const char* sourceFile, const char* function, uint32_t line,
                                uint32_t level, const char* format, ...) __attribute__((format(printf, 6, 7)));
}

// One trace line. `handle` is asked first, so that a call on a null handle costs one test and formats nothing.
#define QUORLIN_TRACE(handle, sourceFile, function, level, ...)                                                  \
    do {                                                                                                         \
        if ((handle) != nullptr) DebugTrace((handle), (sourceFile), (function), __LINE__, (level), __VA_ARGS__); \
    } while (false)
