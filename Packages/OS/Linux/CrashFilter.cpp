// Turns signals raised by the processor into faults and calls the filter. The process then dies by the same signal at
// the same place, as it would without a filter.
//
// A signal for which the host has a handler isn't unhandled, so it keeps that handler.
#include "Packages/OS/CrashFilter.h"

#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "Packages/OS/Linux/Trap.h"

namespace {

constexpr int kSignals[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP};

std::atomic<CrashFilter_t> theFilter = nullptr;

// Causes of a page error.
constexpr uint64_t kEndOfFile = 0xC0000011, kDeviceDataError = 0xC000009C;

void DescribeSegmentation(Fault_t* fault, const siginfo_t& info, const Trap_t& trap) {
    const auto address = reinterpret_cast<uint64_t>(info.si_addr);
    fault->Code = kFaultAccessViolation;
    if (info.si_code <= 0) {  // sent by a process
        fault->Information[0] = kUnknownAccess;
    } else if (trap.kind == Trap_t::kPage) {
        // A missing page near the stack pointer means that the stack couldn't grow.
        if (trap.isMissing && trap.access != kExecuteAccess && address + 65536 >= trap.stack &&
            address < trap.stack + 4096)
            fault->Code = kFaultStackOverflow;
        fault->Information[0] = trap.access;
        fault->Information[1] = address;
    } else if (trap.kind == Trap_t::kPrivileged) {
        fault->Code = kFaultPrivilegedInstruction;
    } else {  // an address that the processor doesn't report
        fault->Information[1] = ~uint64_t{0};
    }
}

void DescribeBus(Fault_t* fault, const siginfo_t& info, const Trap_t& trap) {
    if (info.si_code == BUS_ADRALN) {
        fault->Code = kFaultMisalignment;
    } else if (info.si_code <= 0 || trap.kind == Trap_t::kStackSegment) {
        DescribeSegmentation(fault, info, trap);
    } else {  // a mapped file became too short, or its medium failed
        fault->Code = kFaultPageError;
        fault->Information[0] = trap.access;
        fault->Information[1] = reinterpret_cast<uint64_t>(info.si_addr);
        fault->Information[2] = info.si_code == BUS_ADRERR ? kEndOfFile : kDeviceDataError;
    }
}

uint32_t ArithmeticCode(int code) {
    switch (code) {
        case FPE_INTDIV: return kFaultDivision;
        case FPE_INTOVF: return kFaultOverflow;
        case FPE_FLTDIV: return kFaultFloatDivision;
        case FPE_FLTOVF: return kFaultFloatOverflow;
        case FPE_FLTUND: return kFaultFloatUnderflow;
        case FPE_FLTRES: return kFaultFloatInexact;
        case FPE_FLTSUB: return kFaultArrayBounds;
        default: return kFaultFloatInvalid;
    }
}

void DescribeTrap(Fault_t* fault, int code) {
    const bool isStep = code == TRAP_TRACE || code == TRAP_HWBKPT;
    fault->Code = isStep ? kFaultSingleStep : kFaultBreakpoint;
    if (!isStep && code > 0) fault->Address -= kPassedBreakpoint;
}

void OnSignal(int signal, siginfo_t* info, void* context) {
    const Trap_t trap = TrapOf(signal, *static_cast<const ucontext_t*>(context));
    Fault_t fault = {0, trap.place, {}};
    switch (signal) {
        case SIGSEGV: DescribeSegmentation(&fault, *info, trap); break;
        case SIGBUS: DescribeBus(&fault, *info, trap); break;
        case SIGFPE: fault.Code = ArithmeticCode(info->si_code); break;
        case SIGTRAP: DescribeTrap(&fault, info->si_code); break;
        default:
            fault.Code = info->si_code == ILL_PRVOPC || trap.kind == Trap_t::kPrivileged ? kFaultPrivilegedInstruction
                                                                                         : kFaultIllegalInstruction;
    }
    const CrashFilter_t filter = theFilter;
    if (filter != nullptr && filter(fault) != 0) return;
    // Sends the same signal again, now without a handler. It is blocked until this function returns, so that the
    // process dies where the fault happened.
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    sigaction(signal, &byDefault, nullptr);
    if (syscall(SYS_rt_tgsigqueueinfo, getpid(), gettid(), signal, info) != 0) raise(signal);
}

// A stack for the handler, because the thread's own may be exhausted. There is one, for the first thread that sets a
// filter, or for another one after that thread has ended. It is no thread-local object: that would keep the library
// from being unloaded until the thread ends.
constexpr size_t kGuard = 4096, kStackSize = kGuard + size_t{64} * 1024;
void* stackMemory = MAP_FAILED;
pid_t stackOwner = 0;

uint8_t* StackBegin() { return static_cast<uint8_t*>(stackMemory) + kGuard; }
bool OwnerLives() { return stackOwner != 0 && tgkill(getpid(), stackOwner, 0) == 0; }

void GiveSignalStack() {
    stack_t present;
    if (sigaltstack(nullptr, &present) != 0 || (present.ss_flags & SS_DISABLE) == 0) return;
    if (stackMemory == MAP_FAILED) {
        stackMemory = mmap(nullptr, kStackSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
        if (stackMemory == MAP_FAILED) return;
        mprotect(stackMemory, kGuard, PROT_NONE);
    } else if (OwnerLives()) {
        return;
    }
    stack_t own = {};
    own.ss_sp = StackBegin();
    own.ss_size = kStackSize - kGuard;
    if (sigaltstack(&own, nullptr) == 0) stackOwner = gettid();
}

// Leaves the stack to its thread if that is alive and isn't the calling one.
void TakeSignalStackBack() {
    if (stackMemory == MAP_FAILED) return;
    stack_t present, none = {};
    none.ss_flags = SS_DISABLE;
    const bool isOurs = sigaltstack(nullptr, &present) == 0 && present.ss_sp == StackBegin();
    if (isOurs ? sigaltstack(&none, nullptr) != 0 : OwnerLives()) return;
    munmap(stackMemory, kStackSize);
    stackMemory = MAP_FAILED;
    stackOwner = 0;
}

bool IsOurs(const struct sigaction& action) {
    return (action.sa_flags & SA_SIGINFO) != 0 && action.sa_sigaction == OnSignal;
}

}  // namespace

void os_SetCrashFilter(CrashFilter_t filter) {
    if (filter != nullptr) GiveSignalStack();
    theFilter = filter;
    for (const int signal : kSignals) {
        struct sigaction present;
        if (sigaction(signal, nullptr, &present) != 0) continue;
        const bool isDefault = (present.sa_flags & SA_SIGINFO) == 0 && present.sa_handler == SIG_DFL;
        if (filter != nullptr ? !isDefault : !IsOurs(present)) continue;
        struct sigaction wanted = {};
        if (filter != nullptr) {
            wanted.sa_sigaction = OnSignal;
            wanted.sa_flags = SA_SIGINFO | SA_ONSTACK;
        }
        sigaction(signal, &wanted, nullptr);
    }
    if (filter == nullptr) TakeSignalStackBack();
}

// Blocks SIGPIPE meanwhile, so that the process doesn't die by it instead of by the fault's signal.
void os_WriteCrashText(const char* text, size_t size) {
    constexpr int kMoment = 100;  // milliseconds
    sigset_t brokenPipe, pending, before;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    sigpending(&pending);
    pthread_sigmask(SIG_BLOCK, &brokenPipe, &before);
    pollfd output = {STDOUT_FILENO, POLLOUT, 0};
    while (size != 0 && poll(&output, 1, kMoment) == 1 && (output.revents & POLLOUT) != 0) {
        const ssize_t written = write(STDOUT_FILENO, text, size);
        if (written < 0 && errno != EINTR) break;
        text += written < 0 ? 0 : written;
        size -= static_cast<size_t>(written < 0 ? 0 : written);
    }
    const timespec now = {};
    if (sigismember(&pending, SIGPIPE) == 0) sigtimedwait(&brokenPipe, nullptr, &now);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}
