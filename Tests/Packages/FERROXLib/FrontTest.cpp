// The front's argument checks and its counting of users.
#include <functional>

#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Tests/Packages/FERROXLib/Library.h"

namespace {

using Front = ClLibraryTest;
using FrontLife = ClMachineTest;

// Arguments of every kind that the operations below take.
ClBuffer one(1), four(4), five(5), none(0, 0);
ClBuffer hugest(0xFFFFFFFF, 0);
MSRRecord_t msr = {};
uint32_t word;
uint64_t base;
DataBuffer_t* table;
LibVersion_t version;
constexpr DynamicMMIORecord_t kRegister = {1, 0, 0x40}, kNoRegister = {1, 65535, 0x40};

MSRRecord_t* Register(uint32_t number) {
    msr.Msr = number;
    return &msr;
}

}  // namespace

TEST_F(Front, ChecksArgumentsBeforeTheDriverIsAsked) {
    const struct {
        const char* what;
        std::function<status_t()> call;
        status_t status;
    } kCases[] = {
        {"library version",     [] { return GetFERROXLibVersion(nullptr); },                  4},
        {"PCI above 256",       [] { return PCIRead(0, 252, five.Get()); },                   2},
        {"PCI offset",          [] { return PCIRead(0, 65535, none.Get()); },                 2},
        {"PCI sum wraps",       [] { return PCIRead(0, 1, hugest.Get()); },                   2},
        {"PCIEx above 4096",    [] { return PCIExRead(0, 4092, five.Get()); },                2},
        {"PCIEx offset",        [] { return PCIExRead(0, 65535, none.Get()); },               2},
        {"dynamic record null", [] { return PCIMMIOReadDynamic(nullptr, four.Get()); },       4},
        {"dynamic offset",      [] { return PCIMMIOReadDynamic(&kNoRegister, four.Get()); },  2},
        {"dynamic write",       [] { return PCIMMIOWriteDynamic(&kNoRegister, four.Get()); }, 2},
        {"dynamic size 0",      [] { return PCIMMIOWriteDynamic(&kRegister, none.Get()); },   2},
        {"port 255",            [] { return ReadWakeupTimer(255, one.Get()); },               2},
        {"port size above 4",   [] { return ReadWakeupTimer(254, five.Get()); },              2},
        {"port write 255",      [] { return ConfigureWakeUpTimer(255, one.Get()); },          2},
        {"port write above 4",  [] { return ConfigureWakeUpTimer(254, five.Get()); },         2},
        {"MSR 0",               [] { return ReadMSR(Register(0)); },                          2},
        {"MSR 65535",           [] { return ReadMSR(Register(65535)); },                      2},
        {"MSR write 0",         [] { return WriteMSR(Register(0)); },                         2},
        {"ACPI name null",      [] { return GetACPITable(nullptr, &table); },                 4},
        {"ACPI table null",     [] { return GetACPITable("FACP", nullptr); },                 4},
        {"ACPI Ex name null",   [] { return GetACPITableEx(nullptr, four.Get(), &word); },    4},
        {"ACPI Ex size null",   [] { return GetACPITableEx("FACP", four.Get(), nullptr); },   4},
        {"base null",           [] { return GetPCIExCfgBaseAddr(nullptr, 0x1000000); },       4},
        {"segment 256",         [] { return GetPCIExCfgBaseAddr(&base, 0x1000000); },         2},
        {"segments null",       [] { return GetSegBusInfo(nullptr); },                        4},
    };
    for (const auto& c : kCases) EXPECT_EQ(c.call(), c.status) << c.what;
    EXPECT_TRUE(Machine().Traced(4, "PCIExRead:RegisterOffset = 4092 size  = 5"));
    EXPECT_EQ(Machine().requests.size(), 0u);
    EXPECT_FALSE(Machine().Called("GetSystemFirmwareTable#1"));
}

TEST_F(Front, BytesAreMovedAtGoodPlacesOnly) {
    for (const auto& move :
         {PCIMMIORead, PCIMMIOReadStored, MMIOReadGPIO, GetSystemTables, PCIMMIOWriteStored, MMIOWriteGPIO}) {
        EXPECT_EQ(move(0x1000, 0, none.Get()), kBadValue);
        EXPECT_EQ(move(0x1000, 65535, four.Get()), kBadValue);
        EXPECT_EQ(move(0, 0, four.Get()), kBadValue);
        EXPECT_EQ(move(65535, 0, four.Get()), kBadValue);
    }
    EXPECT_TRUE(Machine().Traced(16, "GetSystemTables: Invalid register offset status = 2\n"));
    EXPECT_FALSE(Machine().Traced(16, "MMIOWriteGPIO: Invalid register offset status = 2\n"));
    EXPECT_EQ(Machine().requests.size(), 0u);
}

TEST_F(FrontLife, LastTerminateOfTheProcessClosesTheDriver) {
    Machine().failCalls = {"RegOpenKeyExA#1"};
    EXPECT_EQ(FERROXInitialize(), kFailure);
    EXPECT_TRUE(Machine().Traced(32, "FERROXInitialize Failure"));
    ASSERT_EQ(GetFERROXLibVersion(&version), kSuccess);
    EXPECT_EQ(std::string(version.Major) + version.Minor + version.Revision + version.Build, "030001000");
    EXPECT_EQ(FERROXTerminate(), kFailure) << "a failed open counts for nothing";
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    EXPECT_TRUE(Machine().Traced(32, "FERROXInitialize Success"));
    EXPECT_EQ(Machine().SharedCount(), 1u);  // one open by this process, however many uses
    EXPECT_EQ(FERROXTerminate(), kSuccess);
    EXPECT_TRUE(Machine().service.exists);
    EXPECT_EQ(FERROXTerminate(), kSuccess);
    EXPECT_FALSE(Machine().service.exists);
    EXPECT_EQ(FERROXTerminate(), kFailure);
}

TEST_F(FrontLife, TakesTheLockOfADeadHolder) {
    Machine().waitAnswer = WAIT_ABANDONED;
    EXPECT_EQ(FERROXInitialize(), kSuccess);
    EXPECT_TRUE(Machine().Called("CreateMutexA FERROXLIB#1"));
}
