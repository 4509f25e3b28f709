// The unhandled-exception filter. Signals that the processor raises become exception records; the filter is called, and
// then the process dies by the same signal, from the same place, as it would have without a filter.
//
// A signal for which the host has a handler of its own is not unhandled, and keeps that handler.
#include <signal.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <atomic>
#include <cstring>

#include "Packages/Platform/Linux/Handles.h"

namespace {

constexpr int kSignals[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP};

std::atomic<LPTOP_LEVEL_EXCEPTION_FILTER> theFilter{nullptr};

// The processor's own numbers of its exceptions, and the bits of a page fault's error code.
constexpr greg_t kStackFault = 12, kGeneralProtection = 13, kPageFault = 14;
constexpr greg_t kIsPresent = 1, kIsWrite = 2, kIsFetch = 16;

// Information word 0 of an access violation.
constexpr ULONG_PTR kRead = 0, kWrite = 1, kUnknown = 2, kExecute = 8;
constexpr ULONG_PTR kStatusEndOfFile = 0xC0000011, kStatusDeviceDataError = 0xC000009C;

// Whether the instruction is one that only the kernel may use: hlt, cli, sti, in, out, and the ones behind 0Fh for
// caches, descriptor tables, control registers and MSRs. The instruction has been fetched, so its bytes can be read.
bool IsPrivileged(const uint8_t* code) {
    constexpr uint8_t kOperandSize = 0x66, kRepeatNot = 0xF2, kRepeat = 0xF3;
    while (*code == kOperandSize || *code == kRepeatNot || *code == kRepeat || (*code & 0xF0) == 0x40) code++;
    const uint8_t first = code[0];
    if (first == 0x0F) {
        const uint8_t second = code[1];
        // lgdt and lidt, which have a memory operand.
        const bool isTableLoad = second == 0x01 && (code[2] >> 4 == 1 || code[2] >> 4 == 5 || code[2] >> 4 == 9);
        return second == 0x30 || second == 0x32 || (second >= 0x20 && second <= 0x23) || second == 0x06 ||
               second == 0x08 || second == 0x09 || isTableLoad;
    }
    return first == 0xF4 || first == 0xFA || first == 0xFB || (first >= 0xE4 && first <= 0xE7) ||
           (first >= 0xEC && first <= 0xEF) || (first >= 0x6C && first <= 0x6F);
}

void Describe(EXCEPTION_RECORD* record, DWORD code) { record->ExceptionCode = code; }

void DescribeAccess(EXCEPTION_RECORD* record, DWORD code, ULONG_PTR access, ULONG_PTR address) {
    record->ExceptionCode = code;
    record->NumberParameters = 2;
    record->ExceptionInformation[0] = access;
    record->ExceptionInformation[1] = address;
}

ULONG_PTR AccessOf(greg_t error) {
    return (error & kIsFetch) != 0 ? kExecute : (error & kIsWrite) != 0 ? kWrite : kRead;
}

void DescribeSegmentation(EXCEPTION_RECORD* record, const siginfo_t& info, const greg_t* registers) {
    const auto address = reinterpret_cast<ULONG_PTR>(info.si_addr);
    const greg_t trap = registers[REG_TRAPNO], error = registers[REG_ERR];
    if (info.si_code <= 0) {  // somebody sent it
        DescribeAccess(record, EXCEPTION_ACCESS_VIOLATION, kUnknown, 0);
    } else if (trap == kPageFault) {
        // A page that isn't there, next to the stack pointer: the stack could not grow any more.
        const auto stack = static_cast<ULONG_PTR>(registers[REG_RSP]);
        const bool isStack =
            (error & (kIsPresent | kIsFetch)) == 0 && address + 65536 >= stack && address < stack + 4096;
        DescribeAccess(record, isStack ? EXCEPTION_STACK_OVERFLOW : EXCEPTION_ACCESS_VIOLATION, AccessOf(error),
                       address);
    } else if (trap == kGeneralProtection && IsPrivileged(reinterpret_cast<const uint8_t*>(registers[REG_RIP]))) {
        Describe(record, EXCEPTION_PRIV_INSTRUCTION);
    } else {  // an address that no page can have, which the processor doesn't tell
        DescribeAccess(record, EXCEPTION_ACCESS_VIOLATION, kRead, ~ULONG_PTR{0});
    }
}

void DescribeBus(EXCEPTION_RECORD* record, const siginfo_t& info, const greg_t* registers) {
    if (info.si_code == BUS_ADRALN) {
        Describe(record, EXCEPTION_DATATYPE_MISALIGNMENT);
    } else if (info.si_code <= 0 || registers[REG_TRAPNO] == kStackFault) {
        DescribeSegmentation(record, info, registers);
    } else {  // a mapped file has become too short, or its medium has failed
        DescribeAccess(record, EXCEPTION_IN_PAGE_ERROR, AccessOf(registers[REG_ERR]),
                       reinterpret_cast<ULONG_PTR>(info.si_addr));
        record->NumberParameters = 3;
        record->ExceptionInformation[2] = info.si_code == BUS_ADRERR ? kStatusEndOfFile : kStatusDeviceDataError;
    }
}

DWORD ArithmeticCode(int code) {
    switch (code) {
        case FPE_INTDIV: return EXCEPTION_INT_DIVIDE_BY_ZERO;
        case FPE_INTOVF: return EXCEPTION_INT_OVERFLOW;
        case FPE_FLTDIV: return EXCEPTION_FLT_DIVIDE_BY_ZERO;
        case FPE_FLTOVF: return EXCEPTION_FLT_OVERFLOW;
        case FPE_FLTUND: return EXCEPTION_FLT_UNDERFLOW;
        case FPE_FLTRES: return EXCEPTION_FLT_INEXACT_RESULT;
        case FPE_FLTSUB: return EXCEPTION_ARRAY_BOUNDS_EXCEEDED;
        default: return EXCEPTION_FLT_INVALID_OPERATION;
    }
}

void DescribeTrap(EXCEPTION_RECORD* record, int code) {
    if (code == TRAP_TRACE || code == TRAP_HWBKPT) return Describe(record, EXCEPTION_SINGLE_STEP);
    Describe(record, EXCEPTION_BREAKPOINT);
    record->NumberParameters = 1;
    // A breakpoint instruction is one byte, and is behind us already.
    if (code > 0) record->ExceptionAddress = static_cast<uint8_t*>(record->ExceptionAddress) - 1;
}

void OnSignal(int signal, siginfo_t* info, void* context) {
    const greg_t* registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    EXCEPTION_RECORD record = {};
    record.ExceptionAddress = reinterpret_cast<PVOID>(registers[REG_RIP]);
    switch (signal) {
        case SIGSEGV: DescribeSegmentation(&record, *info, registers); break;
        case SIGBUS: DescribeBus(&record, *info, registers); break;
        case SIGFPE: Describe(&record, ArithmeticCode(info->si_code)); break;
        case SIGTRAP: DescribeTrap(&record, info->si_code); break;
        default:
            Describe(&record, info->si_code == ILL_PRVOPC ? EXCEPTION_PRIV_INSTRUCTION : EXCEPTION_ILLEGAL_INSTRUCTION);
    }
    EXCEPTION_POINTERS pointers = {&record, static_cast<struct CONTEXT*>(context)};
    const LPTOP_LEVEL_EXCEPTION_FILTER filter = theFilter;
    if (filter != nullptr && filter(&pointers) == EXCEPTION_CONTINUE_EXECUTION) return;
    // The same signal with the same facts once more, now without a handler. It is blocked until this function returns,
    // so that it strikes where the first one did.
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    sigaction(signal, &byDefault, nullptr);
    if (syscall(SYS_rt_tgsigqueueinfo, getpid(), gettid(), signal, info) != 0) raise(signal);
}

// A stack of the calling thread's own for its signal handlers, since the thread's may be what is exhausted. A stack
// that the thread has already is left to it.
class ClSignalStack {
  public:
    ClSignalStack() {
        stack_t present;
        if (sigaltstack(nullptr, &present) != 0 || (present.ss_flags & SS_DISABLE) == 0) return;
        m_memory = mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
        if (m_memory == MAP_FAILED) return;
        mprotect(m_memory, kGuard, PROT_NONE);
        stack_t own = {};
        own.ss_sp = static_cast<uint8_t*>(m_memory) + kGuard;
        own.ss_size = kSize - kGuard;
        sigaltstack(&own, nullptr);
    }
    ClSignalStack(const ClSignalStack&) = delete;
    ClSignalStack& operator=(const ClSignalStack&) = delete;
    ~ClSignalStack() {
        stack_t present;
        if (m_memory == MAP_FAILED || sigaltstack(nullptr, &present) != 0) return;
        if (present.ss_sp == static_cast<uint8_t*>(m_memory) + kGuard) {
            stack_t none = {};
            none.ss_flags = SS_DISABLE;
            if (sigaltstack(&none, nullptr) != 0) return;
        }
        munmap(m_memory, kSize);
    }

