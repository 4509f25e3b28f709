// The front's checks, lines and counts.
#include <functional>
#include <span>
#include <utility>

#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Tests/Packages/FERROXLib/Library.h"

namespace {

using Front = ClLibraryTest;
using FrontLife = ClMachineTest;

// Arguments of every kind that the operations below take.
ClBuffer one(1), four(4), five(5), none(0, 0);
ClBuffer hugest(0xFFFFFFFF, 0);
MSRRecord_t msr = {};
CPUIDRecord_t cpuid = {};
NonTurboRecord_t nonTurbo = {};
uint32_t word;
uint64_t base;
DataBuffer_t* table;
LibVersion_t version;

MSRRecord_t* Register(uint32_t number) {
    msr.Msr = number;
    return &msr;
}

template <auto kMove>
status_t MoveDynamic(uint64_t, uint32_t registerOffset, DataBuffer_t* buffer) {
    const DynamicMMIORecord_t record = {1, registerOffset, 0x40};
    return kMove(&record, buffer);
}

template <status_t kStatus, class... Arguments_t>
status_t Gives(Arguments_t...) {
    return kStatus;
}

// A machine of which each operation fails with a status of its own: 100 and its place in the table.
template <status_t... kSlots>
constexpr HardwareServices_t Failing(std::integer_sequence<status_t, kSlots...>) {
    return {Gives<100 + kSlots>..., Gives<0>, nullptr};
}

}  // namespace

TEST_F(Front, ChecksArgumentsBeforeTheDriverIsAsked) {
    const struct {
        const char* what;
        std::function<status_t()> call;
        status_t status;
    } kCases[] = {
        {"library version",     [] { return GetFERROXLibVersion(nullptr); },                4},
        {"driver version",      [] { return GetFERROXDriverVersion(nullptr); },             4},
        {"PCI null",            [] { return PCIRead(0, 65535, nullptr); },                  4},
        {"PCI above 256",       [] { return PCIRead(0, 252, five.Get()); },                 2},
        {"PCI offset",          [] { return PCIRead(0, 65535, none.Get()); },               2},
        {"PCI sum wraps",       [] { return PCIRead(0, 1, hugest.Get()); },                 2},
        {"PCIEx null",          [] { return PCIExRead(0, 0, nullptr); },                    4},
        {"PCIEx above 4096",    [] { return PCIExRead(0, 4092, five.Get()); },              2},
        {"PCIEx offset",        [] { return PCIExRead(0, 65535, none.Get()); },             2},
        {"dynamic record null", [] { return PCIMMIOReadDynamic(nullptr, four.Get()); },     4},
        {"port null",           [] { return ReadWakeupTimer(255, nullptr); },               4},
        {"port 255",            [] { return ReadWakeupTimer(255, one.Get()); },             2},
        {"port size above 4",   [] { return ReadWakeupTimer(254, five.Get()); },            2},
        {"port write 255",      [] { return ConfigureWakeUpTimer(255, one.Get()); },        2},
        {"port write above 4",  [] { return ConfigureWakeUpTimer(254, five.Get()); },       2},
        {"MSR null",            [] { return ReadMSR(nullptr); },                            4},
        {"MSR 0",               [] { return ReadMSR(Register(0)); },                        2},
        {"MSR 65535",           [] { return ReadMSR(Register(65535)); },                    2},
        {"MSR write 0",         [] { return WriteMSR(Register(0)); },                       2},
        {"CPUID null",          [] { return ReadCPUID(0, nullptr); },                       4},
        {"non-turbo null",      [] { return CalcFreqNonTurbo(nullptr); },                   4},
        {"ACPI name null",      [] { return GetACPITable(nullptr, &table); },               4},
        {"ACPI table null",     [] { return GetACPITable("FACP", nullptr); },               4},
        {"ACPI Ex name null",   [] { return GetACPITableEx(nullptr, four.Get(), &word); },  4},
        {"ACPI Ex size null",   [] { return GetACPITableEx("FACP", four.Get(), nullptr); }, 4},
        {"base null",           [] { return GetPCIExCfgBaseAddr(nullptr, 0x1000000); },     4},
        {"segment 256",         [] { return GetPCIExCfgBaseAddr(&base, 0x1000000); },       2},
        {"segments null",       [] { return GetSegBusInfo(nullptr); },                      4},
    };
    for (const auto& c : kCases) EXPECT_EQ(c.call(), c.status) << c.what;
    EXPECT_EQ(Machine().requests.size(), 0u);
    EXPECT_FALSE(Machine().Called("GetSystemFirmwareTable"));
}

