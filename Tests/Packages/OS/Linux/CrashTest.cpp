#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "Packages/CrashReport/CrashReport.h"
#include "Packages/OS/CrashFilter.h"
#include "Tests/Packages/OS/Linux/Crash.h"
#include "Tests/Support/Linux/Processes.h"

namespace {

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
    const Crash_t kCases[] = {
        {"read",              Read,         SIGSEGV, "code c0000005 0 123457001"},
        {"write",             Write,        SIGSEGV, "code c0000005 1 123456002"},
        {"execute",           Execute,      SIGSEGV, "code c0000005 8 123456010"},
        {"exhausted stack",   Exhaust,      SIGSEGV, "code c00000fd 1"          },
        {"sent by a process", Sent,         SIGSEGV, "code c0000005 2 0"        },
        {"file too short",    FileTooShort, SIGBUS,  "code c0000006 0"          },
    };
    const auto expect = [](const Crash_t& c) {
        EXPECT_EXIT((Install(), c.fault(), _exit(0)), testing::KilledBySignal(c.signal), c.report) << c.what;
    };
    std::ranges::for_each(kCases, expect);
    std::ranges::for_each(CrashesOfArchitecture(), expect);
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

// ---- The report itself

void FillPipe() {
    int ends[2];
    if (pipe(ends) != 0) _exit(1);
    fcntl(ends[1], F_SETFL, O_NONBLOCK);
    while (write(ends[1], "xxxxxxxxxxxxxxxx", 16) > 0) continue;
    fcntl(ends[1], F_SETFL, 0);
    dup2(ends[1], STDOUT_FILENO);
}
void BreakPipe() {
    int ends[2];
    if (pipe(ends) != 0) _exit(1);
    close(ends[0]);
    dup2(ends[1], STDOUT_FILENO);
    signal(SIGPIPE, SIG_DFL);
}
void DamageHeap() {
    char* volatile block = static_cast<char*>(std::malloc(24));
    std::memset(block - 16, 0xFF, 56);
}

TEST(CrashDeathTest, ReportIsPrintedInAnyStateOfTheProcess) {
    constexpr char kWhole[] =
        "^\n\\*{3}EXCEPTION HANDLING START\\*{3}\n Exception at address: 0x0000[0-9A-F]+ "
        "Cause: EXCEPTION_ILLEGAL_INSTRUCTION\n\\*{3}EXCEPTION HANDLING END\\*{3}\n$";
    const struct {
        const char* what;
        void (*prepare)();
        const char* printed;
    } kCases[] = {
        {"as usual",                          [] {},                                                 kWhole},
        {"text of the host in stdio",         [] { std::fputs("of the parent's", stdout); },         kWhole},
        {"stdio is locked by another thread", [] { std::thread([] { flockfile(stdout); }).join(); }, kWhole},
        {"a damaged heap",                    DamageHeap,                                            kWhole},
        {"no reader",                         BreakPipe,                                             "^$"  },
        {"a full pipe",                       FillPipe,                                              "^$"  },
    };
    for (const auto& c : kCases) {
        if (IsSanitized() && c.prepare == DamageHeap) continue;  // the sanitizer has its own heap
        const auto crash = [&] {
            dup2(STDERR_FILENO, STDOUT_FILENO);  // a death test only sees the error stream
            signal(SIGILL, SIG_DFL);
            InstallCrashReport();
            alarm(20);  // a report that hangs dies of another signal
            c.prepare();
            Undefined();
        };
        EXPECT_EXIT(crash(), testing::KilledBySignal(SIGILL), c.printed) << c.what;
    }
}
