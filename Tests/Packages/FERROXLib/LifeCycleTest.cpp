// Life cycle of the driver: every branch of open and close, on a scripted machine.
#include <algorithm>

#include "Tests/Packages/FERROXLib/Library.h"

namespace {

using LifeCycle = ClMachineTest;

bool Traced(const std::string& text) {
    return std::ranges::any_of(Platform().lines, [&](const TraceLine_t& line) { return line.text == text; });
}

size_t Count(const char* function) {
    return static_cast<size_t>(std::ranges::count_if(
        Platform().calls, [&](const std::string& call) { return call.starts_with(std::string(function) + "#"); }));
}

// This process's last use of the driver ends well, and the machine is as it was before the first.
void TerminateAndLeaveNothing(const std::string& what) {
    EXPECT_EQ(FERROXTerminate(), kSuccess) << what;
    EXPECT_FALSE(Platform().service.exists) << what;
    EXPECT_EQ(Platform().SharedCount(), std::nullopt) << what;
    EXPECT_EQ(Platform().Open(), "") << what;
}

}  // namespace

TEST_F(LifeCycle, FirstProcessRegistersStartsOpensAndUndoesItAll) {
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    const auto& service = Platform().service;
    EXPECT_TRUE(service.exists);
    EXPECT_EQ(service.path, kDriverFile);
    EXPECT_EQ(service.startType, DWORD{SERVICE_DEMAND_START});
    EXPECT_EQ(service.state, DWORD{SERVICE_RUNNING});
    EXPECT_EQ(Platform().SharedCount(), 1u);
    EXPECT_NE(Platform().sectionSecurity, nullptr);
    EXPECT_NE(Platform().Open().find("file"), std::string::npos);
    ASSERT_EQ(Platform().requests.size(), 1u);  // the hypervisor test: leaf 1 on processor 0
    EXPECT_EQ(Platform().requests[0].code, 0x80240000u);
    EXPECT_EQ(Platform().requests[0].Number(4, 4), 0u);
    EXPECT_EQ(Platform().requests[0].Number(20, 4), 1u);

    TerminateAndLeaveNothing("the first");
    EXPECT_EQ(Platform().controls, std::vector<DWORD>{SERVICE_CONTROL_STOP});
}

TEST_F(LifeCycle, AutoLoadedServiceIsLeftAlone) {
    const struct {
        const char* what;
        DWORD startType;
        bool left;
    } kCases[] = {
        {"boot",      SERVICE_BOOT_START,   true },
        {"system",    SERVICE_SYSTEM_START, true },
        {"automatic", SERVICE_AUTO_START,   true },
        {"demand",    SERVICE_DEMAND_START, false},
    };
    for (const auto& c : kCases) {
        NewPlatform();
        Platform().service = {.exists = true, .path = kDriverFile, .startType = c.startType, .state = SERVICE_RUNNING};
        ASSERT_EQ(FERROXInitialize(), kSuccess) << c.what;
        EXPECT_EQ(Platform().Traced(2, "The driver is autoloaded"), c.left) << c.what;
        ASSERT_EQ(FERROXTerminate(), kSuccess) << c.what;
        EXPECT_EQ(Platform().service.exists, c.left) << c.what;
        EXPECT_EQ(Platform().Called("CreateServiceA"), !c.left) << c.what;
        EXPECT_EQ(Platform().Called("StartServiceA"), !c.left) << c.what;
        EXPECT_EQ(Platform().Called("ControlService"), !c.left) << c.what;
        EXPECT_EQ(Platform().Open(), "") << c.what;
    }
}

TEST_F(LifeCycle, SecondProcessOnlyOpensAndTheLastOneRemoves) {
    // The other process came first, and ends last.
    Platform().OtherProcess(1);
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    EXPECT_FALSE(Platform().Called("CreateServiceA"));
    EXPECT_FALSE(Platform().Called("StartServiceA"));
    EXPECT_EQ(Platform().SharedCount(), 2u);
    ASSERT_EQ(FERROXTerminate(), kSuccess);
    EXPECT_TRUE(Platform().service.exists);
    EXPECT_EQ(Platform().SharedCount(), 1u);
    EXPECT_EQ(Platform().Open(), "");

    // Once more, and the other process ends first.
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    Platform().OtherProcess(-1);
    TerminateAndLeaveNothing("the last");

    // This process came first, and lets go of the driver's file and the service manager when it ends first.
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    Platform().OtherProcess(1);
    ASSERT_EQ(FERROXTerminate(), kSuccess);
    EXPECT_TRUE(Platform().service.exists);
    EXPECT_EQ(Platform().Open(), "");
}

