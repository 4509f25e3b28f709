// The device's requests, and the firmware's tables. What only hardware can tell is held against the kernel in
// Tests/Machine; here files stand in for the memory, the MSRs, the PCI functions and the tables.
#include <cpuid.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Packages/Platform/Platform.h"
#include "Tests/Packages/Platform/Calls.h"
#include "Tests/Support/Linux/Processes.h"
#include "Tests/Support/Program.h"

namespace {

using Bytes_t = std::vector<uint8_t>;

constexpr DWORD kCPUID = 0x80240000, kDriverVersion = 0x80240004, kReadPort = 0x80240034, kReadMSR = 0x80240040,
                kReadPCI = 0x80240048, kCPUVersion = 0x80240090, kIOVersion = 0x80240094, kPCIVersion = 0x80240098,
                kNonTurbo = 0x8024009C, kReadPCIOfGuest = 0x802400F4, kReadStored = 0x802400FC, kReadGPIO = 0x80240104,
                kWriteStored = 0x80240108, kWriteDynamic = 0x8024010C, kWriteGPIO = 0x80240110,
                kReadRegisters = 0x80240114, kReadTables = 0x80240118, kWritePort = 0x80244074, kWriteMSR = 0x80244080;
constexpr uint32_t kAnyProcessor = 256;

// These words, and zeros up to `size`.
Bytes_t Record(std::initializer_list<uint32_t> words, size_t size = 0) {
    Bytes_t record(std::max(size, words.size() * 4));
    std::memcpy(record.data(), std::data(words), words.size() * 4);
    return record;
}

// The record of a memory request, with `data` behind it.
Bytes_t MemoryRecord(uint64_t address, uint32_t offset, const std::string& data) {
    const auto low = static_cast<uint32_t>(address), high = static_cast<uint32_t>(address >> 32);
    Bytes_t record =
        Record({0, kAnyProcessor, low, high, offset, static_cast<uint32_t>(data.size())}, 24 + data.size());
    std::copy(data.begin(), data.end(), record.begin() + 24);
    return record;
}

std::string DataOf(const Bytes_t& memoryRecord) { return {memoryRecord.begin() + 24, memoryRecord.end()}; }

uint32_t Word(const Bytes_t& bytes, size_t index) {
    uint32_t value;
    std::memcpy(&value, &bytes[index * 4], sizeof value);
    return value;
}

HANDLE OpenDevice(DWORD access = GENERIC_READ | GENERIC_WRITE) {
    return CreateFileA("\\\\.\\Ravelink", access, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// 0 when the request was carried out, in place, or its error.
DWORD Send(HANDLE device, DWORD code, Bytes_t& record) {
    DWORD returned = 0;
    const auto size = static_cast<DWORD>(record.size());
    if (!DeviceIoControl(device, code, record.data(), size, record.data(), size, &returned, nullptr))
        return GetLastError();
    return returned == size ? 0 : ~0u;
}

// The service of the device runs while this object lives.
class ClRunningService {
  public:
    ClRunningService() : m_manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS)) {
        m_service = CreateDriver(m_manager, "Ravelink");
        StartServiceA(m_service, 0, nullptr);
    }
    ClRunningService(const ClRunningService&) = delete;
    ClRunningService& operator=(const ClRunningService&) = delete;
    ~ClRunningService() {
        SERVICE_STATUS status;
        ControlService(m_service, SERVICE_CONTROL_STOP, &status);
        RemoveDriver(m_service);
        CloseServiceHandle(m_manager);
    }

  private:
    SC_HANDLE m_manager, m_service;
};

class Device : public testing::Test {
  protected:
    void SetUp() override { ASSERT_NE(m_device, INVALID_HANDLE_VALUE) << GetLastError(); }
    ~Device() override { CloseHandle(m_device); }

