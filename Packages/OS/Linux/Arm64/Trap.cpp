#include "Packages/OS/Linux/Trap.h"

#include <asm/sigcontext.h>

#include <cstring>
#include <optional>

const uint64_t kPassedBreakpoint = 0;

namespace {

// The exception syndrome. The kernel saves it as one of several records, each with a mark and its size.
std::optional<uint64_t> SyndromeOf(const mcontext_t& machine) {
    constexpr size_t kSize = sizeof machine.__reserved;
    for (size_t place = 0; place + sizeof(esr_context) <= kSize;) {
        esr_context record;
        std::memcpy(&record, machine.__reserved + place, sizeof record);
        if (record.head.magic == ESR_MAGIC) return record.esr;
        if (record.head.magic == 0 || record.head.size < sizeof record.head) break;
        place += record.head.size;
    }
    return std::nullopt;
}

// Exception classes, of user mode and of the same mode.
constexpr uint64_t kSystemInstruction = 0x18, kInstructionAbort = 0x20, kDataAbort = 0x24;

}  // namespace

Trap_t TrapOf(const ucontext_t& context) {
    constexpr uint64_t kIsWrite = 0x40, kFaultStatus = 0x3C, kTranslationFault = 0x04;
    Trap_t trap = {Trap_t::kPage, context.uc_mcontext.pc, context.uc_mcontext.sp, kUnknownAccess, false};
    const std::optional<uint64_t> syndrome = SyndromeOf(context.uc_mcontext);
    if (!syndrome) return trap;
    trap.isMissing = (*syndrome & kFaultStatus) == kTranslationFault;
    switch (*syndrome >> 26 & 0x3E) {
        case kInstructionAbort: trap.access = kExecuteAccess; break;
        case kDataAbort: trap.access = (*syndrome & kIsWrite) != 0 ? kWriteAccess : kReadAccess; break;
        case kSystemInstruction: trap.kind = Trap_t::kPrivileged; break;
        default: trap.kind = Trap_t::kOther;
    }
    return trap;
}
