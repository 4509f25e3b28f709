// Life cycle of the driver: every branch of open and close, on a scripted machine.
#include <algorithm>

#include "Tests/Packages/FERROXLib/Library.h"

namespace {

using LifeCycle = ClMachineTest;

bool Traced(const std::string& text) {
    return std::ranges::any_of(Machine().lines, [&](const TraceLine_t& line) { return line.text == text; });
}

// The last close of the machine succeeds and leaves it as it was before the first open.
void TerminateAndLeaveNothing(const std::string& what) {
    EXPECT_EQ(FERROXTerminate(), kSuccess) << what;
    EXPECT_EQ(Machine().State(), "no service") << what;
}

}  // namespace

TEST_F(LifeCycle, FirstProcessRegistersStartsOpensAndUndoesItAll) {
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    EXPECT_EQ(Machine().State(), "running, count 1, mutex section view manager file device ");
    EXPECT_EQ(Machine().service.path, kDriverFile);
    EXPECT_EQ(Machine().service.startType, DWORD{SERVICE_DEMAND_START});
    EXPECT_NE(Machine().sectionSecurity, nullptr);
    ASSERT_EQ(Machine().requests.size(), 1u);  // the hypervisor test: leaf 1 on processor 0
    EXPECT_EQ(Machine().requests[0].code, 0x80240000u);
    EXPECT_EQ(Machine().requests[0].Number(4, 4), 0u);
    EXPECT_EQ(Machine().requests[0].Number(20, 4), 1u);
    TerminateAndLeaveNothing("the first");
    EXPECT_EQ(Machine().controls, std::vector<DWORD>{SERVICE_CONTROL_STOP});
}

TEST_F(LifeCycle, ServiceThatRunsAlreadyIsKeptIfItLoadsAutomaticallyAndTakenOverIfNot) {
    const struct {
        DWORD startType, error;  // that StartServiceA reports
        bool isKept;
    } kCases[] = {
        {SERVICE_BOOT_START,   0,                             true },
        {SERVICE_AUTO_START,   0,                             true },
        {SERVICE_DEMAND_START, ERROR_SERVICE_ALREADY_RUNNING, false}, // a killed process left it
        {SERVICE_DEMAND_START, ERROR_ALREADY_EXISTS,          false},
    };
    for (const auto& c : kCases) {
        NewMachine();
        Machine().service = {.exists = true, .path = kDriverFile, .startType = c.startType, .state = SERVICE_RUNNING};
        if (!c.isKept) Machine().service.startErrors = {c.error};
        ASSERT_EQ(FERROXInitialize(), kSuccess);
        EXPECT_EQ(Machine().State(), c.isKept ? "running, count 1, mutex section view device "
                                              : "running, count 1, mutex section view manager device ");
        EXPECT_EQ(Machine().Traced(2, "The driver is autoloaded"), c.isKept) << c.startType;
        EXPECT_EQ(Machine().Traced(2, "RegisterDriver: Service already registered"), !c.isKept) << c.startType;
        EXPECT_EQ(Machine().Traced(2, "StartDriver: Service already exsits/running.\n"), !c.isKept) << c.startType;
        ASSERT_EQ(FERROXTerminate(), kSuccess);
        EXPECT_EQ(Machine().State(), c.isKept ? "running" : "no service") << c.startType;
    }
}

TEST_F(LifeCycle, SecondProcessOnlyOpensAndTheLastOneRemoves) {
    // The other process comes first and ends first.
    Machine().OtherProcess(1);
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    EXPECT_EQ(Machine().State(), "running, count 2, mutex section view device ");
    Machine().OtherProcess(-1);
    TerminateAndLeaveNothing("the last");

    // This process comes first and ends first. The driver's file stays locked for the other process, until this
    // process stops the driver.
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    Machine().OtherProcess(1);
    ASSERT_EQ(FERROXTerminate(), kSuccess);
    EXPECT_EQ(Machine().State(), "running, count 1, file ");
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    Machine().OtherProcess(-1);
    TerminateAndLeaveNothing("the last once more");
}