    const ClRunningService m_service;
    const HANDLE m_device = OpenDevice();
};

TEST_F(Device, CPUIDIsTheInstructionOnTheProcessorAskedFor) {
    for (const uint32_t leaf : {0u, 0x80000002u}) {
        uint32_t words[4];
        __cpuid_count(leaf, 0, words[0], words[1], words[2], words[3]);
        Bytes_t record = Record({0, kAnyProcessor, 0, 0, 0, leaf}, 56);
        ASSERT_EQ(Send(m_device, kCPUID, record), 0u);
        EXPECT_EQ(std::memcmp(&record[20], words, sizeof words), 0) << leaf;
    }
    cpu_set_t before, after;
    sched_getaffinity(0, sizeof before, &before);
    std::set<uint32_t> identities;  // each processor has an APIC number of its own
    const DWORD count = GetActiveProcessorCount(ALL_PROCESSOR_GROUPS);
    for (uint32_t cpu = 0; cpu <= count; ++cpu) {
        Bytes_t record = Record({0, cpu, 0, 0, 0, 1}, 56);
        ASSERT_EQ(Send(m_device, kCPUID, record), cpu < count ? 0 : ERROR_INVALID_PARAMETER);
        if (cpu < count) identities.insert(Word(record, 6) >> 24);
    }
    EXPECT_EQ(identities.size(), count < 256 ? count : 256);
    sched_getaffinity(0, sizeof after, &after);
    EXPECT_TRUE(CPU_EQUAL(&before, &after));
}

TEST_F(Device, EachRequestTakesNoLessThanItsRecord) {
    const struct {
        DWORD inSize, outSize, dataSize;  // the record below asks for 16 bytes of data
        std::vector<DWORD> codes;
    } kRequests[] = {
        {56, 56, 0,  {kCPUID}                                                                                      },
        {0,  4,  0,  {kDriverVersion, kCPUVersion, kIOVersion, kPCIVersion}                                        },
        {20, 20, 0,  {kReadPort, kReadMSR, kReadPCI, kNonTurbo, kReadPCIOfGuest, kWritePort, kWriteMSR}            },
        {24, 24, 16, {kReadStored, kReadGPIO, kWriteStored, kWriteDynamic, kWriteGPIO, kReadRegisters, kReadTables}},
    };
    const auto send = [this](DWORD code, DWORD inSize, DWORD outSize) -> DWORD {
        Bytes_t in = MemoryRecord(0xF0000, 0, std::string(16, 'x')), out(64, 0xA5);
        in.resize(64);
        DWORD returned = 77;
        const BOOL done = DeviceIoControl(m_device, code, in.data(), inSize, out.data(), outSize, &returned, nullptr);
        const DWORD error = done ? 0 : GetLastError();
        EXPECT_TRUE(done || (out == Bytes_t(64, 0xA5) && returned == 77)) << "a refused request wrote something";
        return error;
    };
    for (const auto& r : kRequests) {
        for (const DWORD code : r.codes) {
            if (r.inSize != 0) {
                EXPECT_EQ(send(code, r.inSize + r.dataSize - 1, 64), ERROR_INSUFFICIENT_BUFFER) << std::hex << code;
            }
            EXPECT_EQ(send(code, 56, r.outSize + r.dataSize - 1), ERROR_INSUFFICIENT_BUFFER) << std::hex << code;
        }
    }
    EXPECT_EQ(send(0x80240008, 40, 64), ERROR_INVALID_FUNCTION);
    Bytes_t version(4);
    DWORD returned = 0;
    EXPECT_TRUE(DeviceIoControl(m_device, kDriverVersion, nullptr, 0, version.data(), 4, &returned, nullptr));
    EXPECT_EQ(Word(version, 0), 0x00030000u);
}

// Before anything is touched, and for root as well.
TEST_F(Device, ImpossibleRequestsAreRefused) {
    const std::string data(16, 'x');
    Bytes_t more = MemoryRecord(0xF0000, 0, data);
    more[20] = 17;
    constexpr DWORD kWrong = ERROR_INVALID_PARAMETER;
    // clang-format off
    const struct {
        const char* what;
        DWORD code;
        Bytes_t record;
        DWORD error;
    } kCases[] = {
        {"more data than there is", kReadTables,    more,                                          ERROR_INSUFFICIENT_BUFFER},
        {"behind the last address", kReadTables,    MemoryRecord(~0ull - 4, 0, data),              kWrong},
        {"across the last address", kReadRegisters, MemoryRecord((1ull << 52) - 15, 0, data),      kWrong},
        {"beyond it by its offset", kWriteStored,   MemoryRecord((1ull << 52) - 4096, 4081, data), kWrong},
        {"no bytes at all",         kReadTables,    MemoryRecord(0xF0000, 0, ""),                  0},
        {"PCI at an odd offset",    kReadPCI,       Record({0, 0, 2, 4, 0}),                       kWrong},
        {"PCI of two bytes",        kReadPCI,       Record({0, 0, 0, 2, 0}),                       kWrong},
        {"PCI beyond its space",    kReadPCI,       Record({0, 0, 256, 4, 0}),                     kWrong},
        {"a port of three bytes",   kReadPort,      Record({0, kAnyProcessor, 0x80, 3, 0}),        kWrong},
        {"across the last port",    kWritePort,     Record({0, kAnyProcessor, 0xFFFF, 2, 0}),      kWrong},
        {"MSR of no processor",     kReadMSR,       Record({0, 255, 0x10, 0, 0}),                  kWrong},
        {"no timer",                kNonTurbo,      Record({0, 0xE7, 0, 0, 0}),                    kWrong},
        {"the timer's last byte",   kNonTurbo,      Record({0, 0xE7, 0xFFFD, 0, 0}),               kWrong},
    };
    // clang-format on
    for (const auto& c : kCases) {
        Bytes_t record = c.record;
        EXPECT_EQ(Send(m_device, c.code, record), c.error) << c.what;
        EXPECT_EQ(record, c.record) << c.what;
    }
    HANDLE writer = OpenDevice(GENERIC_WRITE);
    Bytes_t port(20);
    EXPECT_EQ(Send(writer, kWritePort, port), ERROR_ACCESS_DENIED) << "not opened for reading";
    CloseHandle(writer);
}

// Refused one by one, with one clear error; CPUID needs no rights. In that user's own register the service is another.
TEST_F(Device, AUserWithoutRightsGetsCPUIDAndRefusals) {
    const int result = InChild([] {
        if (!BecomeNobody()) return 99;
        EXPECT_EQ(ErrorOf(OpenDevice()), ERROR_FILE_NOT_FOUND);
        const ClRunningService service;
        HANDLE device = OpenDevice();
        Bytes_t cpuid = Record({0, kAnyProcessor}, 56), port = Record({0, kAnyProcessor, 0x80, 1, 0}),
                timer = Record({0, 0xE7, 0x608, 0, 0}), memory = MemoryRecord(0xF0000, 0, std::string(16, 'x'));
        EXPECT_EQ(Send(device, kCPUID, cpuid), 0u);
        // A kernel may also have been built without the one or the other.
        for (const DWORD error : {Send(device, kReadPort, port), Send(device, kNonTurbo, timer)})
            EXPECT_TRUE(error == ERROR_ACCESS_DENIED || error == ERROR_NOT_SUPPORTED) << error;
        const DWORD error = Send(device, kReadTables, memory);
        EXPECT_TRUE(error == ERROR_ACCESS_DENIED || error == ERROR_FILE_NOT_FOUND) << error;
        EXPECT_EQ(DataOf(memory), std::string(16, 'x'));
        return testing::Test::HasFailure() ? 1 : 0;
    });
    if (result == 99) GTEST_SKIP() << "only root can become another user";
    EXPECT_EQ(result, 0);
}

// A PCI function's configuration space: its vendor, other bytes by their offsets, and base address registers.
std::string Configuration(std::initializer_list<uint32_t> bases) {
    std::string bytes = "\x34\x12";
    while (bytes.size() < 256) bytes += static_cast<char>(bytes.size());
    size_t at = 0x10;
    for (const uint32_t base : bases)
        bytes.replace(std::exchange(at, at + 4), 4, reinterpret_cast<const char*>(&base), 4);
    return bytes;
}

std::string Table(const char* name, const std::string& rest) { return name + std::string(40, '\0') + rest; }

// 24 MiB from 0xE0000000 on for the buses 2 and 3 of segment 5, whose bus 0 would be at the base.
const std::string kMCFG = Table("MCFG", std::string("\0\0\0\xE0\0\0\0\0\x05\0\x02\x03\0\0\0\0", 16));

class StandInDevice : public testing::Test {
  protected:
    void SetUp() override {
        if (!ClFolderOver::IsPossible()) GTEST_SKIP() << "only root can have folders over those of the system";
        m_dev.emplace("/dev");
        m_pci.emplace("/sys/bus/pci");
        m_firmware.emplace("/sys/firmware");
        m_dev->Write("null", "");
        m_service.emplace();
        m_device = OpenDevice();
        ASSERT_NE(m_device, INVALID_HANDLE_VALUE) << GetLastError();
    }
    void TearDown() override {
        if (m_device != INVALID_HANDLE_VALUE) CloseHandle(m_device);
    }