TEST_F(Front, TracesEntryArgumentsAndExit) {
    ClBuffer buffer(8);
    PCIExRead(0, 16, buffer.Get());
    const auto& lines = Machine().lines;
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines.front().level, 1u);
    EXPECT_EQ(lines.front().text, "PCIExRead");
    EXPECT_EQ(lines[1].level, 4u);
    EXPECT_EQ(lines[1].text, "PCIExRead:RegisterOffset = 16 size  = 8");
    EXPECT_EQ(lines.back().level, 32u);
    EXPECT_EQ(lines.back().text, "PCIExRead");
}

TEST_F(Front, BytesAreMovedAtGoodPlacesOnly) {
    const struct {
        const char* name;
        status_t (*move)(uint64_t address, uint32_t offset, DataBuffer_t*);
        bool told, hasAddress;
    } kMoves[] = {
        {"PCIMMIORead",         PCIMMIORead,                      true,  true },
        {"PCIMMIOReadStored",   PCIMMIOReadStored,                true,  true },
        {"MMIOReadGPIO",        MMIOReadGPIO,                     true,  true },
        {"GetSystemTables",     GetSystemTables,                  true,  true },
        {"PCIMMIOWriteStored",  PCIMMIOWriteStored,               false, true },
        {"MMIOWriteGPIO",       MMIOWriteGPIO,                    false, true },
        {"PCIMMIOReadDynamic",  MoveDynamic<PCIMMIOReadDynamic>,  true,  false},
        {"PCIMMIOWriteDynamic", MoveDynamic<PCIMMIOWriteDynamic>, true,  false},
    };
    constexpr std::pair<uint64_t, uint32_t> kBadPlaces[] = {
        {0x1000, 65535},
        {0,      0    },
        {65535,  0    }
    };
    for (const auto& c : kMoves) {
        const std::string line = std::string(c.name) + ": Invalid register offset status = 2\n";
        EXPECT_EQ(c.move(0x1000, 65535, nullptr), kNullPointer) << c.name;
        EXPECT_EQ(c.move(0x1000, 0, none.Get()), kBadValue) << c.name;
        EXPECT_FALSE(Machine().Traced(16, line)) << c.name;
        for (const auto& [address, offset] : std::span(kBadPlaces).first(c.hasAddress ? 3 : 1)) {
            Machine().lines.clear();
            EXPECT_EQ(c.move(address, offset, four.Get()), kBadValue) << c.name;
            EXPECT_EQ(Machine().Traced(16, line), c.told) << c.name;
        }
    }
    EXPECT_EQ(Machine().requests.size(), 0u);
}

TEST_F(Front, ClosedLibraryReachesNoDriver) {
    ASSERT_EQ(FERROXTerminate(), kSuccess);
    EXPECT_EQ(PCIRead(0, 0, four.Get()), 0u);
    EXPECT_EQ(GetSystemTables(0xF0000, 0, four.Get()), 0u);
    EXPECT_EQ(ReadMSR(Register(0x10)), 0u);
    EXPECT_EQ(ReadCPUID(0, &cpuid), 0u);
    EXPECT_EQ(ReadWakeupTimer(0x70, one.Get()), 0u);
    EXPECT_EQ(GetFERROXDriverVersion(&word), kFailure);
    EXPECT_EQ(CalcFreqNonTurbo(&nonTurbo), kFailure);
    EXPECT_EQ(Machine().requests.size(), 0u);
}