TEST_F(LifeCycle, ServiceThatAKilledProcessLeftRunningIsTakenOver) {
    for (const DWORD error : {DWORD{ERROR_SERVICE_ALREADY_RUNNING}, DWORD{ERROR_ALREADY_EXISTS}}) {
        NewPlatform();
        Platform().service = {.exists = true, .path = kDriverFile, .state = SERVICE_RUNNING, .startErrors = {error}};
        ASSERT_EQ(FERROXInitialize(), kSuccess) << error;
        EXPECT_TRUE(Platform().Traced(2, "RegisterDriver: Service already registered"));
        EXPECT_TRUE(Platform().Traced(2, "StartDriver: Service already exsits/running.\n"));
        EXPECT_EQ(Platform().Open().find("file"), std::string::npos);  // runs already: no lock on the file
        TerminateAndLeaveNothing(std::to_string(error));
    }
}

TEST_F(LifeCycle, StartOfTheService) {
    const struct {
        const char* what;
        std::deque<DWORD> errors;
        std::set<std::string> failing;
        status_t status;
        size_t created;
        bool removed;  // the service, once the failed open is undone
    } kCases[] = {
        {"path not found",     {3},    {},                         1, 2, false},
        {"file not found",     {2},    {},                         1, 2, false},
        {"access denied",      {5},    {},                         5, 1, true },
        {"second start fails", {2, 2}, {},                         5, 2, true },
        {"second open fails",  {2},    {"OpenServiceA#5"},         5, 2, true },
        {"file lock fails",    {},     {"CreateFileA#1"},          5, 1, true },
        {"lock after repair",  {3},    {"CreateFileA#1"},          5, 2, true },
        {"repair can't stop",  {2},    {"QueryServiceStatusEx#1"}, 1, 2, false},
    };
    for (const auto& c : kCases) {
        NewPlatform();
        Platform().service.startErrors = c.errors;
        Platform().failCalls = c.failing;
        EXPECT_EQ(FERROXInitialize(), c.status) << c.what;
        EXPECT_EQ(Count("CreateServiceA"), c.created) << c.what;
        if (c.status != kSuccess) {
            EXPECT_EQ(Platform().service.exists, !c.removed) << c.what;
            EXPECT_EQ(Platform().Open(), "") << c.what;
            EXPECT_TRUE(Platform().Traced(16, "OSFERROXInitialize: StartDriver failed")) << c.what;
            Platform().failCalls.clear();
            EXPECT_EQ(FERROXInitialize(), kSuccess) << c.what;
        }
        TerminateAndLeaveNothing(c.what);
    }
}

TEST_F(LifeCycle, StaleServiceIsRepairedOnce) {
    Platform().service = {.exists = true, .path = "C:\\Gone\\Ravelink.sys"};
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    EXPECT_EQ(Platform().service.path, kDriverFile);
    EXPECT_TRUE(Platform().Traced(8, "StartDriver: StartService failed  trying stop + remove + register2\n"));
    EXPECT_TRUE(Platform().Traced(2, "StopDriver: Service is already stopped.\n"));
    EXPECT_EQ(Platform().controls.size(), 0u);
    EXPECT_EQ(Count("DeleteService"), 1u);
}

TEST_F(LifeCycle, ForeignServiceSurvivesAFailedOpen) {
    Platform().service = {.exists = true, .path = kDriverFile};
    Platform().failCalls = {"CreateFileA#2"};  // the device; the driver's file is the first
    EXPECT_EQ(FERROXInitialize(), kFailure);
    EXPECT_TRUE(Platform().Traced(16, "OSFERROXInitialize: Error opening FERROX"));
    EXPECT_TRUE(Platform().service.exists);
    EXPECT_EQ(Platform().service.state, DWORD{SERVICE_STOPPED});  // this process had started it
    EXPECT_EQ(Platform().SharedCount(), std::nullopt);
}

