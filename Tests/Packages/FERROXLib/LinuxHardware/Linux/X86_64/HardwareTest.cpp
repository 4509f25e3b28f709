// What only x86 machines have: CPUID, model-specific registers, ports, and the scan of memory.
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/syscall.h>

#include <cstring>
#include <filesystem>
#include <set>

#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/FERROXLib/Obstacles.h"
#include "Packages/FERROXExternal/StructureStore/StoreHost.h"
#include "Packages/OS/OS.h"
#include "Packages/OS/Processors.h"
#include "Tests/Packages/FERROXLib/LinuxHardware/Hardware.h"
#include "Tests/Support/Program.h"

namespace {

TEST_F(Hardware, CPUIDRunsOnTheGivenProcessor) {
    cpu_set_t before, after;
    sched_getaffinity(0, sizeof before, &before);
    std::set<uint32_t> identities;  // each processor has its own APIC number
    const uint32_t count = os_GetProcessorCount();
    ASSERT_GE(count, 1u);
    for (uint32_t cpu = 0; cpu <= count; ++cpu) {
        CPUIDRecord_t record = {0, 1, 0, 0, 0};
        ASSERT_EQ(ReadCPUID(cpu, &record), cpu < count ? kSuccess : kBadValue);
        if (cpu < count) identities.insert(record.Ebx >> 24);
    }
    EXPECT_EQ(identities.size(), std::min(count, 256u));
    sched_getaffinity(0, sizeof after, &after);
    EXPECT_TRUE(CPU_EQUAL(&before, &after));
}

TEST_F(Hardware, ImpossiblePortsAndProcessorsAreRefused) {
    ClBuffer data(16), three(3), two(2);
    MSRRecord_t msr = {0, 255, 0x10, 1, 2};
    NonTurboRecord_t lastPort = {0, 0xE7, 0xFFFD, {}}, noProcessor = {255, 0xE7, 0, {}};
    EXPECT_EQ(ReadWakeupTimer(0x80, three.Get()), kRefused) << "a port of three bytes";
    EXPECT_EQ(ReadWakeupTimer(0x80, data.Get()), kBadValue) << "a port of 16 bytes";
    EXPECT_EQ(ConfigureWakeUpTimer(0xFFFF, two.Get()), kRefused) << "across the last port";
    EXPECT_EQ(ReadMSR(&msr), kRefused) << "of no processor";
    EXPECT_EQ(msr.HiContent, 1u);
    EXPECT_EQ(CalcFreqNonTurbo(&lastPort), kFailure) << "the timer's last byte";
    EXPECT_EQ(CalcFreqNonTurbo(&noProcessor), kFailure);
}

TEST(HardwareLife, ClosedLibraryReadsNoRegisters) {
    ClBuffer data(4);
    MSRRecord_t msr = {0, 0, 0x10, 0, 0};
    CPUIDRecord_t cpuid = {};
    EXPECT_EQ(ReadWakeupTimer(0x80, data.Get()), kRefused);
    EXPECT_EQ(ReadMSR(&msr), kRefused);
    EXPECT_EQ(ReadCPUID(kAnyProcessor, &cpuid), kRefused);
}

// It may have gone offline while doctor asked.
TEST_F(Hardware, AProcessorThatIsNotOnlineIsNoMissingModule) {
    for (const Way_t way : {Way_t::kMSR, Way_t::kCPUID})
        EXPECT_EQ(FindObstacle(way, os_GetProcessorCount()).obstacle, Obstacle_t::kOther);
}

TEST_F(StandIns, CPUIDOfAnotherProcessorComesFromItsFile) {
    m_dev->Write("cpu/0/cpuid", "\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F\x10\x11\x12");
    const int result = InChild([] {
        ForbidCall({SYS_sched_setaffinity}, SECCOMP_RET_ERRNO | EINVAL);
        EXPECT_TRUE(FERROXTerminate() == kSuccess && FERROXInitialize() == kSuccess) << "without processor 0";
        CPUIDRecord_t record = {7, 2, 0, 0, 0}, beyond = {0, 3, 0, 0, 0};
        EXPECT_EQ(ReadCPUID(0, &record), kSuccess);
        const CPUIDRecord_t expected = {7, 0x06050403, 0x0A090807, 0x0E0D0C0B, 0x1211100F};
        EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);
        EXPECT_EQ(ReadCPUID(0, &beyond), kRefused);
        std::filesystem::remove_all("/dev/cpu");
        EXPECT_EQ(ReadCPUID(0, &record), kRefused);
        return HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(result, 0);
}

TEST_F(StandIns, MSRsAreReadAndWrittenAtTheirNumbers) {
    m_dev->Write("cpu/0/msr", "abcd\x01\x02\x03\x04\x05\x06\x07\x08rest");
    MSRRecord_t read = {0, 0, 4, 0, 0}, write = {0, 0, 5, 0x68676665, 0x64636261}, beyond = {0, 0, 9, 0, 0};
    EXPECT_EQ(ReadMSR(&read), kSuccess);
    EXPECT_EQ(read.HiContent, 0x08070605u);
    EXPECT_EQ(read.LoContent, 0x04030201u);
    EXPECT_EQ(WriteMSR(&write), kSuccess);
    EXPECT_EQ(ReadWholeFile("/dev/cpu/0/msr"),
              "abcd\x01"
              "abcdefghest");
    EXPECT_EQ(ReadMSR(&beyond), kRefused) << "no whole register";
    NonTurboRecord_t timer = {0, 9, 0, {1}};
    EXPECT_EQ(CalcFreqNonTurbo(&timer), kFailure) << "no whole register";
    timer.Msr = 4;
    EXPECT_EQ(CalcFreqNonTurbo(&timer), kFailure) << "a register that doesn't count";
    EXPECT_EQ(timer.Result[0], 1);
    std::filesystem::remove_all("/dev/cpu");
    EXPECT_EQ(ReadMSR(&read), kRefused) << "no driver for MSRs";
}

// The kernel lets root open the device, and refuses to map what the option guards.
TEST_F(StandIns, StrictMemoryIsNotLockdown) {
    m_dev->Write("mem", std::string(1u << 21, '\0'));
    const int result = InChild([] {
        constexpr uint32_t kOffset = 5, kFirstMegabyte = 0x100000;
        ForbidCall({SYS_mmap, kOffset, kFirstMegabyte}, SECCOMP_RET_ERRNO | EPERM);
        EXPECT_EQ(FindObstacle(Way_t::kRAM, 0).obstacle, Obstacle_t::kStrictMemory);
        EXPECT_EQ(FindObstacle(Way_t::kMemory, 0).obstacle, Obstacle_t::kNone);
        return HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(result, 0);
}

// Scans, and expects an image only of a table that was found.
MemoryEnd_t Scan() {
    uint8_t entry[kEntryBufferSize] = {}, dmiEntry[kDMIEntryBufferSize] = {};
    SMBIOSTableImage_t* image = nullptr;
    const MemoryEnd_t end = ScanMemory(entry, dmiEntry, &image);
    EXPECT_EQ(image != nullptr, end == MemoryEnd_t::kFound);
    os_FreeBlock(image);
    return end;
}

TEST_F(StandIns, ScanReadsATableOnlyInMemory) {
    const std::string anchors =
        std::string("_SM_\0\x1F\2\7\0\0\0\0\0\0\0\0", 16) + std::string("_DMI_\0\5\0\x20\0\x0F\0\1\0\x27", 15);
    std::string memory(1u << 20, '\0');
    memory.replace(0xF0000, anchors.size(), anchors);
    m_dev->Write("mem", memory);
    const ClFolderOver proc("/proc");
    proc.Write("iomem", "000f0000-000fffff : System ROM\n");
    EXPECT_EQ(Scan(), MemoryEnd_t::kFound);
    proc.Write("iomem", "000f0000-000fffff : 00:05\n");
    EXPECT_EQ(Scan(), MemoryEnd_t::kElsewhere);
    ClBuffer asked(4);
    EXPECT_EQ(GetSystemTables(0xF0000, 0, asked.Get()), kSuccess) << "as the caller asks";
    EXPECT_EQ(Text(asked), "_SM_");
    const auto scanAsNobody = [] {
        return BecomeNobody() && Scan() == MemoryEnd_t::kUnreadable && LastRefusal() == Refusal_t::kRights ? 0 : 1;
    };
    EXPECT_EQ(InChild(scanAsNobody), 0) << "rights would help";
    std::filesystem::remove("/dev/mem");
    EXPECT_EQ(Scan(), MemoryEnd_t::kUnreadable);
    EXPECT_EQ(LastRefusal(), Refusal_t::kOther) << "no right would help";
}

}  // namespace
