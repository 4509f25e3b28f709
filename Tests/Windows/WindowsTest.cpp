// The library with a real service manager, a driver and several processes, which only Windows has.
// The repair of a service whose file is missing needs error 2 or 3, and Wine gives 1114: the scripted tests of the
// hardware library cover it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "CInterface/quorlin_c.h"
#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/OS/OS.h"
#include "Packages/OS/OSServices.h"
#include "Packages/OS/Windows/Windows.h"
#include "Sources/Quorlin.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/Structures.h"

namespace {

constexpr char kSettings[] = "SOFTWARE\\Wow6432Node\\Lumetra\\Ravelink";
constexpr DWORD kNoService = 0;  // no state has this number
constexpr DWORD kPatience = 20'000;

std::string FullPath(const std::string& path) { return std::filesystem::absolute(path).string(); }

enum class Service_t { kQuery, kRemove, kCreate, kStart };

// Returns the service's state, or kNoService.
DWORD ServiceState(Service_t what = Service_t::kQuery) {
    SC_HANDLE manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
    SC_HANDLE service = OpenServiceA(manager, "Ravelink", SERVICE_ALL_ACCESS);
    SERVICE_STATUS status = {};  // kNoService
    if (what == Service_t::kCreate)
        service = CreateServiceA(manager, "Ravelink", "Ravelink", SERVICE_ALL_ACCESS, SERVICE_KERNEL_DRIVER,
                                 SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL, FullPath(QUORLIN_DRIVER).c_str(), nullptr,
                                 nullptr, nullptr, nullptr, nullptr);
    if (what == Service_t::kStart) StartServiceA(service, 0, nullptr);
    QueryServiceStatus(service, &status);
    if (what == Service_t::kRemove) {
        ControlService(service, SERVICE_CONTROL_STOP, &status);
        DeleteService(service);
    }
    CloseServiceHandle(service);
    CloseServiceHandle(manager);
    return status.dwCurrentState;
}

bool SectionExists() {
    HANDLE section = OpenFileMappingA(FILE_MAP_READ, FALSE, "Global\\OSMIRALSharedMemoryExt");
    if (section != nullptr) CloseHandle(section);
    return section != nullptr;
}

bool Has(const std::string& text, const std::string& part) { return text.find(part) != text.npos; }

std::string RoleOutput() { return testing::TempDir() + "role.out"; }

// Runs this program in one of the roles below and returns its exit code. Its output goes to RoleOutput().
DWORD RunRole(const std::string& role) {
    const std::string command = FullPath(testing::internal::GetArgvs()[0]) +
                                " --gtest_also_run_disabled_tests --gtest_filter=Role.DISABLED_" + role + " >" +
                                RoleOutput();
    return static_cast<DWORD>(std::system(command.c_str()));
}

// Two events: a role sets `ready` and waits for `go`.
struct Signals_t {
    HANDLE ready = CreateEventA(nullptr, TRUE, FALSE, "QuorlinTestReady");
    HANDLE go = CreateEventA(nullptr, TRUE, FALSE, "QuorlinTestGo");
    ~Signals_t() {
        CloseHandle(ready);
        CloseHandle(go);
    }
};

// The roles are disabled because they aren't tests.
TEST(Role, DISABLED_HoldsTheDriver) {
    const Signals_t signals;
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    SetEvent(signals.ready);
    EXPECT_EQ(WaitForSingleObject(signals.go, kPatience), WAIT_OBJECT_0);
    EXPECT_EQ(FERROXTerminate(), kSuccess);
}

TEST(Role, DISABLED_DiesWithTheDriverOpen) {
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    TerminateProcess(GetCurrentProcess(), 99);
}

TEST(Role, DISABLED_ReadsThroughNull) {
    SetMachine(ThisMachineWithoutDriver());
    BaseAbstraction* package = CreateSmbiosPackage();
    ASSERT_EQ(package->Initialize(), kSuccess);
    volatile int* volatile nowhere = nullptr;
    std::printf("%d", *nowhere);
}

class Driver : public testing::Test {
  protected:
    void SetUp() override {
        ServiceState(Service_t::kRemove);
        SetValue("FERROXDrvPath", FullPath(QUORLIN_DRIVER));
        ASSERT_EQ(ServiceState(), kNoService);
        ASSERT_FALSE(SectionExists());
    }
    void TearDown() override {
        SetMachine(ThisMachine());
        ServiceState(Service_t::kRemove);
        RemoveSettings();
    }
    static void SetValue(const char* name, const std::string& text) {
        HKEY key;
        ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, kSettings, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                       static_cast<DWORD>(text.size() + 1));
        RegCloseKey(key);
    }
    static void LoseFile() {
        ServiceState(Service_t::kRemove);
        SetValue("FERROXDrvPath", FullPath("no-driver.sys"));
    }
    static void FailAtCPUID() {
        ServiceState(Service_t::kRemove);
        SetValue("TestNoCPUID", "");
    }
    static void RemoveSettings() { RegDeleteKeyA(HKEY_LOCAL_MACHINE, kSettings); }
    static void ExpectNothingLeft() {
        EXPECT_EQ(ServiceState(), kNoService);
        EXPECT_FALSE(SectionExists());
    }
};

