// What is found of the driver, and trials that leave its service as it was, on a scripted machine.
#include "Packages/FERROXExternal/FERROXLib/Obstacles.h"

#include "Tests/Packages/FERROXLib/Library.h"

namespace {

using Obstacles = ClMachineTest;

constexpr Obstacle_t kWorks = Obstacle_t::kNone;

ScriptedService_t Service(DWORD state, DWORD startType = SERVICE_DEMAND_START) {
    return {.exists = true, .path = kDriverFile, .startType = startType, .state = state};
}

Obstacle_t Find(Way_t way) { return FindObstacle(way, 0).obstacle; }

}  // namespace

TEST_F(Obstacles, OfTheDriverAreNamedAndATrialLeavesItsServiceAsItWas) {
    const ScriptedService_t none, stopped = Service(SERVICE_STOPPED), running = Service(SERVICE_RUNNING),
                                  disabled = Service(SERVICE_STOPPED, SERVICE_DISABLED),
                                  automatic = Service(SERVICE_RUNNING, SERVICE_AUTO_START);
    ScriptedService_t elsewhere = stopped;
    elsewhere.path = "C:\\gone\\Ravelink.sys";
    const std::optional<std::string> installed = kDriverFile, notInstalled, moved = elsewhere.path;
    using O = Obstacle_t;
    const struct {
        const char* what;
        ScriptedService_t service;
        std::optional<std::string> path;
        std::deque<DWORD> startErrors;
        O ofService, ofDriver, afterStart;
    } kCases[] = {
        {"no service",          none,      installed,    {},     O::kNoService, O::kNotTried,     kWorks           },
        {"not installed",       none,      notInstalled, {},     O::kNoService, O::kNoDriver,     O::kNoDriver     },
        {"no file",             none,      moved,        {},     O::kNoService, O::kNoDriverFile, O::kNoDriverFile },
        {"stopped",             stopped,   installed,    {},     O::kStopped,   O::kNotTried,     kWorks           },
        {"running",             running,   installed,    {},     kWorks,        O::kNotTried,     kWorks           },
        {"automatic",           automatic, installed,    {},     kWorks,        O::kNotTried,     kWorks           },
        {"another file",        elsewhere, installed,    {},     O::kStopped,   O::kNotTried,     O::kNoDriverFile },
        {"disabled",            disabled,  installed,    {1058}, O::kDisabled,  O::kNotTried,     O::kDisabled     },
        {"no rights",           stopped,   installed,    {5},    O::kStopped,   O::kNotTried,     O::kRights       },
        {"unsigned",            stopped,   installed,    {577},  O::kStopped,   O::kNotTried,     O::kDriverRefused},
        {"blocked",             none,      installed,    {1275}, O::kNoService, O::kNotTried,     O::kDriverRefused},
        {"a driver that fails", stopped,   installed,    {31},   O::kStopped,   O::kNotTried,     O::kDriverFails  },
    };
    for (const auto& c : kCases) {
        NewMachine();
        Machine().service = c.service;
        Machine().registryPath = c.path;
        const std::string before = Machine().State();
        EXPECT_EQ(BeginTrial(false), kFailure) << c.what;
        EXPECT_EQ(Find(Way_t::kService), c.ofService) << c.what;
        EXPECT_EQ(Find(Way_t::kDriver), c.ofDriver) << c.what;
        EXPECT_EQ(Find(Way_t::kMSR), c.ofDriver) << c.what;
        EndTrial();
        EXPECT_EQ(Machine().State(), before) << c.what;
        EXPECT_EQ(Machine().requests.size(), 0u) << c.what;

        Machine().service.startErrors = c.startErrors;
        EXPECT_EQ(BeginTrial(true) == kSuccess, c.afterStart == kWorks) << c.what;
        EXPECT_EQ(Find(Way_t::kDriver), c.afterStart) << c.what;
        EXPECT_EQ(Find(Way_t::kMemory), c.afterStart) << c.what;
        EndTrial();
        EXPECT_EQ(Machine().State(), before) << c.what;
        EXPECT_FALSE(Machine().mutexHeld) << c.what;
    }
}

TEST_F(Obstacles, AFailedQueryIsNoMissingService) {
    Machine().service = Service(SERVICE_RUNNING);
    Machine().failCalls = {"OpenSCManagerA#1"};
    EXPECT_EQ(Find(Way_t::kService), Obstacle_t::kRights);
    Machine().failCalls = {"OpenServiceA#1"};
    EXPECT_EQ(Find(Way_t::kService), Obstacle_t::kRights);
}

// Another process that opened the driver meanwhile keeps it.
TEST_F(Obstacles, ATrialStopsNoServiceThatAnotherProcessUses) {
    Machine().service = Service(SERVICE_STOPPED);
    ASSERT_EQ(BeginTrial(true), kSuccess);
    EXPECT_EQ(Machine().SharedCount(), 2u);
    Machine().OtherProcess(1);
    EndTrial();
    EXPECT_EQ(Machine().State(), "running, count 1");
}

// Each call of its beginning fails once.
TEST_F(Obstacles, ATrialThatCannotBeginLeavesNothingOpenAndTheServiceAsItWas) {
    for (const ScriptedService_t& service : {ScriptedService_t(), Service(SERVICE_STOPPED), Service(SERVICE_RUNNING)}) {
        size_t calls = 0;  // of one that begins
        for (size_t failing = 0; failing <= calls; ++failing) {
            NewMachine();
            Machine().service = service;
            Machine().failCall = failing;
            const std::string before = Machine().State();
            BeginTrial(true);
            if (failing == 0) calls = Machine().calls.size();
            EndTrial();
            EXPECT_EQ(Machine().State(), before) << failing;
            EXPECT_EQ(Machine().badCloses, 0) << failing;
        }
    }
}

// The hypervisor test leaves the device open when it fails.
TEST_F(Obstacles, ATrialClosesADeviceThatFails) {
    for (const ScriptedService_t& service : {ScriptedService_t(), Service(SERVICE_STOPPED), Service(SERVICE_RUNNING)}) {
        NewMachine();
        Machine().service = service;
        Machine().failCalls = {"DeviceIoControl#1"};
        const std::string before = Machine().State();
        EXPECT_NE(BeginTrial(true), kSuccess);
        EXPECT_EQ(Find(Way_t::kDriver), Obstacle_t::kDriverFails);
        EndTrial();
        EXPECT_EQ(Machine().State(), before);
    }
}

TEST_F(Obstacles, TablesAreThereOrNot) {
    EXPECT_EQ(Find(Way_t::kFirmwareTable), Obstacle_t::kNoSMBIOS);
    EXPECT_EQ(Find(Way_t::kACPI), Obstacle_t::kNoACPI);
    EXPECT_EQ(Find(Way_t::kEntryPoint), Obstacle_t::kNotHere);
    Machine().tables = {
        {"RSMB", std::vector<uint8_t>(8) },
        {"FACP", std::vector<uint8_t>(36)}
    };
    EXPECT_EQ(Find(Way_t::kFirmwareTable), kWorks);
    EXPECT_EQ(Find(Way_t::kACPI), kWorks);
}