TEST_F(LifeCycle, StartOfTheService) {
    const struct {
        const char* what;
        std::deque<DWORD> errors;
        std::set<std::string> failing;
        status_t status;  // a failed open removes the service
        bool isRepaired;  // registered a second time
    } kCases[] = {
        {"path not found",     {3},    {},                         1, true },
        {"file not found",     {},     {},                         1, true },
        {"access denied",      {5},    {},                         5, false},
        {"second start fails", {2, 2}, {},                         5, true },
        {"second open fails",  {2},    {"OpenServiceA#5"},         5, true },
        {"file lock fails",    {},     {"CreateFileA#1"},          5, false},
        {"lock after repair",  {3},    {"CreateFileA#1"},          5, true },
        {"repair can't stop",  {2},    {"QueryServiceStatusEx#1"}, 1, true },
    };
    for (const auto& c : kCases) {
        NewMachine();
        // A service that is registered again is left over from another installation.
        if (c.isRepaired) Machine().service = {.exists = true, .path = "C:\\Gone\\Ravelink.sys"};
        Machine().service.startErrors = c.errors;
        Machine().failCalls = c.failing;
        EXPECT_EQ(FERROXInitialize(), c.status) << c.what;
        EXPECT_TRUE(c.status != kSuccess || Machine().service.path == kDriverFile) << c.what;
        EXPECT_EQ(Machine().Called("CreateServiceA#2"), c.isRepaired) << c.what;
        if (c.status != kSuccess) {
            EXPECT_EQ(Machine().State(), "no service") << c.what;
            EXPECT_TRUE(Machine().Traced(16, "OSFERROXInitialize: StartDriver failed")) << c.what;
            Machine().failCalls.clear();
            EXPECT_EQ(FERROXInitialize(), kSuccess) << c.what;
        }
        TerminateAndLeaveNothing(c.what);
    }
}

TEST_F(LifeCycle, FailedOpenKeepsAServiceOfOthersAndStopsWhatItStarted) {
    for (const bool canStop : {true, false}) {
        NewMachine().service = {.exists = true, .path = kDriverFile};
        Machine().failCalls = {"CreateFileA#2"};  // the device; the driver's file is the first
        if (!canStop) Machine().failCalls.insert("QueryServiceStatusEx#1");
        EXPECT_EQ(FERROXInitialize(), kFailure);
        EXPECT_TRUE(Machine().Traced(16, "OSFERROXInitialize: Error opening FERROX"));
        EXPECT_EQ(Machine().State(), canStop ? "stopped" : "running");
    }
}

TEST_F(LifeCycle, StopWaitsATenthOfTheHintAndAFailedOneLeavesSectionAndView) {
    constexpr DWORD kPending = SERVICE_STOP_PENDING, kRunning = SERVICE_RUNNING, kStopped = SERVICE_STOPPED;
    constexpr const char *kStopFailed = "OSFERROXTerminate: StopDriver failed",
                         *kRemoveFailed = "OSFERROXTerminate: RemoveDriver failed",
                         *kWasStopped = "StopDriver: Service is already stopped.\n",
                         *kIsPending = "StopDriver: Service stop pending...\n",
                         *kWaited = "StopDriver: Service stopped.\n",
                         *kRunsOn = "StopDriver: Service has not stopped \n",
                         *kRefused = "StopDriver: ControlService SERVICE_CONTROL_STOP failed 5\n",
                         *kLocked = "StopDriver: Could not unlock file : Ravelink.sys \n";
    const struct {
        const char *line, *failing;
        DWORD hint;
        std::deque<DWORD> states;
        std::vector<DWORD> sleeps;
        size_t controls;
        status_t status;
    } kCases[] = {
        {kWasStopped,   "",                       0,      {kStopped},           {},                       0, 1},
        {kWaited,       "",                       0,      {kPending, kStopped}, {1000},                   0, 1},
        {kWaited,       "",                       25000,  {kPending, kStopped}, {2500},                   0, 1},
        {kWaited,       "",                       200000, {kPending, kStopped}, {10000},                  0, 1},
        {kIsPending,    "",                       0,      {kPending, kRunning}, {1000},                   1, 1},
        {kStopFailed,   "",                       90000,  {kPending},           {9000, 9000, 9000, 9000}, 0, 5},
        {kRunsOn,       "",                       0,      {kRunning, kRunning}, {},                       1, 5},
        {kStopFailed,   "OpenSCManagerA#3",       0,      {},                   {},                       0, 5},
        {kStopFailed,   "OpenServiceA#3",         0,      {},                   {},                       0, 5},
        {kStopFailed,   "QueryServiceStatusEx#1", 0,      {},                   {},                       0, 5},
        {kRefused,      "ControlService#1",       0,      {},                   {},                       0, 5},
        {kStopFailed,   "QueryServiceStatusEx#2", 0,      {},                   {},                       1, 5},
        {kLocked,       "CloseHandle file#1",     0,      {},                   {},                       1, 5},
        {kRemoveFailed, "OpenServiceA#4",         0,      {},                   {},                       1, 5},
        {kRemoveFailed, "DeleteService#1",        0,      {},                   {},                       1, 5},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.line) + " " + c.failing + " " + std::to_string(c.hint));
        NewMachine();
        ASSERT_EQ(FERROXInitialize(), kSuccess);
        Machine().service.waitHint = c.hint;
        Machine().service.nextStates = c.states;
        Machine().failCalls = {c.failing};
        EXPECT_EQ(FERROXTerminate(), c.status);
        EXPECT_EQ(Machine().sleeps, c.sleeps);
        EXPECT_EQ(Machine().controls.size(), c.controls);
        EXPECT_TRUE(Traced(c.line));
        if (c.status != kSuccess) {
            EXPECT_TRUE(Machine().service.exists);
            // The driver's file is unlocked once the driver has stopped.
            const bool isStopped = Traced(kRemoveFailed);
            EXPECT_EQ(Machine().Open(), isStopped ? "section view " : "section view file ");
            EXPECT_EQ(Machine().SharedCount(), 0u);
            EXPECT_EQ(FERROXTerminate(), kFailure) << "the library is closed nevertheless";
            // A later use, after a slow stop has ended, takes it all over.
            Machine().failCalls.clear();
            if (Machine().service.state == kPending) Machine().service.state = kStopped;
            ASSERT_EQ(FERROXInitialize(), kSuccess);
            EXPECT_EQ(FERROXTerminate(), kSuccess);
        }
        EXPECT_EQ(Machine().State(), "no service");
    }
}