    std::optional<ClFolderOver> m_dev, m_pci, m_firmware;
    std::optional<ClRunningService> m_service;
    HANDLE m_device = INVALID_HANDLE_VALUE;
};

TEST_F(StandInDevice, MemoryIsMovedAtItsPlaceAndNoFurther) {
    std::string before;
    for (int place = 0; place < 3 * 4096; ++place) before += static_cast<char>(place * 7 + place / 256);
    const struct {
        DWORD code;
        uint32_t address, offset, size, place;  // where it is to be
        bool writes;
    } kCases[] = {
        {kReadTables,    0,    0, 4,    0,    false},
        {kReadTables,    4095, 9, 2,    4095, false}, // its address has the offset in it
        {kReadRegisters, 1,    9, 7,    1,    false},
        {kReadStored,    1,    1, 8192, 2,    false},
        {kReadGPIO,      4096, 3, 1,    4099, false},
        {kWriteStored,   4093, 4, 11,   4097, true },
        {kWriteGPIO,     8000, 2, 6,    8002, true },
        {kWriteStored,   0,    0, 1,    0,    true },
    };
    for (const auto& c : kCases) {
        m_dev->Write("mem", before);
        std::string data(c.size, 'x'), after = before;
        if (c.writes) after.replace(c.place, c.size, data);
        Bytes_t record = MemoryRecord(c.address, c.offset, data);
        EXPECT_EQ(Send(m_device, c.code, record), 0u);
        EXPECT_EQ(DataOf(record), c.writes ? data : before.substr(c.place, c.size)) << c.address << " " << c.size;
        EXPECT_EQ(ReadWholeFile("/dev/mem"), after) << c.address << " " << c.size;
    }
}

// Where the process may not run on the processor.
TEST_F(StandInDevice, CPUIDOfAForeignProcessorComesFromItsFile) {
    m_dev->Write("cpu/0/cpuid", "\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F\x10\x11\x12");
    const int result = InChild([this] {
        sock_filter filter[] = {
            BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, __NR_sched_setaffinity, 0, 1),
            BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
            BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        };
        const sock_fprog program = {4, filter};
        if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
            return 99;
        Bytes_t record = Record({0, 0, 0, 0, 0, 2}, 56), beyond = Record({0, 0, 0, 0, 0, 3}, 56);
        EXPECT_EQ(Send(m_device, kCPUID, record), 0u);
        EXPECT_EQ(record, Record({0, 0, 0, 0, 0, 0x06050403, 0x0A090807, 0x0E0D0C0B, 0x1211100F}, 56));
        EXPECT_EQ(Send(m_device, kCPUID, beyond), ERROR_GEN_FAILURE);
        std::filesystem::remove_all("/dev/cpu");
        EXPECT_EQ(Send(m_device, kCPUID, record), ERROR_FILE_NOT_FOUND);
        return HasFailure() ? 1 : 0;
    });
    if (result == 99) GTEST_SKIP() << "no filters for system calls in this kernel";
    EXPECT_EQ(result, 0);
}