TEST_F(FrontLife, LastTerminateOfTheProcessClosesTheDriver) {
    EXPECT_EQ(FERROXTerminate(), kFailure);
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    EXPECT_EQ(Machine().SharedCount(), 1u);  // one open by this process, however many uses
    EXPECT_EQ(FERROXTerminate(), kSuccess);
    EXPECT_TRUE(Machine().service.exists);
    EXPECT_EQ(FERROXTerminate(), kSuccess);
    EXPECT_FALSE(Machine().service.exists);
    EXPECT_EQ(FERROXTerminate(), kFailure);
}

TEST_F(FrontLife, AFailedOpenCountsForNothing) {
    Machine().failCalls = {"RegOpenKeyExA#1"};
    EXPECT_EQ(FERROXInitialize(), kFailure);
    EXPECT_TRUE(Machine().Traced(32, "FERROXInitialize Failure"));
    ASSERT_EQ(GetFERROXLibVersion(&version), kSuccess);
    EXPECT_EQ(std::string(version.Major) + version.Minor + version.Revision + version.Build, "030001000");
    EXPECT_EQ(FERROXTerminate(), kFailure);
    EXPECT_EQ(FERROXInitialize(), kSuccess);
    EXPECT_TRUE(Machine().Traced(32, "FERROXInitialize Success"));
}

TEST_F(FrontLife, TakesTheLockOfADeadHolder) {
    Machine().waitAnswer = WAIT_ABANDONED;
    EXPECT_EQ(FERROXInitialize(), kSuccess);
    Machine().waitAnswer = WAIT_FAILED;
    EXPECT_EQ(FERROXInitialize(), kFailure);
    EXPECT_EQ(FERROXTerminate(), kFailure);
    Machine().waitAnswer = WAIT_OBJECT_0;
    EXPECT_EQ(FERROXTerminate(), kSuccess);
}

// The front hands on what the machine's operation gives, and an operation that the machine doesn't have gives 6.
TEST(Hardware, EachOperationIsTheMachines) {
    static const DynamicMMIORecord_t dynamic = {1, 2, 3};
    msr.Msr = 1;
    const HardwareServices_t failing = Failing(std::make_integer_sequence<status_t, 22>()), empty = {};
    const std::function<status_t()> kOperations[] = {
        FERROXInitialize,
        [] { return GetFERROXDriverVersion(&word); },
        [] { return GetPCILibVersion(&word); },
        [] { return GetIOLibVersion(&word); },
        [] { return GetCPULibVersion(&word); },
        [] { return PCIRead(0, 0, four.Get()); },
        [] { return PCIExRead(0, 0, four.Get()); },
        [] { return PCIMMIORead(1, 0, four.Get()); },
        [] { return PCIMMIOReadStored(1, 0, four.Get()); },
        [] { return MMIOReadGPIO(1, 0, four.Get()); },
        [] { return PCIMMIOWriteStored(1, 0, four.Get()); },
        [] { return MMIOWriteGPIO(1, 0, four.Get()); },
        [] { return GetSystemTables(1, 0, four.Get()); },
        [] { return PCIMMIOReadDynamic(&dynamic, four.Get()); },
        [] { return PCIMMIOWriteDynamic(&dynamic, four.Get()); },
        [] { return ReadWakeupTimer(1, one.Get()); },
        [] { return ConfigureWakeUpTimer(1, one.Get()); },
        [] { return ReadMSR(&msr); },
        [] { return WriteMSR(&msr); },
        [] { return ReadCPUID(0, &cpuid); },
        [] { return CalcFreqNonTurbo(&nonTurbo); },
    };
    for (const HardwareServices_t* machine : {&failing, &empty}) {
        UseHardware(*machine);
        status_t status = 100;
        for (const auto& operation : kOperations) {
            EXPECT_EQ(operation(), machine == &empty ? kNotSupported : status) << status;
            status += status == 100 ? 2 : 1;  // FERROXTerminate has nothing to end here
        }
        EXPECT_EQ(GetACPITable("MCFG", &table), kFailure);
    }
    UseHardware(kThisHardware);
}
