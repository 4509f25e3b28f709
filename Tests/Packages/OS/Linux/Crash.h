// Faults of the processor. Each architecture has a file of its own for those by its instructions.
#pragma once

#include <span>

#define BARE __attribute__((noinline, no_sanitize("address", "undefined")))

struct Crash_t {
    const char* what;
    void (*fault)();
    int signal;
    const char* report;
};
std::span<const Crash_t> CrashesOfArchitecture();

// Runs an instruction that no processor has.
void Undefined();
