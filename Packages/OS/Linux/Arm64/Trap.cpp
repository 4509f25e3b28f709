#include "Packages/OS/Linux/Trap.h"

#include <asm/sigcontext.h>

#include <csignal>
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

// Exception classes; the last bit says in which mode the exception was raised.
constexpr uint64_t kInstructionAbort = 0x20, kDataAbort = 0x24;

// Whether only the kernel or a hypervisor may use the instruction: a register of theirs, or a call of theirs. The
// processor has fetched it, so its bytes can be read.
bool IsPrivileged(uint64_t place) {
    uint32_t code;
    std::memcpy(&code, reinterpret_cast<const void*>(place), sizeof code);
    constexpr uint32_t kUser = 3;
    const bool isRegister = (code & 0xFFC00000) == 0xD5000000 && (code >> 16 & 7) != kUser;
    const bool isCall = (code & 0xFFE0001F) == 0xD4000002 || (code & 0xFFE0001F) == 0xD4000003;
    return isRegister || isCall;
}

}  // namespace

Trap_t TrapOf(int signal, const ucontext_t& context) {
    constexpr uint64_t kIsWrite = 0x40, kFaultStatus = 0x3C, kTranslationFault = 0x04;
    Trap_t trap = {Trap_t::kPage, context.uc_mcontext.pc, context.uc_mcontext.sp, kUnknownAccess, false};
    if (signal == SIGILL) {
        trap.kind = IsPrivileged(trap.place) ? Trap_t::kPrivileged : Trap_t::kOther;
        return trap;
    }
    const std::optional<uint64_t> syndrome = SyndromeOf(context.uc_mcontext);
    if (!syndrome) return trap;
    trap.isMissing = (*syndrome & kFaultStatus) == kTranslationFault;
    switch (*syndrome >> 26 & 0x3E) {
        case kInstructionAbort: trap.access = kExecuteAccess; break;
        case kDataAbort: trap.access = (*syndrome & kIsWrite) != 0 ? kWriteAccess : kReadAccess; break;
        default: trap.kind = Trap_t::kOther;
    }
    return trap;
}