TEST_F(StandInDevice, MSRsAreReadAndWrittenAtTheirNumbers) {
    m_dev->Write("cpu/0/msr", "abcd\x01\x02\x03\x04\x05\x06\x07\x08rest");
    Bytes_t read = Record({0, 0, 4, 0, 0}), write = Record({0, 0, 5, 0x64636261, 0x68676665});
    EXPECT_EQ(Send(m_device, kReadMSR, read), 0u);
    EXPECT_EQ(read, Record({0, 0, 4, 0x08070605, 0x04030201}));
    EXPECT_EQ(Send(m_device, kWriteMSR, write), 0u);
    EXPECT_EQ(ReadWholeFile("/dev/cpu/0/msr"),
              "abcd\x01"
              "efghabcdest");
    Bytes_t beyond = Record({0, 0, 9, 0, 0});
    EXPECT_EQ(Send(m_device, kReadMSR, beyond), ERROR_GEN_FAILURE) << "no whole register";
    std::filesystem::remove_all("/dev/cpu");
    EXPECT_EQ(Send(m_device, kReadMSR, read), ERROR_FILE_NOT_FOUND) << "no driver for MSRs";
}

TEST_F(StandInDevice, PCIRegistersAreThoseOfTheFunctionAsOnTheBus) {
    constexpr uint32_t kLocation = 5 << 16 | 1 << 13 | 2 << 8 | 3;
    Bytes_t record = Record({0, kLocation, 0x3C, 4, 0});
    EXPECT_EQ(Send(m_device, kReadPCI, record), ERROR_FILE_NOT_FOUND) << "no bus";
    m_pci->Write("devices/0005:03:02.1/config", Configuration({}).substr(0, 0x40));
    EXPECT_EQ(Send(m_device, kReadPCI, record), 0u);
    EXPECT_EQ(Word(record, 4), 0x3F3E3D3Cu);
    for (const auto& [location, offset] : {
             std::pair{kLocation,     0x40u},
             {kLocation + 1, 0u   }
    }) {
        Bytes_t absent = Record({0, location, offset, 4, 0});
        EXPECT_EQ(Send(m_device, kReadPCIOfGuest, absent), 0u);
        EXPECT_EQ(Word(absent, 4), 0xFFFFFFFFu) << "what isn't there reads as ones";
    }
}

