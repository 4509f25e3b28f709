// What the two halves of the trace library, handles and configuration, know of each other. Not installed.
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

// What a container's compare function gives.
inline int32_t Fold(int order) { return (order > 0) - (order < 0); }

// Creates a plain list of the library's own records.
status_t CreateList(const char* name, ContainerCompare_t compare, ContainerHandle_t* list);

// The first entry of `list` that `wanted` takes, or null. A null list has no entries.
template <typename Entry, typename Wanted>
Entry* FindEntry(ContainerHandle_t list, Wanted wanted) {
    void* entry = nullptr;
    for (int32_t i = 0; list != nullptr && RetrieveFromIndex(list, &entry, i) == kSuccess; i++)
        if (wanted(*static_cast<Entry*>(entry))) return static_cast<Entry*>(entry);
    return nullptr;
}

// The configuration (DebugConfig.cpp).

// Reads debug.conf of the working directory, if there is one that this process obeys.
// Status  1, also without a file; 3; 5 a bad line: the entries before it stay
status_t DebugReadConfig();
// The same from a stream, which stays the caller's.
status_t DebugReadConfigStream(FILE* stream);
// The same from a text whose lines end with a newline or ';'. Its log files may be devices.
// Status  also 6: it names a file, and the process has foreign rights
status_t DebugReadConfigText(const char* text);
// Why DebugReadConfig didn't obey the file that there is, or null.
extern const char* debugConfigRefusal;
// Gives a handle the settings of its own entry and then those of the Global entry, and opens their log files.
// Status  1; 4 null handle; 5 a log file can't be opened, or the Global entry has been released
status_t DebugApplyConfig(DebugHandle_t handle);
// Closes the log files and releases the entries. That there was a Global entry is kept.
// Status  1; 5 something could not be released
status_t DebugFreeConfig();
// DebugFreeConfig, and that there was a Global entry is forgotten too.
status_t DebugForgetConfig();

// For tests, which begin as a fresh process does. No handle may be open.
void DebugResetForTest();

// What times the lines: os_GetTimestampMs. A test puts another one here.
extern status_t (*debugClock)(uint64_t* milliseconds);