TEST_F(LifeCycle, StopWaitsATenthOfTheHintAndAFailedOneLeavesSectionAndView) {
    constexpr DWORD kPending = SERVICE_STOP_PENDING, kRunning = SERVICE_RUNNING, kStopped = SERVICE_STOPPED;
    const struct {
        const char *line, *failing;
        DWORD hint;
        std::deque<DWORD> states;
        std::vector<DWORD> sleeps;
        size_t controls;
        status_t status;
    } kCases[] = {
        {"StopDriver: Service is already stopped.\n",                  "",                       0,      {kStopped},           {},                       0, 1},
        {"StopDriver: Service stopped.\n",                             "",                       0,      {kPending, kStopped}, {1000},                   0, 1},
        {"StopDriver: Service stopped.\n",                             "",                       200,    {kPending, kStopped}, {1000},                   0, 1},
        {"StopDriver: Service stopped.\n",                             "",                       25000,  {kPending, kStopped}, {2500},                   0, 1},
        {"StopDriver: Service stopped.\n",                             "",                       200000, {kPending, kStopped}, {10000},                  0, 1},
        {"StopDriver: Service stop pending...\n",                      "",                       0,      {kPending, kRunning}, {1000},                   1, 1},
        {"OSFERROXTerminate: StopDriver failed",                       "",                       90000,  {kPending},           {9000, 9000, 9000, 9000}, 0, 5},
        {"StopDriver: Service has not stopped \n",                     "",                       0,      {kRunning, kRunning}, {},                       1, 5},
        {"OSFERROXTerminate: StopDriver failed",                       "OpenSCManagerA#3",       0,      {},                   {},                       0, 5},
        {"OSFERROXTerminate: StopDriver failed",                       "OpenServiceA#3",         0,      {},                   {},                       0, 5},
        {"OSFERROXTerminate: StopDriver failed",                       "QueryServiceStatusEx#1", 0,      {},                   {},                       0, 5},
        {"StopDriver: ControlService SERVICE_CONTROL_STOP failed 5\n", "ControlService#1",       0,      {},                   {},                       0, 5},
        {"OSFERROXTerminate: StopDriver failed",                       "QueryServiceStatusEx#2", 0,      {},                   {},                       1, 5},
        {"StopDriver: Could not unlock file : Ravelink.sys \n",        "CloseHandle file#1",     0,      {},                   {},                       1, 5},
        {"OSFERROXTerminate: RemoveDriver failed",                     "OpenServiceA#4",         0,      {},                   {},                       1, 5},
        {"OSFERROXTerminate: RemoveDriver failed",                     "DeleteService#1",        0,      {},                   {},                       1, 5},
    };
    for (const auto& c : kCases) {
        const std::string at = std::string(c.line) + " " + c.failing + " " + std::to_string(c.hint);
        NewPlatform();
        ASSERT_EQ(FERROXInitialize(), kSuccess) << at;
        Platform().service.waitHint = c.hint;
        Platform().service.nextStates = c.states;
        Platform().failCalls = {c.failing};
        EXPECT_EQ(FERROXTerminate(), c.status) << at;
        EXPECT_EQ(Platform().sleeps, c.sleeps) << at;
        EXPECT_EQ(Platform().controls.size(), c.controls) << at;
        EXPECT_TRUE(Traced(c.line)) << at;
        if (c.status != kSuccess) {
            EXPECT_TRUE(Platform().service.exists) << at;
            EXPECT_EQ(Platform().Open(), "section view ") << at;
            EXPECT_EQ(Platform().SharedCount(), 0u) << at;
            EXPECT_EQ(FERROXTerminate(), kFailure) << at;  // closed, whatever became of the service
            // A later try, once a stop that lasted has come to its end, takes all over.
            Platform().failCalls.clear();
            if (Platform().service.state == kPending) Platform().service.state = kStopped;
            ASSERT_EQ(FERROXInitialize(), kSuccess) << at;
            EXPECT_EQ(FERROXTerminate(), kSuccess) << at;
        }
        EXPECT_FALSE(Platform().service.exists) << at;
        EXPECT_EQ(Platform().Open(), "") << at;
    }
}

