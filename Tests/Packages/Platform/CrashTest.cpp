#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <cstdio>

#include "Packages/Platform/Platform.h"
#include "Tests/Support/Linux/Processes.h"

namespace {

#define BARE __attribute__((noinline, no_sanitize("address", "undefined")))

LONG Report(EXCEPTION_POINTERS* pointers) {
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    std::fprintf(stderr, "code %08x words %u %llx %llx", record.ExceptionCode, record.NumberParameters,
                 static_cast<unsigned long long>(record.ExceptionInformation[0]),
                 static_cast<unsigned long long>(record.ExceptionInformation[1]));
    SaveCoverage();
    return EXCEPTION_CONTINUE_SEARCH;
}

// A test library may have handlers of its own; a program has none.
void Install() {
    for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP}) ::signal(signal, SIG_DFL);
    SetUnhandledExceptionFilter(Report);
}

// At the same address in each run: a page that may be read, behind it one that may not be touched.
constexpr uintptr_t kPage = 0x123456000;
uint8_t* Page() {
    mmap(reinterpret_cast<void*>(kPage), 8192, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
    mprotect(reinterpret_cast<void*>(kPage), 4096, PROT_READ);
    return reinterpret_cast<uint8_t*>(kPage);
}

BARE void Read() { static_cast<void>(*reinterpret_cast<volatile uint8_t*>(Page() + 4097)); }
BARE void Write() { *reinterpret_cast<volatile uint8_t*>(Page() + 2) = 1; }
BARE void Execute() { reinterpret_cast<void (*)()>(Page() + 16)(); }
BARE void ReadNowhere() { static_cast<void>(*reinterpret_cast<volatile uint8_t*>(0xF000'0000'0000'0000)); }
BARE void Halt() { __asm__ volatile("hlt"); }
BARE void ReadMSR() { __asm__ volatile("rdmsr" ::: "eax", "edx"); }
BARE void ReadPort() { __asm__ volatile("inw $0x80, %%ax" ::: "eax"); }
BARE void Undefined() { __asm__ volatile("ud2"); }
BARE void Break() { __asm__ volatile("int3"); }
BARE void Divide() { __asm__ volatile("xorl %%ecx, %%ecx; movl $1, %%eax; cltd; idivl %%ecx" ::: "eax", "ecx", "edx"); }
BARE void FileTooShort() {
    char name[] = "/tmp/quorlin-crash-XXXXXX";
    const int file = mkstemp(name);
    unlink(name);
    static_cast<void>(*static_cast<volatile uint8_t*>(mmap(nullptr, 4096, PROT_READ, MAP_SHARED, file, 0)));
}
BARE int Deepen(volatile int* depth) {
    volatile int here[256];
    here[0] = *depth + 1;
    return here[0] == 0 ? 0 : Deepen(here) + here[0];  // the stack ends long before
}
BARE void Exhaust() {
    volatile int depth = 0;
    Deepen(&depth);
}
void Sent() { kill(getpid(), SIGSEGV); }

}  // namespace

TEST(CrashDeathTest, EachSignalIsReportedAndThenEndsTheProcess) {
    const struct {
        const char* what;
        void (*fault)();
        int signal;
        const char* report;
    } kCases[] = {
        {"read",                  Read,         SIGSEGV, "code c0000005 words 2 0 123457001"       },
        {"write",                 Write,        SIGSEGV, "code c0000005 words 2 1 123456002"       },
        {"execute",               Execute,      SIGSEGV, "code c0000005 words 2 8 123456010"       },
        {"no possible address",   ReadNowhere,  SIGSEGV, "code c0000005 words 2 0 ffffffffffffffff"},
        {"privileged",            Halt,         SIGSEGV, "code c0000096 words 0"                   },
        {"privileged, two bytes", ReadMSR,      SIGSEGV, "code c0000096 words 0"                   },
        {"privileged, a port",    ReadPort,     SIGSEGV, "code c0000096 words 0"                   },
        {"exhausted stack",       Exhaust,      SIGSEGV, "code c00000fd words 2 1"                 },
        {"sent by somebody",      Sent,         SIGSEGV, "code c0000005 words 2 2 0"               },
        {"file too short",        FileTooShort, SIGBUS,  "code c0000006 words 3 0"                 },
        {"undefined instruction", Undefined,    SIGILL,  "code c000001d words 0"                   },
        {"breakpoint",            Break,        SIGTRAP, "code 80000003 words 1"                   },
        {"division",              Divide,       SIGFPE,  "code c0000094 words 0"                   },
    };
    for (const auto& c : kCases)
        EXPECT_EXIT((Install(), c.fault(), _exit(0)), testing::KilledBySignal(c.signal), c.report) << c.what;
}

TEST(CrashDeathTest, TheHostsOwnHandlersStay) {
    const auto hostHandles = [] {
        signal(SIGSEGV, [](int) { _exit(3); });
        signal(SIGUSR1, [](int) { _exit(4); });
        SetUnhandledExceptionFilter(Report);
    };
    EXPECT_EXIT((hostHandles(), Read()), testing::ExitedWithCode(3), "");
    EXPECT_EXIT((hostHandles(), raise(SIGUSR1)), testing::ExitedWithCode(4), "");
    EXPECT_EXIT((Install(), SetUnhandledExceptionFilter(nullptr), Read()), testing::KilledBySignal(SIGSEGV), "^$");
}

// What strikes after the filter is the first signal with its facts, now without a handler. Here it is kept from
// striking.
TEST(Crash, TheSameSignalStrikesAfterTheFilter) {
    const int result = InChild([] {
        Install();
        SetUnhandledExceptionFilter([](EXCEPTION_POINTERS* pointers) -> LONG {
            sigaddset(&reinterpret_cast<ucontext_t*>(pointers->ContextRecord)->uc_sigmask, SIGFPE);
            return EXCEPTION_CONTINUE_SEARCH;
        });
        sigset_t wanted;
        siginfo_t info = {};
        struct sigaction action;
        sigemptyset(&wanted);
        sigaddset(&wanted, SIGFPE);
        sigqueue(getpid(), SIGFPE, {.sival_int = 41});
        EXPECT_EQ(sigwaitinfo(&wanted, &info), SIGFPE);
        EXPECT_EQ(info.si_code, SI_QUEUE);
        EXPECT_EQ(info.si_value.sival_int, 41);
        EXPECT_EQ(sigaction(SIGFPE, nullptr, &action), 0);
        EXPECT_EQ(action.sa_handler, SIG_DFL);
        return HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(result, 0);
}

// Signals that a processor of today doesn't raise by itself, told by their codes.
TEST(Crash, ArithmeticAndTrapsAreToldByTheirCodes) {
    static DWORD code;
    Install();
    SetUnhandledExceptionFilter([](EXCEPTION_POINTERS* pointers) -> LONG {
        code = pointers->ExceptionRecord->ExceptionCode;
        return EXCEPTION_CONTINUE_EXECUTION;
    });
    const struct {
        int signal, code;
        DWORD exception;
    } kCases[] = {
        {SIGFPE,  FPE_INTOVF,  EXCEPTION_INT_OVERFLOW         },
        {SIGFPE,  FPE_FLTDIV,  EXCEPTION_FLT_DIVIDE_BY_ZERO   },
        {SIGFPE,  FPE_FLTOVF,  EXCEPTION_FLT_OVERFLOW         },
        {SIGFPE,  FPE_FLTUND,  EXCEPTION_FLT_UNDERFLOW        },
        {SIGFPE,  FPE_FLTRES,  EXCEPTION_FLT_INEXACT_RESULT   },
        {SIGFPE,  FPE_FLTINV,  EXCEPTION_FLT_INVALID_OPERATION},
        {SIGFPE,  FPE_FLTSUB,  EXCEPTION_ARRAY_BOUNDS_EXCEEDED},
        {SIGTRAP, TRAP_TRACE,  EXCEPTION_SINGLE_STEP          },
        {SIGTRAP, TRAP_HWBKPT, EXCEPTION_SINGLE_STEP          },
        {SIGTRAP, SI_USER,     EXCEPTION_BREAKPOINT           },
        {SIGILL,  ILL_PRVOPC,  EXCEPTION_PRIV_INSTRUCTION     },
        {SIGBUS,  BUS_ADRALN,  EXCEPTION_DATATYPE_MISALIGNMENT},
        {SIGBUS,  SI_USER,     EXCEPTION_ACCESS_VIOLATION     },
    };
    for (const auto& c : kCases) {
        siginfo_t info = {};
        info.si_signo = c.signal;
        info.si_code = c.code;
        code = 0;
        // To itself a process may send any code.
        EXPECT_EQ(syscall(SYS_rt_tgsigqueueinfo, getpid(), gettid(), c.signal, &info), 0);
        EXPECT_EQ(code, c.exception) << c.signal << " " << c.code;
    }
    SetUnhandledExceptionFilter(nullptr);
}

TEST(Crash, TheFormerFilterIsGivenBack) {
    SetUnhandledExceptionFilter(nullptr);
    EXPECT_EQ(SetUnhandledExceptionFilter(Report), nullptr);
    EXPECT_EQ(SetUnhandledExceptionFilter(nullptr), Report);
}
