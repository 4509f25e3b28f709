// What the processor says of a fault. Each architecture has a file for it.
#pragma once

#include <ucontext.h>

#include <cstdint>

// Kinds of access, as in Fault_t::Information[0].
inline constexpr uint64_t kReadAccess = 0, kWriteAccess = 1, kUnknownAccess = 2, kExecuteAccess = 8;

struct Trap_t {
    enum Kind_t { kOther, kPage, kStackSegment, kPrivileged } kind;
    uint64_t place;   // of the instruction
    uint64_t stack;   // the stack pointer
    uint64_t access;  // of a page
    bool isMissing;   // the page, as opposed to one without rights
};

// signal  which the kernel sent for it
Trap_t TrapOf(int signal, const ucontext_t& context);

// By how many bytes the place of a breakpoint's trap is past the breakpoint.
extern const uint64_t kPassedBreakpoint;
