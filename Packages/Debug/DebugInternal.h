// What Debug.cpp (handles) and DebugConfig.cpp (configuration) share. Not installed.
#pragma once

#include "Packages/Container/Container.h"
#include "Packages/Debug/Debug.h"
#include "Packages/OS/NamedLock.h"

// Bits of DebugRecord_t::Flags.
inline constexpr uint32_t kFlushPackageStream = 1;
inline constexpr uint32_t kFlushGlobalStream = 2;
inline constexpr uint32_t kLocked = 4;
inline constexpr uint32_t kLogToPackageStream = 8;
inline constexpr uint32_t kThreadedOutput = 16;

// Sets the bits of `mask` in `*bits`, or clears them.
template <typename Bits>
void SetBits(Bits* bits, Bits mask, bool on) {
    *bits = on ? *bits | mask : *bits & ~mask;
}

// -1, 0 or 1: the result of a container's compare function.
inline int32_t Fold(int order) { return (order > 0) - (order < 0); }

// Creates a plain list of the library's own records.
status_t CreateList(const char* name, ContainerCompare_t compare, ContainerHandle_t* list);

// Returns the first entry of `list` for which `wanted` is true, or null. A null list has no entries.
template <typename Entry, typename Wanted>
Entry* FindEntry(ContainerHandle_t list, Wanted wanted) {
    void* entry = nullptr;
    for (int32_t i = 0; list != nullptr && RetrieveFromIndex(list, &entry, i) == kSuccess; i++)
        if (wanted(*static_cast<Entry*>(entry))) return static_cast<Entry*>(entry);
    return nullptr;
}

// The configuration (DebugConfig.cpp).

// Reads debug.conf of the working directory, if there is one that OpenConfigFile accepts.
// Status  1, even without a file; 3 out of memory; 5 a bad line: the entries before it stay
status_t DebugReadConfig();
// The same from a stream; doesn't close it.
status_t DebugReadConfigStream(FILE* stream);
// The same from a text whose lines end with a newline or ';'. Its log files may be devices.
// Status  also 6: it names a log file, and HasForeignRights()
status_t DebugReadConfigText(const char* text);
// Why DebugReadConfig ignored the file, or null.
extern const char* debugConfigRefusal;
// Applies the handle's own entry and then the Global entry to a handle, and opens their log files.
// Status  1; 4 null handle; 5 a log file can't be opened, or the Global entry was released
status_t DebugApplyConfig(DebugHandle_t handle);
// Closes the log files and releases the entries, but remembers that there was a Global entry.
// Status  1; 5 something couldn't be released
status_t DebugFreeConfig();
// As DebugFreeConfig, and forgets that there was a Global entry.
status_t DebugForgetConfig();

// For tests: returns the library to its state in a new process. No handle may be open.
void DebugResetForTest();

// The clock of the lines: os_GetTimestampMs, or a test's own.
extern status_t (*debugClock)(uint64_t* milliseconds);