TEST_F(Driver, ProgramReadsByBothAccessMethodsAndLeavesNothing) {
    const ProgramRun_t first = RunQuorlin("--driver --format lines"), scan = RunQuorlin("--road scan --format lines");
    EXPECT_EQ(first.exitCode, 0) << first.errors;
    EXPECT_EQ(first.output, RunQuorlin("--no-driver --format lines").output);
    EXPECT_EQ(scan.exitCode, 0) << scan.errors;
    EXPECT_TRUE(Has(scan.output, "\"Manufacturer\", \"Simulated\"\n")) << scan.output;
    ExpectNothingLeft();
}

TEST_F(Driver, TheLastOfTwoProcessesRemovesTheService) {
    for (const bool otherGoesFirst : {true, false}) {
        const Signals_t signals;
        std::thread other([] { EXPECT_EQ(RunRole("HoldsTheDriver"), 0u); });
        EXPECT_EQ(WaitForSingleObject(signals.ready, kPatience), WAIT_OBJECT_0);
        ASSERT_EQ(FERROXInitialize(), kSuccess);
        EXPECT_TRUE(otherGoesFirst || FERROXTerminate() == kSuccess);
        EXPECT_EQ(ServiceState(), DWORD{SERVICE_RUNNING});
        SetEvent(signals.go);
        other.join();
        EXPECT_EQ(ServiceState(), otherGoesFirst ? DWORD{SERVICE_RUNNING} : kNoService);
        EXPECT_TRUE(!otherGoesFirst || FERROXTerminate() == kSuccess);
        ExpectNothingLeft();
    }
}

TEST_F(Driver, AKilledProcessLeavesAServiceThatTheNextTakesOver) {
    EXPECT_EQ(RunRole("DiesWithTheDriverOpen"), 99u);
    EXPECT_EQ(ServiceState(), DWORD{SERVICE_RUNNING});
    EXPECT_FALSE(SectionExists());
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    EXPECT_EQ(FERROXTerminate(), kSuccess);
    ExpectNothingLeft();
}

// The program reads the table without the driver, silently; it fails and names the cause if the driver was asked for.
TEST_F(Driver, ProgramReadsWithoutItUnlessAskedForIt) {
    const struct {
        const char* cause;
        std::function<void()> prepare;
    } kCases[] = {
        {"its driver can't be started",               [] { SetValue("FERROXDrvPath", FullPath("no-driver.sys")); }},
        {"the driver Ravelink isn't installed",       RemoveSettings                                              },
        {"its driver fails at the CPUID instruction", [] { SetValue("TestNoCPUID", ""); }                         },
    };
    const std::string expected = RunQuorlin("--no-driver --format lines").output;
    for (const auto& c : kCases) {
        SetValue("FERROXDrvPath", FullPath(QUORLIN_DRIVER));
        c.prepare();
        const ProgramRun_t run = RunQuorlin("--format lines"), verbose = RunQuorlin("types --verbose");
        EXPECT_EQ(run.exitCode, 0) << c.cause;
        EXPECT_EQ(run.output, expected) << c.cause;
        EXPECT_EQ(run.errors, "") << c.cause;
        EXPECT_TRUE(Has(verbose.errors, std::string(c.cause) + "; trying without it")) << verbose.errors;
        for (const char* arguments : {"--driver --format lines", "--road scan", "hw versions"}) {
            const ProgramRun_t refused = RunQuorlin(arguments);
            EXPECT_EQ(refused.exitCode, 1) << c.cause << arguments;
            EXPECT_EQ(refused.output, "") << c.cause << arguments;
            EXPECT_TRUE(Has(refused.errors, std::string(c.cause) + "; try ")) << arguments << refused.errors;
            EXPECT_FALSE(Has(refused.errors, "root")) << c.cause << arguments;
            EXPECT_TRUE(Has(refused.errors, ", or quorlin doctor\n")) << arguments << refused.errors;
        }
        // Whatever the driver does.
        EXPECT_EQ(RunQuorlin("--method efi").errors,
                  "quorlin: this machine: this system doesn't show the address of its firmware's table; try without "
                  "--method, or quorlin doctor\n");
        ExpectNothingLeft();
    }
}

