#include "Tests/Packages/OS/Linux/Crash.h"

#include <csignal>
#include <cstdint>

namespace {

BARE void ReadNowhere() { static_cast<void>(*reinterpret_cast<volatile uint8_t*>(0xF000'0000'0000'0000)); }
BARE void Halt() { __asm__ volatile("hlt"); }
BARE void ReadMSR() { __asm__ volatile("rdmsr" ::: "eax", "edx"); }
BARE void ReadPort() { __asm__ volatile("inw $0x80, %%ax" ::: "eax"); }
BARE void Break() { __asm__ volatile("int3"); }
BARE void Divide() { __asm__ volatile("xorl %%ecx, %%ecx; movl $1, %%eax; cltd; idivl %%ecx" ::: "eax", "ecx", "edx"); }

constexpr Crash_t kCrashes[] = {
    {"no possible address",   ReadNowhere, SIGSEGV, "code c0000005 0 ffffffffffffffff"},
    {"privileged",            Halt,        SIGSEGV, "code c0000096"                   },
    {"privileged, two bytes", ReadMSR,     SIGSEGV, "code c0000096"                   },
    {"privileged, a port",    ReadPort,    SIGSEGV, "code c0000096"                   },
    {"undefined instruction", Undefined,   SIGILL,  "code c000001d"                   },
    {"breakpoint",            Break,       SIGTRAP, "code 80000003"                   },
    {"division",              Divide,      SIGFPE,  "code c0000094"                   },
};

}  // namespace

std::span<const Crash_t> CrashesOfArchitecture() { return kCrashes; }

BARE void Undefined() { __asm__ volatile("ud2"); }
