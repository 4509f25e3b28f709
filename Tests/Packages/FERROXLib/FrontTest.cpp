// The front's checks, lines and counts.
#include <functional>

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

const DynamicMMIORecord_t* Dynamic(uint32_t registerOffset) {
    static DynamicMMIORecord_t record;
    record = {1, registerOffset, 0x40};
    return &record;
}

}  // namespace

TEST_F(Front, ChecksArgumentsBeforeTheDriverIsAsked) {
    struct Case_t {
        const char* what;
        std::function<status_t()> call;
        status_t status;
    };
    const Case_t kCases[] = {
        {"library version",      [] { return GetFERROXLibVersion(nullptr); },                    4},
        {"driver version",       [] { return GetFERROXDriverVersion(nullptr); },                 4},
        {"PCI library version",  [] { return GetPCILibVersion(nullptr); },                       4},
        {"I/O library version",  [] { return GetIOLibVersion(nullptr); },                        4},
        {"CPU library version",  [] { return GetCPULibVersion(nullptr); },                       4},
        {"PCI null",             [] { return PCIRead(0, 65535, nullptr); },                      4},
        {"PCI above 256",        [] { return PCIRead(0, 252, five.Get()); },                     2},
        {"PCI offset",           [] { return PCIRead(0, 65535, none.Get()); },                   2},
        {"PCI sum wraps",        [] { return PCIRead(0, 1, hugest.Get()); },                     2},
        {"PCIEx null",           [] { return PCIExRead(0, 0, nullptr); },                        4},
        {"PCIEx above 4096",     [] { return PCIExRead(0, 4092, five.Get()); },                  2},
        {"PCIEx offset",         [] { return PCIExRead(0, 65535, none.Get()); },                 2},
        {"MMIO null",            [] { return PCIMMIORead(0, 0, nullptr); },                      4},
        {"MMIO offset",          [] { return PCIMMIORead(0x1000, 65535, four.Get()); },          2},
        {"MMIO address 0",       [] { return PCIMMIORead(0, 0, four.Get()); },                   2},
        {"MMIO address 65535",   [] { return PCIMMIORead(65535, 0, four.Get()); },               2},
        {"MMIO size 0",          [] { return PCIMMIORead(0x1000, 0, none.Get()); },              2},
        {"stored null",          [] { return PCIMMIOReadStored(1, 0, nullptr); },                4},
        {"stored offset",        [] { return PCIMMIOReadStored(1, 65535, four.Get()); },         2},
        {"stored size 0",        [] { return PCIMMIOReadStored(1, 0, none.Get()); },             2},
        {"GPIO null",            [] { return MMIOReadGPIO(1, 0, nullptr); },                     4},
        {"GPIO address",         [] { return MMIOReadGPIO(0, 0, four.Get()); },                  2},
        {"GPIO size 0",          [] { return MMIOReadGPIO(1, 0, none.Get()); },                  2},
        {"stored write null",    [] { return PCIMMIOWriteStored(1, 0, nullptr); },               4},
        {"stored write offset",  [] { return PCIMMIOWriteStored(1, 65535, four.Get()); },        2},
        {"stored write size 0",  [] { return PCIMMIOWriteStored(1, 0, none.Get()); },            2},
        {"GPIO write null",      [] { return MMIOWriteGPIO(1, 0, nullptr); },                    4},
        {"GPIO write address",   [] { return MMIOWriteGPIO(65535, 0, four.Get()); },             2},
        {"GPIO write size 0",    [] { return MMIOWriteGPIO(1, 0, none.Get()); },                 2},
        {"memory null",          [] { return GetSystemTables(1, 0, nullptr); },                  4},
        {"memory address 0",     [] { return GetSystemTables(0, 0, four.Get()); },               2},
        {"memory offset",        [] { return GetSystemTables(1, 65535, four.Get()); },           2},
        {"memory size 0",        [] { return GetSystemTables(1, 0, none.Get()); },               2},
        {"dynamic record null",  [] { return PCIMMIOReadDynamic(nullptr, four.Get()); },         4},
        {"dynamic null",         [] { return PCIMMIOReadDynamic(Dynamic(65535), nullptr); },     4},
        {"dynamic offset",       [] { return PCIMMIOReadDynamic(Dynamic(65535), four.Get()); },  2},
        {"dynamic size 0",       [] { return PCIMMIOReadDynamic(Dynamic(4), none.Get()); },      2},
        {"dynamic write null",   [] { return PCIMMIOWriteDynamic(Dynamic(4), nullptr); },        4},
        {"dynamic write offset", [] { return PCIMMIOWriteDynamic(Dynamic(65535), four.Get()); }, 2},
        {"dynamic write size 0", [] { return PCIMMIOWriteDynamic(Dynamic(4), none.Get()); },     2},
        {"port null",            [] { return ReadWakeupTimer(255, nullptr); },                   4},
        {"port 255",             [] { return ReadWakeupTimer(255, one.Get()); },                 2},
        {"port size above 4",    [] { return ReadWakeupTimer(254, five.Get()); },                2},
        {"port write null",      [] { return ConfigureWakeUpTimer(254, nullptr); },              4},
        {"port write 255",       [] { return ConfigureWakeUpTimer(255, one.Get()); },            2},
        {"port write above 4",   [] { return ConfigureWakeUpTimer(254, five.Get()); },           2},
        {"MSR null",             [] { return ReadMSR(nullptr); },                                4},
        {"MSR 0",                [] { return ReadMSR(Register(0)); },                            2},
        {"MSR 65535",            [] { return ReadMSR(Register(65535)); },                        2},
        {"MSR write null",       [] { return WriteMSR(nullptr); },                               4},
        {"MSR write 0",          [] { return WriteMSR(Register(0)); },                           2},
        {"MSR write 65535",      [] { return WriteMSR(Register(65535)); },                       2},
        {"CPUID null",           [] { return ReadCPUID(0, nullptr); },                           4},
        {"CPUID of processor 8", [] { return ReadCPUID(8, &cpuid); },                            2},
        {"non-turbo null",       [] { return CalcFreqNonTurbo(nullptr); },                       4},
        {"ACPI name null",       [] { return GetACPITable(nullptr, &table); },                   4},
        {"ACPI table null",      [] { return GetACPITable("FACP", nullptr); },                   4},
        {"ACPI Ex name null",    [] { return GetACPITableEx(nullptr, four.Get(), &word); },      4},
        {"ACPI Ex size null",    [] { return GetACPITableEx("FACP", four.Get(), nullptr); },     4},
        {"base null",            [] { return GetPCIExCfgBaseAddr(nullptr, 0x1000000); },         4},
        {"segment 256",          [] { return GetPCIExCfgBaseAddr(&base, 0x1000000); },           2},
        {"segments null",        [] { return GetSegBusInfo(nullptr); },                          4},
    };
    for (const auto& c : kCases) EXPECT_EQ(c.call(), c.status) << c.what;
    EXPECT_EQ(Platform().requests.size(), 0u);
    EXPECT_FALSE(Platform().Called("GetSystemFirmwareTable"));
}