void CreateTheService() { ServiceState(Service_t::kCreate); }
void StartTheService() { ServiceState(Service_t::kStart); }
void RemoveTheService() { ServiceState(Service_t::kRemove); }

// Each state is named, and is the same after a trial.
TEST_F(Driver, DoctorNamesItsStateAndPutsItBack) {
    const struct {
        const char* what;
        std::function<void()> prepare;
        const char *service, *driver;
        bool works;
    } kCases[] = {
        {"no service",    RemoveTheService, "false,no-service", "false,not-tried",      true },
        {"stopped",       CreateTheService, "false,stopped",    "false,not-tried",      true },
        {"running",       StartTheService,  "true,",            "false,not-tried",      true },
        {"it fails",      FailAtCPUID,      "false,no-service", "false,not-tried",      false},
        {"no file",       LoseFile,         "false,no-service", "false,no-driver-file", false},
        {"not installed", RemoveSettings,   "false,no-service", "false,no-driver",      false},
    };
    for (const auto& c : kCases) {
        c.prepare();
        const DWORD before = ServiceState();
        const ProgramRun_t run = RunQuorlin("doctor --format csv"),
                           tried = RunQuorlin("doctor --format csv --try-driver");
        EXPECT_EQ(run.exitCode, 0) << c.what << run.errors;
        EXPECT_TRUE(Has(run.output, "\ntable,SMBIOS table from the system,,,true,")) << run.output;
        EXPECT_TRUE(Has(run.output, std::string("\nservice,Driver's service,,,") + c.service)) << c.what << run.output;
        EXPECT_TRUE(Has(run.output, std::string("\ndriver,Driver,,,") + c.driver)) << c.what << run.output;
        EXPECT_TRUE(Has(tried.output, std::string("\nservice,Driver's service,,,") + c.service)) << tried.output;
        for (const char* thing : {"\ndriver,", "\nscan,", "\nmemory,", "\nports,", "\ncpuid,"}) {
            const size_t row = tried.output.find(thing);
            ASSERT_NE(row, tried.output.npos) << thing;
            EXPECT_EQ(Has(tried.output.substr(row, tried.output.find('\r', row) - row), ",true"), c.works)
                << c.what << thing << tried.output;
        }
        EXPECT_EQ(ServiceState(), before) << c.what;
        EXPECT_FALSE(SectionExists()) << c.what;
    }
}

// What was recorded by the driver is replayed without it.
TEST_F(Driver, ARecordAnswersWithoutIt) {
    const std::string folder = testing::TempDir() + "record-driver";
    std::filesystem::remove_all(folder);
    const char* const kCommands[] = {"--format lines",          "hw cpuid 0 --cpu 0",      "hw pci 0000:00:00.0 3 253",
                                     "hw pci 0000:00:00.1 0 8", "hw pci 0000:02:01.0 0 8", "hw msr read 0x1b --cpu 0",
                                     "hw msr read 0x277"};
    std::vector<ProgramRun_t> answers;
    for (const char* command : kCommands) answers.push_back(RunQuorlin(command));
    const ProgramRun_t run = RunQuorlin("record " + folder);
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    RemoveSettings();
    for (size_t place = 0; place < answers.size(); place++) {
        const ProgramRun_t replayed = RunQuorlin(std::string(kCommands[place]) + " --replay " + folder);
        EXPECT_EQ(replayed.exitCode, answers[place].exitCode) << kCommands[place] << replayed.errors;
        EXPECT_EQ(replayed.output, answers[place].output) << kCommands[place];
        // Doctor knows nothing of a record.
        constexpr std::string_view kPointer = ", or quorlin doctor";
        std::string errors = answers[place].errors;
        if (const size_t at = errors.find(kPointer); at != errors.npos) errors.erase(at, kPointer.size());
        EXPECT_EQ(replayed.errors, errors) << kCommands[place];
    }
    EXPECT_TRUE(Has(ReadWholeFile(folder + "/pci.txt"), "0000:00:00.0 0c0b: 0201:0403\n"));
    ExpectNothingLeft();
    // Without the driver, the rest is recorded.
    std::filesystem::remove_all(folder);
    EXPECT_EQ(RunQuorlin("record " + folder).exitCode, 0);
    EXPECT_TRUE(Has(ReadWholeFile(folder + "/machine.json"), "\"why\": \"the driver isn't installed\""));
    EXPECT_EQ(RunQuorlin("hw cpuid 0 --replay " + folder).output, answers[1].output);
    EXPECT_EQ(RunQuorlin("--format lines --replay " + folder).output, answers[0].output);
}