TEST_F(LifeCycle, HypervisorTest) {
    for (const uint32_t ecx : {0x80000000u, 0x7FFFFFFFu}) {
        Platform().hypervisorECX = ecx;
        ASSERT_EQ(FERROXInitialize(), kSuccess);
        EXPECT_EQ(HyperVEnabled, ecx >> 31);
        ASSERT_EQ(FERROXTerminate(), kSuccess);
    }
}

TEST_F(LifeCycle, FailedHypervisorTestLeavesDeviceAndCount) {
    Platform().failCalls = {"DeviceIoControl#1"};
    EXPECT_EQ(FERROXInitialize(), 0u);
    EXPECT_TRUE(Platform().Traced(16, "\n read CPUID failed "));
    EXPECT_NE(Platform().Open().find("device"), std::string::npos);
    EXPECT_EQ(Platform().SharedCount(), 1u);
    EXPECT_EQ(FERROXTerminate(), kFailure);  // not initialised
    // The next try takes the device over and counts once more, so that this process ends with the count at 1.
    EXPECT_EQ(FERROXInitialize(), kSuccess);
    EXPECT_EQ(Platform().SharedCount(), 2u);
    EXPECT_EQ(FERROXTerminate(), kSuccess);
    EXPECT_TRUE(Platform().service.exists);
}

TEST_F(LifeCycle, CountNeverFallsBelowZero) {
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    Platform().section = 0;  // as a process of another session might leave it
    TerminateAndLeaveNothing("at 0");
}

TEST_F(LifeCycle, InstallPath) {
    const std::string longest(255, 'p'), noNUL(256, 'p'), tooLong(257, 'p');
    const struct {
        const char* what;
        std::optional<std::string> value;
        status_t status;
    } kCases[] = {
        {"none",                 std::nullopt, 5},
        {"longest with its NUL", longest,      1},
        {"256 without NUL",      noNUL,        1},
        {"too long",             tooLong,      5},
    };
    for (const auto& c : kCases) {
        Platform().registryPath = c.value;
        Platform().lines.clear();
        char path[kDriverPathSize];
        ASSERT_EQ(getFERROXinstallPath(path), c.status) << c.what;
        if (c.status == kSuccess) {
            EXPECT_EQ(path, c.value->substr(0, 255)) << c.what;
        }
        EXPECT_EQ(Platform().Open(), "") << c.what;
    }
}

// Whichever call of an open fails on a machine whose driver another process has running.
TEST_F(LifeCycle, AnyFailingCallOfASecondProcessLeavesTheFirstAlone) {
    for (size_t number = 1;; ++number) {
        NewPlatform();
        Platform().OtherProcess(1);
        Platform().failCall = number;
        const status_t status = FERROXInitialize();
        Platform().failCall = 0;
        if (Platform().calls.size() < number) break;
        const std::string failed = Platform().calls[number - 1];
        if (status != kSuccess && Platform().Open().find("device") == std::string::npos) {
            EXPECT_EQ(Platform().Open(), "") << failed;
            EXPECT_EQ(Platform().SharedCount(), 1u) << failed;
            EXPECT_EQ(FERROXInitialize(), kSuccess) << failed;
        } else if (status != kSuccess) {
            EXPECT_EQ(FERROXInitialize(), kSuccess) << failed;
            --Platform().section;
        }
        EXPECT_EQ(FERROXTerminate(), kSuccess) << failed;
        EXPECT_EQ(Platform().SharedCount(), 1u) << failed;
        EXPECT_TRUE(Platform().service.exists) << failed;
        EXPECT_EQ(Platform().service.state, DWORD{SERVICE_RUNNING}) << failed;
    }
}

TEST_F(LifeCycle, NoMemoryForTheServiceConfigurationCountsAsNotAutoLoaded) {
    Platform().service = {.exists = true, .path = kDriverFile, .startType = SERVICE_AUTO_START};
    ClScriptedPlatform::failAllocationOf = sizeof(QUERY_SERVICE_CONFIGA) + 120;
    EXPECT_EQ(checkDriverAutoLoaded(), 0u);
    ClScriptedPlatform::failAllocationOf = 0;
    EXPECT_EQ(checkDriverAutoLoaded(), 1u);
    EXPECT_EQ(Platform().Open(), "");
}
