// The lower storey on this machine: what the hardware library reads is compared with what the kernel shows. Tests are
// skipped where the machine lacks something. In the guests that run.sh boots, where the environment variable
// QUORLIN_GUEST is set, nothing is missing.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "CInterface/quorlin_c.h"
#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/OS/OS.h"
#include "Packages/OS/Processors.h"
#include "Tests/Support/Buffer.h"
#include "Tests/Support/Linux/Processes.h"
#include "Tests/Support/Program.h"

namespace {

using Bytes_t = std::vector<uint8_t>;

Bytes_t FileBytes(const std::string& path) {
    const std::string bytes = ReadWholeFile(path);
    return {bytes.begin(), bytes.end()};
}

// Reads `size` bytes at `offset` from a device file. Empty if they can't be read.
Bytes_t BytesAt(const char* path, off_t offset, size_t size) {
    Bytes_t bytes(size);
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0 || pread(file, bytes.data(), size, offset) != static_cast<ssize_t>(size)) bytes.clear();
    if (file >= 0) close(file);
    return bytes;
}

Bytes_t Part(const Bytes_t& bytes, size_t offset, size_t size) {
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(offset);
    return Bytes_t(first, first + static_cast<std::ptrdiff_t>(size));
}

struct Function_t {
    uint32_t location;
    std::string name;
    Bytes_t shown;  // its configuration space, as far as this user may read it
};

std::vector<Function_t> Functions() {
    std::vector<Function_t> functions;
    std::error_code none;  // an empty list
    for (const auto& entry : std::filesystem::directory_iterator("/sys/bus/pci/devices", none)) {
        const std::string name = entry.path().filename();
        unsigned segment, bus, device, function;
        if (std::sscanf(name.c_str(), "%x:%x:%x.%x", &segment, &bus, &device, &function) == 4 && segment <= 0xFFFF)
            functions.push_back(
                {segment << 16 | function << 13 | device << 8 | bus, name, FileBytes(entry.path() / "config")});
    }
    return functions;
}

// Expects that `read` reads the first `end` bytes of a function's space as the kernel shows them, in parts of many
// sizes. Registers that change by themselves don't count: those that differ between the kernel's answers before and
// after.
void ExpectAsShown(const Function_t& function, size_t end,
                   const std::function<status_t(uint32_t offset, DataBuffer_t* buffer)>& read) {
    for (const uint32_t offset : {0u, 1u, 2u, 3u, 62u, 64u, 253u, 256u, 4093u}) {
        for (const uint32_t size : {1u, 2u, 3u, 4u, 7u, 64u, 128u}) {
            if (offset + size > std::min(end, function.shown.size())) continue;
            ClBuffer buffer(size);
            ASSERT_EQ(read(offset, buffer.Get()), kSuccess) << function.name << " " << offset;
            const Bytes_t bytes = buffer.Bytes(),
                          again = FileBytes("/sys/bus/pci/devices/" + function.name + "/config");
            for (size_t i = 0; i < size; ++i) {
                if (function.shown[offset + i] != again.at(offset + i)) continue;
                EXPECT_EQ(bytes[i], again[offset + i]) << function.name << " " << offset + i;
            }
        }
    }
}

uint64_t ConfigurationAddress(uint64_t base, uint32_t location) {
    return base + ((location & 0xFFull) << 20) + ((location >> 8 & 0x1Full) << 15) + ((location >> 13 & 7ull) << 12);
}

bool HasHypervisor() {
    uint32_t registers[4] = {1, 0, 0, 0};
    os_ReadCPUID(registers);
    return registers[2] >> 31 != 0;
}

// Whether the processor is of the one architecture with CPUID, model-specific registers, ports and a BIOS area.
bool IsX86() {
    uint32_t registers[4] = {};
    return os_ReadCPUID(registers);
}

bool IsGuest() { return std::getenv("QUORLIN_GUEST") != nullptr; }

}  // namespace

class Machine : public testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(FERROXInitialize(), kSuccess); }
    void TearDown() override { EXPECT_EQ(FERROXTerminate(), kSuccess); }
};

