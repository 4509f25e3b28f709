// What the files of the Linux half share. It reads the kernel's own interfaces: sysfs, /dev/mem, ioperm,
// /dev/cpu/N/msr and the CPUID instruction. There is no driver; what the kernel refuses is status 0, as where a driver
// refuses, with one trace line that tells the reason.
#pragma once

#include <cstdint>

#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/FERROXInternal.h"

enum class Direction_t { kRead, kWrite };

// 1 for an open library; else 0.
status_t NeedsOpen();
// Whether the processor says that a hypervisor is present; known when the library is open.
bool HasHypervisor();

// The status of a refused operation: 0, with errno in the line; or 0 with the given reason.
status_t Refused(const char* function);
status_t Refused(const char* function, const char* reason);

// Moves bytes of a function's configuration space. As on the bus, what isn't there reads as ones and takes no writes.
// False with errno set.
bool MoveConfiguration(Direction_t direction, uint32_t location, uint32_t offset, uint8_t* data, uint32_t size);

// A counter and the clock that it is measured with. Both read a number, false when they can't.
struct Measurement_t {
    bool (*ReadCounter)(void* context, uint64_t* count);
    bool (*ReadTimer)(void* context, uint64_t* ticks);
    void* context;
    uint64_t ticksPerSecond;
    uint64_t timerMask;  // the timer's bits; it starts again at 0 after them
};
// How often the counter counts in a second, over a busy interval of 10 ms. False when one can't be read or doesn't
// move, when the counter runs backward, or for a result that 64 bits don't hold.
bool MeasurePerSecond(const Measurement_t& measurement, uint64_t* perSecond);
