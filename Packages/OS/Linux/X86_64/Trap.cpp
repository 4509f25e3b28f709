#include "Packages/OS/Linux/Trap.h"

// The instruction pointer is already after the breakpoint instruction, which is one byte.
const uint64_t kPassedBreakpoint = 1;

namespace {

// The processor's exception numbers, and bits of a page fault's error code.
constexpr greg_t kStackFault = 12, kGeneralProtection = 13, kPageFault = 14;
constexpr greg_t kIsPresent = 1, kIsWrite = 2, kIsFetch = 16;

// Whether only the kernel may use the instruction: hlt, cli, sti, in, out, and the two-byte instructions for caches,
// descriptor tables, control registers and MSRs. The processor has fetched it, so its bytes can be read.
bool IsPrivileged(const uint8_t* code) {
    constexpr uint8_t kOperandSize = 0x66, kRepeatNot = 0xF2, kRepeat = 0xF3;
    while (*code == kOperandSize || *code == kRepeatNot || *code == kRepeat || (*code & 0xF0) == 0x40) code++;
    const uint8_t first = code[0];
    if (first == 0x0F) {
        const uint8_t second = code[1];
        // lgdt and lidt, which have a memory operand
        const bool isTableLoad = second == 0x01 && (code[2] >> 4 == 1 || code[2] >> 4 == 5 || code[2] >> 4 == 9);
        return second == 0x30 || second == 0x32 || (second >= 0x20 && second <= 0x23) || second == 0x06 ||
               second == 0x08 || second == 0x09 || isTableLoad;
    }
    return first == 0xF4 || first == 0xFA || first == 0xFB || (first >= 0xE4 && first <= 0xE7) ||
           (first >= 0xEC && first <= 0xEF) || (first >= 0x6C && first <= 0x6F);
}

Trap_t::Kind_t KindOf(greg_t trap, const uint8_t* code) {
    switch (trap) {
        case kPageFault: return Trap_t::kPage;
        case kStackFault: return Trap_t::kStackSegment;
        case kGeneralProtection: return IsPrivileged(code) ? Trap_t::kPrivileged : Trap_t::kOther;
        default: return Trap_t::kOther;
    }
}

}  // namespace

Trap_t TrapOf(int, const ucontext_t& context) {
    const greg_t* registers = context.uc_mcontext.gregs;
    const greg_t error = registers[REG_ERR];
    const auto place = static_cast<uint64_t>(registers[REG_RIP]);
    return {
        .kind = KindOf(registers[REG_TRAPNO], reinterpret_cast<const uint8_t*>(place)),
        .place = place,
        .stack = static_cast<uint64_t>(registers[REG_RSP]),
        .access = (error & kIsFetch) != 0   ? kExecuteAccess
                  : (error & kIsWrite) != 0 ? kWriteAccess
                                            : kReadAccess,
        .isMissing = (error & kIsPresent) == 0,
    };
}