// Reads a package several times and returns the number of this process's handles.
DWORD HandlesAfterRounds(int count) {
    for (int round = 0; round < count; ++round) {
        BaseAbstraction* package = CreateSmbiosPackage();
        EXPECT_EQ(package->Initialize(), kSuccess);
        EXPECT_EQ(package->UnInitialize(), kSuccess);
        DestroySmbiosPackage(package);
    }
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    return handles;
}

// Most rounds run while the driver is open, because its start and stop take long.
TEST_F(Driver, RoundsLeaveNoHandle) {
    const DWORD before = HandlesAfterRounds(1);
    EXPECT_EQ(HandlesAfterRounds(20), before);
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    HandlesAfterRounds(1000);
    EXPECT_EQ(FERROXTerminate(), kSuccess);
    EXPECT_EQ(HandlesAfterRounds(0), before);
    ExpectNothingLeft();
}

TEST(Crash, ReadThroughNullIsReported) {
    EXPECT_EQ(RunRole("ReadsThroughNull"), DWORD{EXCEPTION_ACCESS_VIOLATION});
    const std::string report = ReadWholeFile(RoleOutput());
    EXPECT_TRUE(Has(report, "***EXCEPTION HANDLING START***")) << report;
    EXPECT_TRUE(Has(report, "EXCEPTION_ACCESS_VIOLATION Attempted to read from: 0x00000000")) << report;
    EXPECT_TRUE(Has(report, "***EXCEPTION HANDLING END***")) << report;
}

LONG WINAPI FilterOfHost(EXCEPTION_POINTERS*) { return EXCEPTION_CONTINUE_SEARCH; }

// The C interface keeps the host's filter. A package replaces it, and the unloaded library leaves no filter.
TEST(Crash, NoFilterPointsIntoAnUnloadedLibrary) {
    const LPTOP_LEVEL_EXCEPTION_FILTER before = SetUnhandledExceptionFilter(FilterOfHost);
    const HMODULE library = LoadLibraryA(FullPath(QUORLIN_LIBRARY).c_str());
    ASSERT_NE(library, nullptr);
    const auto find = [library]<class Function_t>(Function_t*, const char* name) {
        return reinterpret_cast<Function_t*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
    };
    const std::vector<uint8_t> table = TableOf({ClStructureBuilder(3, 9)});
    const ImageSource_t image = {table.data(), static_cast<uint32_t>(table.size()), 3, 0, 0};
    quorlin_table* opened = nullptr;
    EXPECT_EQ(find(quorlin_open_memory, "quorlin_open_memory")(table.data(), table.size(), nullptr, &opened),
              QUORLIN_OK);
    find(quorlin_close, "quorlin_close")(opened);
    EXPECT_EQ(SetUnhandledExceptionFilter(FilterOfHost), FilterOfHost);
    EXPECT_EQ(find(SetImageMachine, "SetImageMachine")(&image), kSuccess);
    BaseAbstraction* package = find(CreateSmbiosPackage, "CreateSmbiosPackage")();
    EXPECT_EQ(package->Initialize(), kSuccess);
    EXPECT_EQ(package->UnInitialize(), kSuccess);
    find(DestroySmbiosPackage, "DestroySmbiosPackage")(package);
    EXPECT_NE(FreeLibrary(library), 0);
    EXPECT_EQ(GetModuleHandleA("quorlin.dll"), nullptr);
    EXPECT_EQ(SetUnhandledExceptionFilter(before), nullptr);
}

}  // namespace