TEST_F(LifeCycle, FailedHypervisorTestLeavesDeviceAndCountUntilEnded) {
    Machine().OtherProcess(1);
    Machine().failCalls = {"DeviceIoControl#1", "DeviceIoControl#2"};
    EXPECT_EQ(FERROXInitialize(), 0u);
    EXPECT_TRUE(Machine().Traced(16, "\n read CPUID failed "));
    EXPECT_EQ(Machine().State(), "running, count 2, section view device ");
    EXPECT_EQ(FERROXTerminate(), kFailure) << "not initialised";
    EndFailedStart();
    EndFailedStart();  // finds nothing more to end
    EXPECT_EQ(Machine().State(), "running, count 1");
    // Without EndFailedStart the next try takes the device over and counts once more.
    EXPECT_EQ(FERROXInitialize(), 0u);
    EXPECT_EQ(FERROXInitialize(), kSuccess);
    EXPECT_EQ(Machine().SharedCount(), 3u);
    EndFailedStart();
    EXPECT_EQ(Machine().SharedCount(), 3u) << "an open library stays open";
    EXPECT_EQ(FERROXTerminate(), kSuccess);
    EXPECT_EQ(Machine().State(), "running, count 2");
}

// Each cause has another remedy.
TEST_F(LifeCycle, FailedStartTellsWhetherRightsOrTheDriverAreMissing) {
    const struct {
        const char* what;
        std::set<std::string> failing;  // with the error of a user without rights
        std::deque<DWORD> startErrors;
        Refusal_t refusal;
    } kCases[] = {
        {"no rights for the section", {"CreateFileMappingA#1"},                 {},   Refusal_t::kRights  },
        {"no rights for services",    {"OpenSCManagerA#1", "OpenSCManagerA#2"}, {},   Refusal_t::kRights  },
        {"no rights for the device",  {"CreateFileA#2"},                        {},   Refusal_t::kRights  },
        {"no driver",                 {"RegOpenKeyExA#1", "RegOpenKeyExA#2"},   {},   Refusal_t::kNoDriver},
        {"neither",                   {"OpenSCManagerA#2", "RegOpenKeyExA#1"},  {},   Refusal_t::kNoDriver},
        {"a driver that fails",       {},                                       {31}, Refusal_t::kOther   },
        {"no lock",                   {"CreateMutexA FERROXLIB#1"},             {},   Refusal_t::kOther   },
        {"CPUID that fails",          {"DeviceIoControl#1"},                    {},   Refusal_t::kOther   },
    };
    for (const auto& c : kCases) {
        NewMachine();
        Machine().failCalls = c.failing;
        Machine().service.startErrors = c.startErrors;
        NoteRefusal(Refusal_t::kRights);  // of an earlier operation
        EXPECT_NE(FERROXInitialize(), kSuccess) << c.what;
        EXPECT_EQ(LastRefusal(), c.refusal) << c.what;
        EndFailedStart();
        EXPECT_EQ(Machine().Open(), "") << c.what;
    }
}

TEST_F(LifeCycle, CountNeverFallsBelowZero) {
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    Machine().section = 0;  // as a process of another session might leave it
    TerminateAndLeaveNothing("at 0");
}

TEST_F(LifeCycle, InstallPath) {
    for (const size_t length : {255u, 256u, 257u}) {  // with its NUL, without it, too long
        const std::string value(length, 'p');
        Machine().registryPath = value;
        char path[kDriverPathSize];
        ASSERT_EQ(getFERROXinstallPath(path), length <= 256 ? kSuccess : kFailure) << length;
        EXPECT_TRUE(length > 256 || path == value.substr(0, 255)) << length;
        EXPECT_EQ(Machine().Open(), "") << length;
    }
}
