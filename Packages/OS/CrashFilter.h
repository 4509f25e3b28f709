// A filter for faults that no handler takes.
#pragma once

#include <cstddef>
#include <cstdint>

// A fault. All systems use the exception codes of Windows.
struct Fault_t {
    uint32_t Code;
    uint64_t Address;  // of the instruction
    // Access violations and page errors: the kind of access (0 read, 1 write, 8 execute), the address accessed, and for
    // page errors the cause. 0 where unknown.
    uint64_t Information[3];
};

inline constexpr uint32_t kFaultMisalignment = 0x80000002;
inline constexpr uint32_t kFaultBreakpoint = 0x80000003;
inline constexpr uint32_t kFaultSingleStep = 0x80000004;
inline constexpr uint32_t kFaultAccessViolation = 0xC0000005;
inline constexpr uint32_t kFaultPageError = 0xC0000006;
inline constexpr uint32_t kFaultIllegalInstruction = 0xC000001D;
inline constexpr uint32_t kFaultArrayBounds = 0xC000008C;
inline constexpr uint32_t kFaultFloatDivision = 0xC000008E;
inline constexpr uint32_t kFaultFloatInexact = 0xC000008F;
inline constexpr uint32_t kFaultFloatInvalid = 0xC0000090;
inline constexpr uint32_t kFaultFloatOverflow = 0xC0000091;
inline constexpr uint32_t kFaultFloatUnderflow = 0xC0000093;
inline constexpr uint32_t kFaultDivision = 0xC0000094;
inline constexpr uint32_t kFaultOverflow = 0xC0000095;
inline constexpr uint32_t kFaultPrivilegedInstruction = 0xC0000096;
inline constexpr uint32_t kFaultStackOverflow = 0xC00000FD;

// Runs on the thread that faulted. Returns 0 to let the system go on with its own handling, which ends the process.
using CrashFilter_t = int32_t (*)(const Fault_t& fault);

// Sets the process's filter for unhandled faults, in place of any other; null removes ours. The library removes it when
// it is unloaded.
// Threads  one at a time
void os_SetCrashFilter(CrashFilter_t filter);

// Writes to standard output, for use in a filter. Gives up on failure, and after a short wait for a slow reader.
void os_WriteCrashText(const char* text, size_t size);