// The thread sanitizer finds races here.
TEST_F(Machine, ThreadsAskAtOnce) {
    const std::vector<Function_t> functions = Functions();
    std::atomic<int> answers = 0;
    std::vector<std::thread> threads;
    for (uint32_t t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            const uint32_t leaf = 0x80000002 + t % 3;
            uint32_t registers[4] = {leaf, 0, 0, 0};
            const bool hasCPUID = os_ReadCPUID(registers);
            for (int i = 0; i < 200; ++i) {
                if (FERROXInitialize() != kSuccess) return;
                CPUIDRecord_t record = {0, leaf, 0, 0, 0};
                ClBuffer word(4);
                const status_t status = ReadCPUID(kAnyProcessor, &record);
                bool isRight = hasCPUID ? status == kSuccess && record.Eax == registers[0] && record.Edx == registers[3]
                                        : status == kNotSupported && record.Eax == leaf;
                if (!functions.empty()) {
                    isRight &= PCIRead(functions[0].location, 0, word.Get()) == kSuccess &&
                               word.Bytes() == Part(functions[0].shown, 0, 4);
                }
                DataBuffer_t* table = nullptr;
                if (GetACPITable("MCFG", &table) == kSuccess) os_FreeBlock(table);
                quorlin_table* items = nullptr;  // the C interface is used at the same time
                isRight &= quorlin_open_memory("\x7F\4\0\0\0", 6, nullptr, &items) == QUORLIN_OK;
                quorlin_close(items);
                answers += isRight && FERROXTerminate() == kSuccess;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(answers, 800);
}

TEST_F(Machine, PCIRegistersAreTheKernels) {
    const std::vector<Function_t> functions = Functions();
    if (functions.empty()) GTEST_SKIP() << "no PCI here";
    for (const Function_t& function : functions) {
        ExpectAsShown(function, 256, [&](uint32_t offset, DataBuffer_t* buffer) {
            return PCIRead(function.location, offset, buffer);
        });
        ClBuffer extended(4);
        const status_t status = PCIExRead(function.location, 256, extended.Get());
        if (HasHypervisor()) {
            EXPECT_EQ(status, kBadValue);
        } else if (IsGuest() && function.shown.size() == 4096) {
            EXPECT_EQ(status, kSuccess) << function.name;
            EXPECT_EQ(extended.Bytes(), Part(function.shown, 256, 4));
        }
    }
}

TEST_F(Machine, SegmentsAndTheirRegistersAreTheKernels) {
    const Bytes_t shown = FileBytes("/sys/firmware/acpi/tables/MCFG");
    if (shown.size() < 60) GTEST_SKIP() << "no MCFG table here, or not for this user";
    DataBuffer_t* table = nullptr;
    ASSERT_EQ(GetACPITable("MCFG", &table), kSuccess);
    EXPECT_EQ(Bytes_t(table->Data(), table->Data() + table->Size), shown);
    os_FreeBlock(table);
    std::vector<SegBusInfo_t> segments(kMaxSegments);
    ASSERT_EQ(GetSegBusInfo(segments.data()), kSuccess);
    EXPECT_EQ(std::memcmp(&segments[0].BaseAddress, &shown[44], 8), 0);
    EXPECT_EQ(segments[0].EndBus, shown[55]);
    bool isExtended = false;
    for (const Function_t& function : Functions()) {
        if (function.location >> 16 != 0 || function.shown.size() < 256) continue;
        const uint64_t address = ConfigurationAddress(segments[0].BaseAddress, function.location);
        isExtended |= function.shown.size() > 256;
        ExpectAsShown(function, function.shown.size(), [address](uint32_t offset, DataBuffer_t* buffer) {
            return PCIMMIORead(address, offset, buffer);
        });
    }
    EXPECT_TRUE(isExtended || !IsGuest()) << "the guest has a PCI Express device";
}

TEST_F(Machine, AnMSRIsTheKernels) {
    const Bytes_t shown = BytesAt("/dev/cpu/0/msr", 0x1B, 8);
    if (shown.empty()) GTEST_SKIP() << "no MSRs here, or not for this user";
    MSRRecord_t record = {0, 0, 0x1B, 0, 0};
    ASSERT_EQ(ReadMSR(&record), kSuccess);
    EXPECT_EQ(std::memcmp(&record.LoContent, shown.data(), 4), 0);
    EXPECT_EQ(std::memcmp(&record.HiContent, &shown[4], 4), 0);
}

TEST_F(Machine, TheNonTurboFrequencyIsMeasuredAgainstTheACPITimer) {
    DataBuffer_t* table = nullptr;
    if (GetACPITable("FACP", &table) != kSuccess) GTEST_SKIP() << "no ACPI timer here, or not for this user";
    uint32_t port = 0;
    std::memcpy(&port, table->Data() + 76, 4);
    os_FreeBlock(table);
    const Bytes_t before = BytesAt("/dev/cpu/0/msr", 0x10, 8);  // the time-stamp counter
    if (before.empty() || port == 0) GTEST_SKIP() << "no MSRs or timer here";
    const bool counts = BytesAt("/dev/cpu/0/msr", 0x10, 8) != before;  // in an emulator it may not count
    for (const uint32_t timer : {port, 0u}) {                          // 0: the system's clock
        NonTurboRecord_t record = {0, 0x10, timer, {}};
        const auto begin = std::chrono::steady_clock::now();
        ASSERT_EQ(CalcFreqNonTurbo(&record), counts ? kSuccess : kFailure) << timer;
        EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(9)) << "10 of the timer's";
        uint64_t perSecond;
        std::memcpy(&perSecond, record.Result, sizeof perSecond);
        EXPECT_GE(perSecond, counts ? 100'000'000u : 0u);
        EXPECT_LE(perSecond, counts ? 20'000'000'000u : 0u);
    }
}

// The memory of the guest's display, which nobody uses: written by each operation, read by another.
TEST_F(Machine, WritesReachTheRegistersAndNothingElse) {
    if (!IsGuest()) GTEST_SKIP() << "writes to a device, so only in guests";
    for (const Function_t& function : Functions()) {
        if (function.shown[0x0B] != 0x03) continue;
        uint64_t base = 0;
        std::memcpy(&base, &function.shown[0x10], 4);
        base &= ~15ull;
        ClBuffer before(16), pattern(7), after(16);
        const DynamicMMIORecord_t dynamic = {function.location, 0x10, 0x1001};
        for (int way = 0; way < 3; ++way) {
            for (uint8_t i = 0; i < 7; ++i) pattern.Get()->Data()[i] = static_cast<uint8_t>(0x40 * way + i + 1);
            ASSERT_EQ(MMIOReadGPIO(base, 0x1000, before.Get()), kSuccess);
            ASSERT_EQ(way == 0   ? PCIMMIOWriteStored(base, 0x1001, pattern.Get())
                      : way == 1 ? MMIOWriteGPIO(base, 0x1001, pattern.Get())
                                 : PCIMMIOWriteDynamic(&dynamic, pattern.Get()),
                      kSuccess);
            const auto read = way == 0 ? PCIMMIOReadStored : way == 1 ? MMIOReadGPIO : GetSystemTables;
            ASSERT_EQ(read(base, 0x1000, after.Get()), kSuccess);
            Bytes_t expected = before.Bytes();
            std::memcpy(&expected[1], pattern.Get()->Data(), 7);
            EXPECT_EQ(after.Bytes(), expected) << way;
        }
        return;
    }
    FAIL() << "the guest has a display";
}

TEST_F(Machine, WritesReachAProcessorsRegister) {
    if (!IsGuest()) GTEST_SKIP() << "writes to a register, so only in guests";
    MSRRecord_t record = {0, 0, 0x1B, 0, 0};
    ASSERT_EQ(ReadMSR(&record), kSuccess);
    EXPECT_EQ(WriteMSR(&record), kSuccess) << "the same value once more";
}

// Reads the clock's battery-backed memory, through an index port and a data port.
TEST_F(Machine, PortsAreTheKernels) {
    if (!IsGuest()) GTEST_SKIP() << "writes to a port, so only in guests";
    for (const uint8_t index : {uint8_t{0x0B}, uint8_t{0x14}, uint8_t{0x32}}) {
        ClBuffer select(1), value(1);
        select.Get()->Data()[0] = index;
        ASSERT_EQ(ConfigureWakeUpTimer(0x70, select.Get()), kSuccess);
        ASSERT_EQ(ReadWakeupTimer(0x71, value.Get()), kSuccess);
        EXPECT_EQ(value.Bytes(), BytesAt("/dev/port", 0x71, 1)) << index;
    }
    // The PCI address port keeps a value that is written in one access of four bytes; this one selects 0:0.0.
    ClBuffer address(4), identity(4), maker(2);
    const uint32_t word = 0x80000000;
    std::memcpy(address.Get()->Data(), &word, sizeof word);
    ASSERT_EQ(ConfigureWakeUpTimer(0xCF8, address.Get()), kSuccess);
    ASSERT_EQ(ReadWakeupTimer(0xCFC, identity.Get()), kSuccess);
    ASSERT_EQ(ReadWakeupTimer(0xCFC, maker.Get()), kSuccess);
    // To read this file the kernel writes to the same port.
    const Bytes_t shown = FileBytes("/sys/bus/pci/devices/0000:00:00.0/config");
    EXPECT_EQ(identity.Bytes(), Part(shown, 0, 4));
    EXPECT_EQ(maker.Bytes(), Part(shown, 0, 2));
}

TEST_F(Machine, TheBIOSAreaIsTheKernels) {
    const Bytes_t shown = BytesAt("/dev/mem", 0xF0000, 65536);
    if (shown.empty()) GTEST_SKIP() << "no memory here, or not for this user";
    ClBuffer whole(65536), odd(5);
    ASSERT_EQ(GetSystemTables(0xF0000, 0, whole.Get()), kSuccess);
    EXPECT_EQ(whole.Bytes(), shown);
    ASSERT_EQ(GetSystemTables(0xF0000, 4093, odd.Get()), kSuccess);
    EXPECT_EQ(odd.Bytes(), Part(shown, 4093, 5));
}

// In a guest QUORLIN_SCAN says how the scan must end, "same" or "fails", and QUORLIN_TABLE names a file with the table.
TEST_F(Machine, BothAccessMethodsReadTheSameTable) {
    uint8_t entry[2][kEntryBufferSize] = {}, dmiEntry[2][kDMIEntryBufferSize] = {};
    SMBIOSTableImage_t *first = nullptr, *second = nullptr;
    const char* expected = std::getenv("QUORLIN_SCAN");
    const status_t served = osGetStructuresDataEFI(entry[0], dmiEntry[0], &first);
    const status_t scanned = osGetStructuresDataNonEFI(entry[1], dmiEntry[1], &second);
    const std::unique_ptr<SMBIOSTableImage_t, void (*)(void*)> freeFirst(first, os_FreeBlock),
        freeSecond(second, os_FreeBlock);
    if (expected == nullptr && (served != kSuccess || scanned != kSuccess))
        GTEST_SKIP() << "not both access methods here";
    ASSERT_EQ(served, kSuccess);
    const Bytes_t table(first->Data(), first->Data() + first->Length);
    const char* file = std::getenv("QUORLIN_TABLE");
    EXPECT_EQ(table, file == nullptr ? table : FileBytes(file));
    if (expected != nullptr && std::strcmp(expected, "fails") == 0) {
        EXPECT_EQ(scanned, kFailure);
        EXPECT_EQ(second, nullptr);
        return;
    }
    ASSERT_EQ(scanned, kSuccess);
    EXPECT_EQ(table, Bytes_t(second->Data(), second->Data() + second->Length));
    EXPECT_EQ(std::memcmp(&entry[0][6], &entry[1][6], 2), 0);
}

// In a locked-down kernel or without rights the library opens, CPUID works, and all else is refused. What the
// architecture lacks keeps its own status.
TEST(MachineRefusals, AreStatusesAndNothingMore) {
    const char* lockedDown = std::getenv("QUORLIN_LOCKED_DOWN");
    const int result = InChild([lockedDown] {
        if (lockedDown == nullptr && !BecomeNobody()) return 99;
        if (FERROXInitialize() != kSuccess) return 1;
        const bool isX86 = IsX86();
        const status_t refused = isX86 ? 0 : kNotSupported;
        CPUIDRecord_t record = {0, 1, 0, 0, 0};
        if (ReadCPUID(kAnyProcessor, &record) != (isX86 ? kSuccess : kNotSupported) || record.Eax == 0) return 2;
        ClBuffer memory(16), port(1);
        if (GetSystemTables(0xF0000, 0, memory.Get()) != 0 || memory.Bytes() != Bytes_t(16, 0xEE)) return 3;
        if (ReadWakeupTimer(0x71, port.Get()) != refused) return 4;
        MSRRecord_t msr = {0, 0, 0x1B, 0, 0};
        NonTurboRecord_t timer = {0, 0xE7, 0, {}};
        const status_t failed = isX86 ? kFailure : kNotSupported;
        if (lockedDown == nullptr && (ReadMSR(&msr) != refused || CalcFreqNonTurbo(&timer) != failed)) return 5;
        uint8_t entry[kEntryBufferSize], dmiEntry[kDMIEntryBufferSize];
        SMBIOSTableImage_t* image = nullptr;
        if (osGetStructuresDataNonEFI(entry, dmiEntry, &image) != kFailure) return 6;
        return FERROXTerminate() == kSuccess ? 0 : 7;
    });
    if (result == 99) GTEST_SKIP() << "only root can become another user";
    EXPECT_EQ(result, 0);
}

// Of root, doctor names the capability that is missing.
TEST(MachineRefusals, HaveACauseForRootToo) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can lose a capability";
    const bool hasDevice = access("/dev/mem", F_OK) == 0;
    const std::string output = RunPrepared({QUORLIN_PROGRAM, "doctor", "--format", "csv"}, [] {
                                   prctl(PR_CAPBSET_DROP, CAP_SYS_RAWIO);
                               }).output;
    const std::string cause = hasDevice ? "capability," : "no-device,";
    EXPECT_NE(output.find("\nmemory,Memory of the firmware,,,false," + (IsX86() ? cause : "architecture,")),
              output.npos)
        << output;
    EXPECT_NE(output.find("\nram,Memory of the system,,,false," + cause), output.npos) << output;
    EXPECT_EQ(output.find(",\"CAP_SYS_RAWIO, /dev/mem: ") != output.npos, hasDevice) << output;
}
