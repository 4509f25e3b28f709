// What the files of the Linux half share. It uses the kernel's own interfaces: sysfs, /dev/mem, ioperm, /dev/cpu/N/msr,
// and the CPUID instruction. If the kernel refuses, an operation traces why and returns 0. Each architecture has a
// folder: what it doesn't have is refused with status 6.
#pragma once

#include <cstdint>

#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/FERROXLib/Obstacles.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/FERROXInternal.h"

enum class Direction_t { kRead, kWrite };

// Returns 1 if the library is open, otherwise traces that it isn't and returns 0.
status_t NeedsOpen();
// Whether the processor reports a hypervisor. Valid while the library is open.
bool HasHypervisor();

bool ArchitectureHas(Way_t way);

// Trace that an operation was refused, because of errno or for the given reason, and return 0.
status_t Refused(const char* function);
status_t Refused(const char* function, const char* reason);

// Reads or writes bytes of a PCI function's configuration space. As on the bus, functions and registers that don't
// exist read as ones and ignore writes. Returns false, with errno set, on failure.
bool MoveConfiguration(Direction_t direction, uint32_t location, uint32_t offset, uint8_t* data, uint32_t size);

// A counter, and a timer to measure it with. Both functions return false on failure.
struct Measurement_t {
    bool (*ReadCounter)(void* context, uint64_t* count);
    bool (*ReadTimer)(void* context, uint64_t* ticks);
    void* context;
    uint64_t ticksPerSecond;
    uint64_t timerMask;  // the timer's bits; it wraps around to 0 after them
};
// Returns the rate of the counter per second, measured in a busy loop of 10 ms. False if counter or timer can't be read
// or doesn't move, if the counter runs backward, or if the result doesn't fit in 64 bits.
bool MeasurePerSecond(const Measurement_t& measurement, uint64_t* perSecond);