// Where the memory itself can't be had.
TEST_F(StandInDevice, MappedRegistersAreThoseThatMCFGPlacesThere) {
    Bytes_t record = MemoryRecord(0xE0200000, 0, "xxxx");
    EXPECT_EQ(Send(m_device, kReadRegisters, record), ERROR_FILE_NOT_FOUND) << "no memory, no table";
    const std::string last = "devices/0005:02:1f.7/config", next = "devices/0005:03:00.0/config";
    m_firmware->Write("acpi/tables/MCFG", kMCFG);
    m_pci->Write(last, std::string(4096, 'a'));
    m_pci->Write(next, "bcdefgh");
    const struct {
        const char* what;
        uint32_t address;
        const char* data;
        DWORD error;
    } kCases[] = {
        {"before the first bus", 0xE01FFFFF, "xxx",          ERROR_FILE_NOT_FOUND},
        {"no function",          0xE0200000, "\xFF\xFF\xFF", 0                   },
        {"the end of a bus",     0xE02FFFFD, "aaa",          0                   },
        {"from one to the next", 0xE02FFFFE, "aabc",         0                   },
        {"within",               0xE0300001, "cde",          0                   },
        {"behind what it has",   0xE0300006, "h\xFF",        0                   },
        {"out of the last bus",  0xE03FFFFF, "xx",           ERROR_FILE_NOT_FOUND},
    };
    for (const auto& c : kCases) {
        record = MemoryRecord(c.address, 0, std::string(std::strlen(c.data), 'x'));
        EXPECT_EQ(Send(m_device, kReadRegisters, record), c.error) << c.what;
        EXPECT_EQ(DataOf(record), c.data) << c.what;
    }
    record = MemoryRecord(0xE02FFFF0, 15, "XYZ");
    EXPECT_EQ(Send(m_device, kWriteStored, record), 0u);
    EXPECT_EQ(ReadWholeFile("/sys/bus/pci/" + last), std::string(4095, 'a') + "X");
    EXPECT_EQ(ReadWholeFile("/sys/bus/pci/" + next), "YZdefgh");
}

TEST_F(StandInDevice, DynamicWritesGoBehindTheBaseAddressRegister) {
    m_pci->Write("devices/0000:00:03.0/config",
                 Configuration({0x1008, 0x2004, 0, 0x2004, 0x100000, 0x3001}) + std::string(3840, '\0'));
    const struct {
        const char* what;
        uint32_t location, baseOffset, offset;
        DWORD error;
        size_t place;
    } kCases[] = {
        {"32 bits, prefetchable", 3 << 8, 0x10, 5,    0,                       0x1005},
        {"64 bits",               3 << 8, 0x14, 8189, 0,                       0x3FFD},
        {"64 bits, too high",     3 << 8, 0x1C, 0,    ERROR_INVALID_PARAMETER, 0     },
        {"ports",                 3 << 8, 0x24, 0,    ERROR_INVALID_PARAMETER, 0     },
        {"no base",               3 << 8, 0x18, 0,    ERROR_INVALID_PARAMETER, 0     },
        {"no register",           3 << 8, 0x11, 0,    ERROR_INVALID_PARAMETER, 0     },
        {"no function",           4 << 8, 0x10, 0,    ERROR_INVALID_PARAMETER, 0     },
    };
    const std::string before(4 * 4096, '.');
    for (const auto& c : kCases) {
        m_dev->Write("mem", before);
        std::string after = before;
        if (c.error == 0) after.replace(c.place, 3, "abc");
        // The location stands where other memory requests have their address.
        Bytes_t record = MemoryRecord(uint64_t{c.baseOffset} << 32 | c.location, c.offset, "abc");
        EXPECT_EQ(Send(m_device, kWriteDynamic, record), c.error) << c.what;
        EXPECT_EQ(ReadWholeFile("/dev/mem"), after) << c.what;
    }
}

