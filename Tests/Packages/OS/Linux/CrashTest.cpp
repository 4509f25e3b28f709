#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <thread>

#include "CInterface/quorlin_c.h"
#include "Packages/CrashReport/CrashReport.h"
#include "Packages/OS/CrashFilter.h"
#include "Tests/Support/Linux/Processes.h"

namespace {

#define BARE __attribute__((noinline, no_sanitize("address", "undefined")))

int32_t Report(const Fault_t& fault) {
    std::fprintf(stderr, "code %08x %llx %llx", fault.Code, static_cast<unsigned long long>(fault.Information[0]),
                 static_cast<unsigned long long>(fault.Information[1]));
    SaveCoverage();
    return 0;
}

// The test library may have installed handlers.
void Install() {
    for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP}) ::signal(signal, SIG_DFL);
    os_SetCrashFilter(Report);
}

// A readable page, followed by a page without access, at the same address in each run.
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
        {"read",                  Read,         SIGSEGV, "code c0000005 0 123457001"       },
        {"write",                 Write,        SIGSEGV, "code c0000005 1 123456002"       },
        {"execute",               Execute,      SIGSEGV, "code c0000005 8 123456010"       },
        {"no possible address",   ReadNowhere,  SIGSEGV, "code c0000005 0 ffffffffffffffff"},
        {"privileged",            Halt,         SIGSEGV, "code c0000096"                   },
        {"privileged, two bytes", ReadMSR,      SIGSEGV, "code c0000096"                   },
        {"privileged, a port",    ReadPort,     SIGSEGV, "code c0000096"                   },
        {"exhausted stack",       Exhaust,      SIGSEGV, "code c00000fd 1"                 },
        {"sent by a process",     Sent,         SIGSEGV, "code c0000005 2 0"               },
        {"file too short",        FileTooShort, SIGBUS,  "code c0000006 0"                 },
        {"undefined instruction", Undefined,    SIGILL,  "code c000001d"                   },
        {"breakpoint",            Break,        SIGTRAP, "code 80000003"                   },
        {"division",              Divide,       SIGFPE,  "code c0000094"                   },
    };
    for (const auto& c : kCases)
        EXPECT_EXIT((Install(), c.fault(), _exit(0)), testing::KilledBySignal(c.signal), c.report) << c.what;
}

TEST(CrashDeathTest, TheHostsOwnHandlersStay) {
    const auto hostHandles = [] {
        signal(SIGSEGV, [](int) { _exit(3); });
        signal(SIGUSR1, [](int) { _exit(4); });
        os_SetCrashFilter(Report);
    };
    EXPECT_EXIT((hostHandles(), Read()), testing::ExitedWithCode(3), "");
    EXPECT_EXIT((hostHandles(), raise(SIGUSR1)), testing::ExitedWithCode(4), "");
    EXPECT_EXIT((Install(), os_SetCrashFilter(nullptr), Read()), testing::KilledBySignal(SIGSEGV), "^$");
}

// The second signal has the facts of the first, and no handler. A tracer sees both.
TEST(Crash, SameSignalIsRaisedAgainAfterTheFilter) {
    const pid_t child = fork();
    if (child == 0) {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        Install();
        os_SetCrashFilter([](const Fault_t&) -> int32_t { return 0; });
        sigqueue(getpid(), SIGFPE, {.sival_int = 41});
        _exit(1);
    }
    int status = 0;
    for (int time = 0; time < 2; ++time) {
        siginfo_t info = {};
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSTOPPED(status) && WSTOPSIG(status) == SIGFPE) << status;
        ptrace(PTRACE_GETSIGINFO, child, nullptr, &info);
        EXPECT_EQ(info.si_code, SI_QUEUE);
        EXPECT_EQ(info.si_value.sival_int, 41);
        ptrace(PTRACE_CONT, child, nullptr, SIGFPE);
    }
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGFPE) << status;
}

