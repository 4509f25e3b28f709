#include <cpuid.h>
#include <dirent.h>
#include <gtest/gtest.h>
#include <sched.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "Packages/Platform/Platform.h"
#include "Tests/Support/Linux/Processes.h"

namespace {

using Bytes_t = std::vector<uint8_t>;

Bytes_t FileBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes_t(std::istreambuf_iterator<char>(file), {});
}

std::vector<std::string> NamesIn(const char* path) {
    std::vector<std::string> names;
    if (DIR* folder = opendir(path)) {
        while (const dirent* entry = readdir(folder))
            if (entry->d_type != DT_DIR && entry->d_name[0] != '.') names.push_back(entry->d_name);
        closedir(folder);
    }
    return names;
}

void Put(Bytes_t& bytes, size_t offset, uint64_t value, size_t width) { std::memcpy(&bytes[offset], &value, width); }

uint32_t Word(const Bytes_t& bytes, size_t offset) {
    uint32_t value;
    std::memcpy(&value, &bytes[offset], sizeof value);
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

Bytes_t CPUIDRecord(uint32_t cpu, uint32_t leaf) {
    Bytes_t record(56);
    Put(record, 4, cpu, 4);
    Put(record, 20, leaf, 4);
    return record;
}

Bytes_t MemoryRecord(uint64_t address, uint32_t size) {
    Bytes_t record(24 + size, 0xA5);
    Put(record, 0, 0, 4);
    Put(record, 4, 256, 4);
    Put(record, 8, address, 8);
    Put(record, 16, 0, 4);
    Put(record, 20, size, 4);
    return record;
}

// The PCI functions of this machine: location, and configuration space as the kernel shows it.
struct Function_t {
    uint32_t location;
    std::string path;
};
std::vector<Function_t> Functions() {
    std::vector<Function_t> functions;
    for (const std::string& name : NamesIn("/sys/bus/pci/devices")) {
        unsigned segment, bus, device, function;
        if (std::sscanf(name.c_str(), "%x:%x:%x.%x", &segment, &bus, &device, &function) == 4 && segment < 0x10000)
            functions.push_back(
                {segment << 16 | function << 13 | device << 8 | bus, "/sys/bus/pci/devices/" + name + "/config"});
    }
    return functions;
}

}  // namespace

