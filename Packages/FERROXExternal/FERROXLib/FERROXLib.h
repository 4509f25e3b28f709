// The hardware library. So far: the CPUID record.
#pragma once

#include <cstdint>

#include "Packages/OS/Status.h"
#include "Packages/Platform/Export.h"

// Eax and Ecx carry leaf and sub-leaf in, and all four registers come back.
struct CPUIDRecord_t {
    uint32_t Reserved;
    uint32_t Eax;
    uint32_t Ebx;
    uint32_t Ecx;
    uint32_t Edx;
};
static_assert(sizeof(CPUIDRecord_t) == 20);

inline constexpr uint32_t kAnyProcessor = 256;