// Signals that today's processors don't raise; the process sends them to itself.
TEST(Crash, SignalCodesTellTheException) {
    static uint32_t code;
    Install();
    os_SetCrashFilter([](const Fault_t& fault) -> int32_t {
        code = fault.Code;
        return 1;  // continue
    });
    const struct {
        int signal, code;
        uint32_t exception;
    } kCases[] = {
        {SIGFPE,  FPE_INTOVF,  kFaultOverflow             },
        {SIGFPE,  FPE_FLTDIV,  kFaultFloatDivision        },
        {SIGFPE,  FPE_FLTOVF,  kFaultFloatOverflow        },
        {SIGFPE,  FPE_FLTUND,  kFaultFloatUnderflow       },
        {SIGFPE,  FPE_FLTRES,  kFaultFloatInexact         },
        {SIGFPE,  FPE_FLTINV,  kFaultFloatInvalid         },
        {SIGFPE,  FPE_FLTSUB,  kFaultArrayBounds          },
        {SIGTRAP, TRAP_TRACE,  kFaultSingleStep           },
        {SIGTRAP, TRAP_HWBKPT, kFaultSingleStep           },
        {SIGTRAP, SI_USER,     kFaultBreakpoint           },
        {SIGILL,  ILL_PRVOPC,  kFaultPrivilegedInstruction},
        {SIGBUS,  BUS_ADRALN,  kFaultMisalignment         },
        {SIGBUS,  SI_USER,     kFaultAccessViolation      },
    };
    for (const auto& c : kCases) {
        siginfo_t info = {};
        info.si_signo = c.signal;
        info.si_code = c.code;
        code = 0;
        // A process may send any code to itself.
        EXPECT_EQ(syscall(SYS_rt_tgsigqueueinfo, getpid(), gettid(), c.signal, &info), 0);
        EXPECT_EQ(code, c.exception) << c.signal << " " << c.code;
    }
    os_SetCrashFilter(nullptr);
}

// ---- The report itself

// What a child printed, and the signal that ended it. `fault` runs with the report installed.
struct Death_t {
    int signal;
    std::string printed;
};
Death_t DieInChild(const std::function<void()>& fault, void (*prepare)(), bool hasReader) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    if (!hasReader) close(ends[0]);
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[1]);
        prepare();
        signal(SIGILL, SIG_DFL);
        InstallCrashReport();
        alarm(20);  // a report that hangs dies of another signal
        fault();
        _exit(0);
    }
    close(ends[1]);
    int status = 0;
    waitpid(child, &status, 0);
    Death_t death = {WIFSIGNALED(status) ? WTERMSIG(status) : 0, {}};
    char bytes[65536];
    for (ssize_t got; hasReader && (got = read(ends[0], bytes, sizeof bytes)) > 0;)
        death.printed.append(bytes, static_cast<size_t>(got));
    if (hasReader) close(ends[0]);
    return death;
}

TEST(Report, IsPrintedInAnyStateOfTheProcess) {
    constexpr auto kNothing = [] {};
    const auto textInStdio = [] {
        std::fputs("of the parent's", stdout);
        Undefined();
    };
    const auto lockedStdio = [] {
        std::thread([] { flockfile(stdout); }).join();
        Undefined();
    };
    const auto damagedHeap = [] {
        char* volatile block = static_cast<char*>(std::malloc(24));
        std::memset(block - 16, 0xFF, 56);
        Undefined();
    };
    const auto fullPipe = [] {
        fcntl(STDOUT_FILENO, F_SETFL, O_NONBLOCK);
        while (write(STDOUT_FILENO, "xxxxxxxxxxxxxxxx", 16) > 0) continue;
        fcntl(STDOUT_FILENO, F_SETFL, 0);
    };
    const struct {
        const char* what;
        std::function<void()> fault;
        void (*prepare)();
        bool isWhole, hasReader;
    } kCases[] = {
        {"as usual",                          Undefined,   kNothing,                         true,  true },
        {"text of the host in stdio",         textInStdio, kNothing,                         true,  true },
        {"stdio is locked by another thread", lockedStdio, kNothing,                         true,  true },
        {"a damaged heap",                    damagedHeap, kNothing,                         true,  true },
        {"no reader",                         Undefined,   [] { signal(SIGPIPE, SIG_DFL); }, false, false},
        {"a full pipe",                       Undefined,   fullPipe,                         false, true },
    };
    for (const auto& c : kCases) {
        if (IsSanitized() && c.what == std::string("a damaged heap")) continue;  // the sanitizer has its own heap
        const Death_t death = DieInChild(c.fault, c.prepare, c.hasReader);
        EXPECT_EQ(death.signal, SIGILL) << c.what;
        EXPECT_EQ(death.printed.starts_with("\n***EXCEPTION HANDLING START***\n Exception at address: 0x0000") &&
                      death.printed.ends_with(" Cause: EXCEPTION_ILLEGAL_INSTRUCTION\n***EXCEPTION HANDLING END***\n"),
                  c.isWhole)
            << c.what << ": " << death.printed.substr(0, 500);
        EXPECT_EQ(death.printed.find("parent"), std::string::npos) << c.what;
    }
}