// The device is there while its service runs.
class Device : public testing::Test {
  protected:
    void SetUp() override {
        m_manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
        EXPECT_EQ(OpenDevice(), INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
        m_service = Start(m_manager);
        m_device = OpenDevice();
        ASSERT_NE(m_device, INVALID_HANDLE_VALUE) << GetLastError();
    }
    void TearDown() override {
        SERVICE_STATUS status;
        CloseHandle(m_device);
        ControlService(m_service, SERVICE_CONTROL_STOP, &status);
        DeleteService(m_service);
        CloseServiceHandle(m_service);
        CloseServiceHandle(m_manager);
    }
    static SC_HANDLE Start(SC_HANDLE manager) {
        SC_HANDLE service = CreateServiceA(manager, "Ravelink", "Ravelink", SERVICE_ALL_ACCESS, SERVICE_KERNEL_DRIVER,
                                           SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL, "/dev/null", nullptr, nullptr,
                                           nullptr, nullptr, nullptr);
        StartServiceA(service, 0, nullptr);
        return service;
    }

    SC_HANDLE m_manager = nullptr, m_service = nullptr;
    HANDLE m_device = INVALID_HANDLE_VALUE;
};

TEST_F(Device, CPUIDIsTheInstructionOnTheProcessorAskedFor) {
    for (const uint32_t leaf : {0u, 0x80000002u}) {
        uint32_t words[4];
        __cpuid_count(leaf, 0, words[0], words[1], words[2], words[3]);
        Bytes_t record = CPUIDRecord(256, leaf);
        ASSERT_EQ(Send(m_device, 0x80240000, record), 0u);
        EXPECT_EQ(std::memcmp(&record[20], words, sizeof words), 0) << leaf;
    }
    cpu_set_t before, after;
    sched_getaffinity(0, sizeof before, &before);
    std::set<uint32_t> identities;  // each processor has an APIC number of its own
    const DWORD count = GetActiveProcessorCount(ALL_PROCESSOR_GROUPS);
    for (uint32_t cpu = 0; cpu < count; ++cpu) {
        Bytes_t record = CPUIDRecord(cpu, 1);
        ASSERT_EQ(Send(m_device, 0x80240000, record), 0u);
        identities.insert(Word(record, 24) >> 24);
    }
    EXPECT_EQ(identities.size(), count < 256 ? count : 256);
    sched_getaffinity(0, sizeof after, &after);
    EXPECT_TRUE(CPU_EQUAL(&before, &after));
    Bytes_t record = CPUIDRecord(count, 1);
    EXPECT_EQ(Send(m_device, 0x80240000, record), ERROR_INVALID_PARAMETER);
}

TEST_F(Device, PCIRegistersAreThoseThatTheKernelShows) {
    if (Functions().empty()) GTEST_SKIP() << "this machine has no PCI";
    for (const Function_t& function : Functions()) {
        const Bytes_t shown = FileBytes(function.path);
        for (uint32_t offset = 0; offset + 4 <= 64; offset += 4) {
            Bytes_t record(20);
            Put(record, 4, function.location, 4);
            Put(record, 8, offset, 4);
            Put(record, 12, 4, 4);
            ASSERT_EQ(Send(m_device, offset % 8 == 0 ? 0x80240048 : 0x802400F4, record), 0u);
            EXPECT_EQ(std::memcmp(&record[16], &shown[offset], 4), 0) << function.path << " " << offset;
        }
    }
    const struct {
        const char* what;
        uint32_t location, offset, size;
        DWORD error;
        uint32_t data;
    } kCases[] = {
        {"no such function reads as ones", 0xFFFFF0FF, 0,   4, 0,                       0xFFFFFFFF},
        {"odd offset",                     0,          2,   4, ERROR_INVALID_PARAMETER, 0         },
        {"other size",                     0,          0,   2, ERROR_INVALID_PARAMETER, 0         },
        {"beyond the space",               0,          256, 4, ERROR_INVALID_PARAMETER, 0         },
    };
    for (const auto& c : kCases) {
        Bytes_t record(20);
        Put(record, 4, c.location, 4);
        Put(record, 8, c.offset, 4);
        Put(record, 12, c.size, 4);
        EXPECT_EQ(Send(m_device, 0x80240048, record), c.error) << c.what;
        EXPECT_EQ(Word(record, 16), c.data) << c.what;
    }
}

TEST_F(Device, MappedConfigurationSpaceIsThatWhichTheKernelShows) {
    const Bytes_t table = FileBytes("/sys/firmware/acpi/tables/MCFG");
    if (table.size() < 60) GTEST_SKIP() << "this machine has no MCFG table, or it is not for this user";
    uint64_t base;
    std::memcpy(&base, &table[44], sizeof base);
    for (const Function_t& function : Functions()) {
        const uint32_t bus = function.location & 0xFF, within = function.location >> 8 & 0xFF;
        if (function.location >> 16 != 0) continue;
        const uint64_t address = base + (uint64_t{bus} << 20) + (uint64_t{(within & 0x1F) << 3 | within >> 5} << 12);
        const Bytes_t shown = FileBytes(function.path);
        for (const auto& [offset, size] : {
                 std::pair{0u,  4u },
                 {1u,  1u },
                 {3u,  5u },
                 {0u,  64u},
                 {61u, 3u }
        }) {
            Bytes_t record = MemoryRecord(address + offset, size);
            ASSERT_EQ(Send(m_device, 0x80240114, record), 0u) << function.path;
            EXPECT_EQ(std::memcmp(&record[24], &shown[offset], size), 0) << function.path << " " << offset;
        }
    }
}

TEST_F(Device, EachRequestTakesNoLessThanItsRecord) {
    const struct {
        DWORD code, inSize, outSize;
        bool hasData;
    } kRequests[] = {
        {0x80240000, 56, 56, false},
        {0x80240004, 0,  4,  false},
        {0x80240034, 20, 20, false},
        {0x80240040, 20, 20, false},
        {0x80240048, 20, 20, false},
        {0x80240090, 0,  4,  false},
        {0x80240094, 0,  4,  false},
        {0x80240098, 0,  4,  false},
        {0x8024009C, 20, 20, false},
        {0x802400F4, 20, 20, false},
        {0x802400FC, 24, 24, true },
        {0x80240104, 24, 24, true },
        {0x80240108, 24, 24, true },
        {0x8024010C, 24, 24, true },
        {0x80240110, 24, 24, true },
        {0x80240114, 24, 24, true },
        {0x80240118, 24, 24, true },
        {0x80244074, 20, 20, false},
        {0x80244080, 20, 20, false},
    };
    const auto send = [this](DWORD code, DWORD inSize, DWORD outSize) -> DWORD {
        Bytes_t in = MemoryRecord(0xF0000, 16), out(64, 0xA5);
        DWORD returned = 77;
        const BOOL done = DeviceIoControl(m_device, code, in.data(), inSize, out.data(), outSize, &returned, nullptr);
        const DWORD error = done ? 0 : GetLastError();
        EXPECT_TRUE(done || (out == Bytes_t(64, 0xA5) && returned == 77)) << "a refused request wrote something";
        return error;
    };
    for (const auto& r : kRequests) {
        const DWORD data = r.hasData ? 16 : 0;  // the record asks for 16 bytes of data
        const DWORD shortIn = r.inSize == 0 ? ERROR_INSUFFICIENT_BUFFER : send(r.code, r.inSize + data - 1, 64);
        EXPECT_EQ(shortIn, ERROR_INSUFFICIENT_BUFFER) << std::hex << r.code;
        EXPECT_EQ(send(r.code, 40, r.outSize + data - 1), ERROR_INSUFFICIENT_BUFFER) << std::hex << r.code;
    }
    EXPECT_EQ(send(0x80240008, 40, 64), ERROR_INVALID_FUNCTION);
    Bytes_t huge = MemoryRecord(0xF0000, 16);
    Put(huge, 20, 0xFFFFFFF0, 4);
    EXPECT_EQ(Send(m_device, 0x80240118, huge), ERROR_INSUFFICIENT_BUFFER);
    Bytes_t beyond = MemoryRecord(~0ull - 4, 16);
    EXPECT_EQ(Send(m_device, 0x80240118, beyond), ERROR_INVALID_PARAMETER);
    Bytes_t version(4);
    DWORD returned = 0;
    EXPECT_TRUE(DeviceIoControl(m_device, 0x80240004, nullptr, 0, version.data(), 4, &returned, nullptr));
    EXPECT_EQ(Word(version, 0), 0x00030000u);
}

TEST_F(Device, AHandleMustHaveBeenOpenedForReading) {
    HANDLE writer = OpenDevice(GENERIC_WRITE);
    Bytes_t port(20);
    EXPECT_EQ(Send(writer, 0x80244074, port), ERROR_ACCESS_DENIED);
    CloseHandle(writer);
    HANDLE file = CreateFileA("/dev/null", GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(Send(file, 0x80240034, port), ERROR_INVALID_HANDLE);
    CloseHandle(file);
}

// Refused one by one, with one clear error; CPUID needs no rights. In that user's own register the service is another.
TEST_F(Device, AUserWithoutRightsGetsCPUIDAndRefusals) {
    const int result = InChild([] {
        if (!BecomeNobody()) return 99;
        SC_HANDLE manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
        SC_HANDLE service = Start(manager);
        HANDLE device = OpenDevice();
        Bytes_t cpuid = CPUIDRecord(256, 0), memory = MemoryRecord(0xF0000, 16), port(20);
        Put(port, 8, 0x80, 4);
        Put(port, 12, 1, 4);
        int failed = device == INVALID_HANDLE_VALUE ? 1 : 0;
        if (Send(device, 0x80240000, cpuid) != 0) failed = 2;
        // A kernel may also have been built without the one or the other.
        const DWORD portError = Send(device, 0x80240034, port), memoryError = Send(device, 0x80240118, memory);
        if (portError != ERROR_ACCESS_DENIED && portError != ERROR_NOT_SUPPORTED) failed = 3;
        if (memoryError != ERROR_ACCESS_DENIED && memoryError != ERROR_FILE_NOT_FOUND) failed = 4;
        if (memory[24] != 0xA5) failed = 5;
        SERVICE_STATUS status;
        ControlService(service, SERVICE_CONTROL_STOP, &status);
        DeleteService(service);
        CloseServiceHandle(service);
        return failed;
    });
    if (result == 99) GTEST_SKIP() << "only root can become another user";
    EXPECT_EQ(result, 0);
}

TEST(FirmwareTables, ACPITablesAreThoseThatTheKernelShows) {
    int read = 0;
    for (const std::string& name : NamesIn("/sys/firmware/acpi/tables")) {
        const Bytes_t shown = FileBytes("/sys/firmware/acpi/tables/" + name);
        if (name.size() != 4 || shown.empty()) continue;
        DWORD id;
        std::memcpy(&id, name.data(), 4);
        const UINT size = GetSystemFirmwareTable(0x41435049, id, nullptr, 0);
        ASSERT_EQ(size, shown.size()) << name;
        Bytes_t table(size + 1, 0xA5);
        EXPECT_EQ(GetSystemFirmwareTable(0x41435049, id, table.data(), size - 1), size);
        EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
        EXPECT_EQ(table[0], 0xA5) << "a buffer too small stays as it is";
        EXPECT_EQ(GetSystemFirmwareTable(0x41435049, id, table.data(), size), size);
        EXPECT_EQ(table.back(), 0xA5);
        table.pop_back();
        EXPECT_EQ(table, shown) << name;
        ++read;
    }
    for (const char* name : {"ZZZZ", "../x", "a\0b"}) {
        DWORD id;
        std::memcpy(&id, name, 4);
        EXPECT_EQ(GetSystemFirmwareTable(0x41435049, id, nullptr, 0), 0u) << name;
    }
    if (read == 0) GTEST_SKIP() << "this machine has no ACPI tables for this user";
}
