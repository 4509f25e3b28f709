#include "Tests/Packages/OS/Linux/Crash.h"

#include <csignal>
#include <cstdint>

namespace {

BARE void ReadNowhere() { static_cast<void>(*reinterpret_cast<volatile uint8_t*>(0x80'0000'0000'0000)); }
BARE void ReadRegister() { __asm__ volatile("mrs x0, ttbr0_el1" ::: "x0"); }
BARE void CallHypervisor() { __asm__ volatile("hvc #0"); }
BARE void Break() { __asm__ volatile("brk #0"); }

constexpr Crash_t kCrashes[] = {
    {"no possible address",    ReadNowhere,    SIGSEGV, "code c0000005 0 80000000000000"},
    {"privileged, a register", ReadRegister,   SIGILL,  "code c0000096"                 },
    {"privileged, a call",     CallHypervisor, SIGILL,  "code c0000096"                 },
    {"undefined instruction",  Undefined,      SIGILL,  "code c000001d"                 },
    {"breakpoint",             Break,          SIGTRAP, "code 80000003"                 },
};

}  // namespace

std::span<const Crash_t> CrashesOfArchitecture() { return kCrashes; }

BARE void Undefined() { __asm__ volatile("udf #0"); }