// 0 and the table, or the error.
DWORD Firmware(const char* provider, const char* name, std::string* table) {
    const auto number = [](const char* text) {
        return static_cast<DWORD>(text[0] | text[1] << 8 | text[2] << 16 | text[3] << 24);
    };
    const DWORD of = std::strcmp(provider, "ACPI") == 0 ? 0x41435049 : 0x52534D42;
    const UINT size = GetSystemFirmwareTable(of, number(name), nullptr, 0);
    if (size == 0) return GetLastError();
    table->assign(size + 1, '#');
    EXPECT_EQ(GetSystemFirmwareTable(of, number(name), table->data(), size - 1), size);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(*table, std::string(size + 1, '#')) << "a buffer too small stays as it is";
    EXPECT_EQ(GetSystemFirmwareTable(of, number(name), table->data(), size), size);
    EXPECT_EQ(table->back(), '#');
    table->pop_back();
    return 0;
}

TEST_F(StandInDevice, FirmwareTablesAreThoseThatTheKernelShows) {
    std::string text;
    EXPECT_EQ(Firmware("RSMB", "\0\0\0\0", &text), ERROR_FILE_NOT_FOUND);
    const Bytes_t dump = DumpOf({'t', 'a', 'b', 'l', 'e'}, 3, 5, 32);
    m_firmware->Write("dmi/tables/smbios_entry_point", std::string(dump.begin(), dump.begin() + 24));
    m_firmware->Write("dmi/tables/DMI", "table");
    m_firmware->Write("acpi/tables/MCFG", kMCFG);
    m_firmware->Write("acpi/tables/SSDT1", "the first of several");
    m_firmware->Write("acpi/tables/HUGE", "");
    std::filesystem::resize_file("/sys/firmware/acpi/tables/HUGE", (64u << 20) + 1);
    std::filesystem::create_directory("/sys/firmware/acpi/tables/FOLD");
    const std::string answer("\0\3\5\0\5\0\0\0table", 13);
    const struct {
        const char *provider, *name;
        DWORD error;
        std::string table;
    } kCases[] = {
        {"RSMB", "\0\0\0\0", 0,                         answer                },
        {"RSMB", "\1\0\0\0", ERROR_INVALID_FUNCTION,    ""                    },
        {"ACPI", "MCFG",     0,                         kMCFG                 },
        {"ACPI", "SSDT",     0,                         "the first of several"},
        {"ACPI", "ZZZZ",     ERROR_INVALID_FUNCTION,    ""                    },
        {"ACPI", "../x",     ERROR_INVALID_FUNCTION,    ""                    },
        {"ACPI", "a\0b",     ERROR_INVALID_FUNCTION,    ""                    },
        {"ACPI", "HUGE",     ERROR_INSUFFICIENT_BUFFER, ""                    },
        {"ACPI", "FOLD",     ERROR_GEN_FAILURE,         ""                    },
    };
    for (const auto& c : kCases) {
        text.clear();
        EXPECT_EQ(Firmware(c.provider, c.name, &text), c.error) << c.name;
        EXPECT_EQ(text, c.table) << c.name;
    }
    m_firmware->Write("dmi/tables/smbios_entry_point", "_SMX_");
    EXPECT_EQ(Firmware("RSMB", "\0\0\0\0", &text), ERROR_INVALID_FUNCTION) << "no entry point";
    EXPECT_EQ(GetSystemFirmwareTable(1, 0, nullptr, 0), 0u);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_FUNCTION) << "no such provider";
}

}  // namespace