TEST_F(Front, TracesEntryArgumentsAndExit) {
    ClBuffer buffer(8);
    PCIExRead(0, 16, buffer.Get());
    const auto& lines = Platform().lines;
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines.front().level, 1u);
    EXPECT_EQ(lines.front().text, "PCIExRead");
    EXPECT_EQ(lines[1].level, 4u);
    EXPECT_EQ(lines[1].text, "PCIExRead:RegisterOffset = 16 size  = 8");
    EXPECT_EQ(lines.back().level, 32u);
    EXPECT_EQ(lines.back().text, "PCIExRead");
}

TEST_F(Front, TellsABadPlaceWhereTheOperationHasALineForIt) {
    const struct {
        const char* name;
        bool told;
        std::function<status_t()> call;
    } kCases[] = {
        {"PCIMMIORead",         true,  [] { return PCIMMIORead(0, 0, four.Get()); }                  },
        {"PCIMMIOReadStored",   true,  [] { return PCIMMIOReadStored(1, 65535, four.Get()); }        },
        {"MMIOReadGPIO",        true,  [] { return MMIOReadGPIO(65535, 0, four.Get()); }             },
        {"GetSystemTables",     true,  [] { return GetSystemTables(0, 0, four.Get()); }              },
        {"PCIMMIOReadDynamic",  true,  [] { return PCIMMIOReadDynamic(Dynamic(65535), four.Get()); } },
        {"PCIMMIOWriteDynamic", true,  [] { return PCIMMIOWriteDynamic(Dynamic(65535), four.Get()); }},
        {"PCIMMIOWriteStored",  false, [] { return PCIMMIOWriteStored(0, 0, four.Get()); }           },
        {"MMIOWriteGPIO",       false, [] { return MMIOWriteGPIO(0, 0, four.Get()); }                },
        {"GetSystemTables",     false, [] { return GetSystemTables(1, 0, none.Get()); }              },
    };
    for (const auto& c : kCases) {
        Platform().lines.clear();
        EXPECT_EQ(c.call(), kBadValue) << c.name;
        const std::string line = std::string(c.name) + ": Invalid register offset status = 2\n";
        EXPECT_EQ(Platform().Traced(16, line), c.told) << c.name;
    }
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
    EXPECT_EQ(Platform().requests.size(), 0u);
}

TEST_F(FrontLife, LastTerminateOfTheProcessClosesTheDriver) {
    EXPECT_EQ(FERROXTerminate(), kFailure);
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    EXPECT_EQ(Platform().SharedCount(), 1u);  // one open by this process, however many uses
    EXPECT_EQ(FERROXTerminate(), kSuccess);
    EXPECT_TRUE(Platform().service.exists);
    EXPECT_EQ(FERROXTerminate(), kSuccess);
    EXPECT_FALSE(Platform().service.exists);
    EXPECT_EQ(FERROXTerminate(), kFailure);
}

TEST_F(FrontLife, VersionIsFilledByAFailedOpen) {
    Platform().failCalls = {"RegOpenKeyExA#1"};
    EXPECT_EQ(FERROXInitialize(), kFailure);
    EXPECT_TRUE(Platform().Traced(32, "FERROXInitialize Failure"));
    ASSERT_EQ(GetFERROXLibVersion(&version), kSuccess);
    EXPECT_STREQ(version.Major, "03");
    EXPECT_STREQ(version.Minor, "00");
    EXPECT_STREQ(version.Revision, "0");
    EXPECT_STREQ(version.Build, "1000");
    EXPECT_EQ(FERROXTerminate(), kFailure);
    EXPECT_EQ(FERROXInitialize(), kSuccess);
    EXPECT_TRUE(Platform().Traced(32, "FERROXInitialize Success"));
}

TEST_F(FrontLife, TakesTheLockOfADeadHolder) {
    Platform().waitAnswer = WAIT_ABANDONED;
    EXPECT_EQ(FERROXInitialize(), kSuccess);
    Platform().waitAnswer = WAIT_FAILED;
    EXPECT_EQ(FERROXInitialize(), kFailure);
    EXPECT_EQ(FERROXTerminate(), kFailure);
    Platform().waitAnswer = WAIT_OBJECT_0;
    EXPECT_EQ(FERROXTerminate(), kSuccess);
}