  private:
    static constexpr size_t kGuard = 4096, kSize = kGuard + size_t{128} * 1024;  // room for a formatting filter
    void* m_memory = MAP_FAILED;
};

bool IsOurs(const struct sigaction& action) {
    return (action.sa_flags & SA_SIGINFO) != 0 && action.sa_sigaction == OnSignal;
}

}  // namespace

// A null filter takes ours away. With a filter the calling thread gets a signal stack, others keep what they have.
LPTOP_LEVEL_EXCEPTION_FILTER SetUnhandledExceptionFilter(LPTOP_LEVEL_EXCEPTION_FILTER filter) {
    // Not without a filter, as when this code is unloaded: an object made then would outlive its destructor.
    if (filter != nullptr) static thread_local ClSignalStack stackOfThread;
    const LPTOP_LEVEL_EXCEPTION_FILTER previous = theFilter.exchange(filter);
    for (const int signal : kSignals) {
        struct sigaction present;
        if (sigaction(signal, nullptr, &present) != 0) continue;
        const bool isDefault = (present.sa_flags & SA_SIGINFO) == 0 && present.sa_handler == SIG_DFL;
        struct sigaction wanted = {};
        if (filter != nullptr && isDefault) {
            wanted.sa_sigaction = OnSignal;
            wanted.sa_flags = SA_SIGINFO | SA_ONSTACK;
        } else if (filter == nullptr && IsOurs(present)) {
            wanted.sa_handler = SIG_DFL;
        } else {
            continue;
        }
        sigaction(signal, &wanted, nullptr);
    }
    return previous;
}

// Before this code is unloaded, no signal may lead to it any more.
[[gnu::destructor]] static void Leave() { SetUnhandledExceptionFilter(nullptr); }
