// The Linux half of the hardware library. Here files stand in for memory, MSRs, PCI functions and tables; Tests/Machine
// compares real hardware with the kernel's view of it. A folder for each architecture has what only that one does.
#include <gtest/gtest.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/syscall.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "CInterface/quorlin_c.h"
#include "Packages/FERROXExternal/FERROXLib/Obstacles.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/LinuxFERROX.h"
#include "Packages/FERROXExternal/StructureStore/StoreHost.h"
#include "Packages/OS/FirmwareTables.h"
#include "Packages/OS/MemoryMap.h"
#include "Packages/OS/OS.h"
#include "Packages/OS/Processors.h"
#include "Tests/Packages/FERROXLib/LinuxHardware/Hardware.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/Structures.h"

using namespace std::string_literals;

namespace {

TEST_F(Hardware, ImpossibleRequestsAreRefused) {
    static ClBuffer data(16);
    static uint32_t version = 0;
    constexpr uint64_t kEnd = 1ull << 52;
    const struct {
        const char* what;
        status_t status;
        std::function<status_t()> call;
    } kCases[] = {
        {"past the last address",   kRefused, [] { return GetSystemTables(~0ull - 4, 0, data.Get()); }        },
        {"across the last address", kRefused, [] { return PCIMMIORead(kEnd - 15, 0, data.Get()); }            },
        {"beyond it by its offset", kRefused, [] { return PCIMMIOWriteStored(kEnd - 4096, 4081, data.Get()); }},
        {"version",                 kSuccess, [] { return GetFERROXDriverVersion(&version); }                 },
    };
    for (const auto& c : kCases) EXPECT_EQ(c.call(), c.status) << c.what;
    EXPECT_EQ(Text(data), std::string(16, '\xEE'));
    EXPECT_EQ(version, 0x00030000u);
}

TEST(HardwareLife, ClosedLibraryReadsNothing) {
    ClBuffer data(4);
    EXPECT_EQ(PCIRead(0, 0, data.Get()), kRefused);
    EXPECT_EQ(GetSystemTables(4, 0, data.Get()), kRefused);
}

// ---- The non-turbo frequency, with a scripted counter and timer

struct Script_t {
    uint64_t time, timeStep, count, countStep;  // each reading of the timer moves both
    int failingReading = 0;                     // of the counter
    int readings = 0;
};

bool PlayCounter(void* context, uint64_t* count) {
    auto* script = static_cast<Script_t*>(context);
    *count = script->count;
    return ++script->readings != script->failingReading;
}

bool PlayTimer(void* context, uint64_t* ticks) {
    auto* script = static_cast<Script_t*>(context);
    script->time += script->timeStep;
    script->count += script->countStep;
    *ticks = script->time & 0xFFFFFF;
    return true;
}

TEST(NonTurbo, IsTheCountersPaceOrAFailure) {
    constexpr uint64_t kFailed = 0;
    const struct {
        const char* what;
        Script_t script;
        uint64_t perSecond;
    } kCases[] = {
        {"ten counts a tick",           {0, 10, 0, 100},                   35'795'450},
        {"the timer starts again at 0", {0xFFFF00, 10, 0, 100},            35'795'450},
        {"a large counter",             {0, 10, 0x7000'0000'0000'0000, 1}, 357'954   },
        {"a counter that doesn't move", {0, 10, 5, 0},                     kFailed   },
        {"a timer that doesn't move",   {5, 0, 0, 1},                      kFailed   },
        {"a counter that runs back",    {0, 10, 1ull << 40, ~0ull},        kFailed   },
        {"beyond 64 bits",              {0, 40'000, 0, 1ull << 63},        kFailed   },
        {"no counter",                  {0, 10, 0, 100, 1},                kFailed   },
        {"the counter fails later",     {0, 10, 0, 100, 2},                kFailed   },
    };
    for (const auto& c : kCases) {
        Script_t script = c.script;
        uint64_t perSecond = kFailed;
        const Measurement_t measurement = {PlayCounter, PlayTimer, &script, 3'579'545, 0xFFFFFF};
        EXPECT_EQ(MeasurePerSecond(measurement, &perSecond), c.perSecond != kFailed) << c.what;
        EXPECT_EQ(perSecond, c.perSecond) << c.what;
    }
}

// ---- Files stand in for the machine

// A PCI function's configuration space: its vendor, other bytes by their offsets, and base address registers.
std::string Configuration(std::initializer_list<uint32_t> bases) {
    std::string bytes = "\x34\x12";
    while (bytes.size() < 256) bytes += static_cast<char>(bytes.size());
    size_t at = 0x10;
    for (const uint32_t base : bases)
        bytes.replace(std::exchange(at, at + 4), 4, reinterpret_cast<const char*>(&base), 4);
    return bytes;
}

// The buses 2 and 3 of segment 5; its bus 0 would be at 0xE0000000.
const std::string kMCFG = "MCFG\x3C\0\0\0"s + std::string(36, '\0') + "\0\0\0\xE0\0\0\0\0\x05\0\x02\x03\0\0\0\0"s;

TEST_F(StandIns, MemoryIsReadAndWrittenInItsRangeOnly) {
    std::string before;
    for (int place = 0; place < 3 * 4096; ++place) before += static_cast<char>(place * 7 + place / 256);
    const struct {
        status_t (*move)(uint64_t, uint32_t, DataBuffer_t*);
        uint32_t address, offset, size;
        bool writes;
    } kCases[] = {
        {GetSystemTables,    4,    0, 4,    false},
        {GetSystemTables,    4086, 9, 2,    false},
        {PCIMMIORead,        1,    9, 7,    false},
        {PCIMMIOReadStored,  1,    1, 8192, false},
        {MMIOReadGPIO,       4096, 3, 1,    false},
        {PCIMMIOWriteStored, 4093, 4, 10,   true },
        {MMIOWriteGPIO,      8000, 2, 6,    true },
        {PCIMMIOWriteStored, 4,    0, 1,    true },
    };
    for (const auto& c : kCases) {
        m_dev->Write("mem", before);
        const size_t place = c.address + c.offset;
        ClBuffer data(c.size);
        std::string after = before;
        if (c.writes) after.replace(place, c.size, Text(data));
        EXPECT_EQ(c.move(c.address, c.offset, data.Get()), kSuccess) << c.address;
        EXPECT_EQ(Text(data), after.substr(place, c.size)) << c.address << " " << c.size;
        EXPECT_EQ(ReadWholeFile("/dev/mem"), after) << c.address << " " << c.size;
    }
    ClBuffer data(16);
    EXPECT_EQ(PCIMMIOReadStored((1ull << 52) - 4096, 4081, data.Get()), kRefused) << "past the last address";
    ASSERT_EQ(FERROXTerminate(), kSuccess);
    EXPECT_EQ(GetSystemTables(4, 0, data.Get()), kRefused) << "a closed library";
    ASSERT_EQ(FERROXInitialize(), kSuccess);
}

TEST_F(StandIns, PCIRegistersComeFromTheFunctionsFile) {
    constexpr uint32_t kLocation = 5 << 16 | 1 << 13 | 2 << 8 | 3;
    ClBuffer none(4);
    EXPECT_EQ(PCIRead(kLocation, 0x3C, none.Get()), kRefused) << "no bus";
    m_pci->Write("devices/0005:03:02.1/config", Configuration({}).substr(0, 0x40));
    const struct {
        const char* what;
        uint32_t location, offset;
        const char* text;
    } kCases[] = {
        {"a word",                      kLocation,     0x3C, "\x3C\x3D\x3E\x3F"    },
        {"unaligned",                   kLocation,     0x31, "\x31\x32\x33\x34\x35"},
        {"past what the function has",  kLocation,     0x3E, "\x3E\x3F\xFF\xFF"    },
        {"ones where there is nothing", kLocation,     0x40, "\xFF\xFF\xFF\xFF"    },
        {"no function",                 kLocation + 1, 0xFC, "\xFF\xFF\xFF\xFF"    },
        {"no bytes",                    kLocation + 1, 0,    ""                    },
    };
    for (const auto& c : kCases) {
        ClBuffer data(static_cast<uint32_t>(std::strlen(c.text)));
        EXPECT_EQ(PCIRead(c.location, c.offset, data.Get()), kSuccess) << c.what;
        EXPECT_EQ(Text(data), c.text) << c.what;
    }
}

// Without /dev/mem.
TEST_F(StandIns, MappedRegistersComeFromTheFunctionsThatMCFGPlacesThere) {
    ClBuffer none(4);
    EXPECT_EQ(PCIMMIORead(0xE0200000, 0, none.Get()), kRefused) << "no memory, no table";
    const std::string last = "devices/0005:02:1f.7/config", next = "devices/0005:03:00.0/config";
    m_firmware->Write("acpi/tables/MCFG", kMCFG);
    m_pci->Write(last, std::string(4096, 'a'));
    m_pci->Write(next, "bcdefgh");
    const struct {
        const char* what;
        uint32_t address;
        const char* data;
        status_t status;
    } kCases[] = {
        {"before the first bus", 0xE01FFFFF, "\xEE\xEE\xEE", kRefused},
        {"no function",          0xE0200000, "\xFF\xFF\xFF", kSuccess},
        {"the end of a bus",     0xE02FFFFD, "aaa",          kSuccess},
        {"from one to the next", 0xE02FFFFE, "aabc",         kSuccess},
        {"within",               0xE0300001, "cde",          kSuccess},
        {"past what it has",     0xE0300006, "h\xFF",        kSuccess},
        {"out of the last bus",  0xE03FFFFF, "\xEE\xEE",     kRefused},
    };
    for (const auto& c : kCases) {
        ClBuffer data(static_cast<uint32_t>(std::strlen(c.data)));
        EXPECT_EQ(PCIMMIORead(c.address, 0, data.Get()), c.status) << c.what;
        EXPECT_EQ(Text(data), c.data) << c.what;
    }
    ClBuffer written(std::string_view("XYZ"));
    EXPECT_EQ(PCIMMIOWriteStored(0xE02FFFF0, 15, written.Get()), kSuccess);
    EXPECT_EQ(ReadWholeFile("/sys/bus/pci/" + last), std::string(4095, 'a').append("X"));
    EXPECT_EQ(ReadWholeFile("/sys/bus/pci/" + next), "YZdefgh");
}

TEST_F(StandIns, DynamicWritesUseTheBaseAddressRegister) {
    m_pci->Write("devices/0000:00:03.0/config",
                 Configuration({0x1008, 0x2004, 0, 0x2004, 0x100000, 0x3001}) + std::string(3840, '\0'));
    const struct {
        const char* what;
        DynamicMMIORecord_t record;
        status_t status;
        size_t place;
    } kCases[] = {
        {"32 bits, prefetchable", {3 << 8, 0x10, 5},    kSuccess, 0x1005},
        {"64 bits",               {3 << 8, 0x14, 8189}, kSuccess, 0x3FFD},
        {"64 bits, too high",     {3 << 8, 0x1C, 0},    kRefused, 0     },
        {"ports",                 {3 << 8, 0x24, 0},    kRefused, 0     },
        {"no base",               {3 << 8, 0x18, 0},    kRefused, 0     },
        {"no register",           {3 << 8, 0x11, 0},    kRefused, 0     },
        {"no function",           {4 << 8, 0x10, 0},    kRefused, 0     },
    };
    const std::string before(4 * 4096, '.');
    for (const auto& c : kCases) {
        m_dev->Write("mem", before);
        std::string after = before;
        if (c.status == kSuccess) after.replace(c.place, 3, "abc");
        ClBuffer data(std::string_view("abc"));
        EXPECT_EQ(PCIMMIOWriteDynamic(&c.record, data.Get()), c.status) << c.what;
        EXPECT_EQ(ReadWholeFile("/dev/mem"), after) << c.what;
    }
}

// Returns the table, "refused" or "".
std::string Firmware(uint32_t provider, const char* name) {
    uint32_t number;
    std::memcpy(&number, name, sizeof number);
    bool refused = true;
    const uint32_t size = os_GetFirmwareTable(provider, number, nullptr, 0, &refused);
    if (size == 0) return refused ? "refused" : "";
    std::string table(size + 1, '#');
    EXPECT_EQ(os_GetFirmwareTable(provider, number, table.data(), size - 1, nullptr), size);
    EXPECT_EQ(table, std::string(size + 1, '#')) << "a buffer that is too small stays unchanged";
    EXPECT_EQ(os_GetFirmwareTable(provider, number, table.data(), size, nullptr), size);
    EXPECT_EQ(table.back(), '#');
    table.pop_back();
    return table;
}

TEST_F(StandIns, FirmwareTablesComeFromTheKernelsFiles) {
    EXPECT_EQ(Firmware(kSMBIOSProvider, "\0\0\0\0"), "");
    const std::vector<uint8_t> dump = DumpOf({'t', 'a', 'b', 'l', 'e'}, 3, 5, 32);
    m_firmware->Write("dmi/tables/smbios_entry_point", std::string(dump.begin(), dump.begin() + 24));
    m_firmware->Write("dmi/tables/DMI", "table");
    m_firmware->Write("acpi/tables/MCFG", kMCFG);
    m_firmware->Write("acpi/tables/SSDT1", "the first of several");
    m_firmware->Write("acpi/tables/HUGE", "");
    std::filesystem::resize_file("/sys/firmware/acpi/tables/HUGE", (64u << 20) + 1);
    std::filesystem::create_directory("/sys/firmware/acpi/tables/FOLD");
    const struct {
        uint32_t provider;
        const char* name;
        std::string table;
    } kCases[] = {
        {kSMBIOSProvider, "\0\0\0\0", "\0\3\5\0\5\0\0\0table"s},
        {kSMBIOSProvider, "\1\0\0\0", ""                      },
        {kACPIProvider,   "MCFG",     kMCFG                   },
        {kACPIProvider,   "SSDT",     "the first of several"  },
        {kACPIProvider,   "ZZZZ",     ""                      },
        {kACPIProvider,   "../x",     ""                      },
        {kACPIProvider,   "a\0b",     ""                      },
        {kACPIProvider,   "HUGE",     ""                      },
        {kACPIProvider,   "FOLD",     ""                      },
        {1,               "MCFG",     ""                      },
    };
    for (const auto& c : kCases) EXPECT_EQ(Firmware(c.provider, c.name), c.table) << c.name;
    const int result = InChild([] { return BecomeNobody() && Firmware(kACPIProvider, "MCFG") == "refused" ? 0 : 1; });
    EXPECT_EQ(result, 0) << "files that only root may read";
    m_firmware->Write("dmi/tables/smbios_entry_point", "_SMX_");
    EXPECT_EQ(Firmware(kSMBIOSProvider, "\0\0\0\0"), "") << "no entry point";
}

TEST_F(StandIns, EntryAddressesAreThoseOfTheKernelsLines) {
    EntryAddresses_t addresses = {};
    bool refused = true;
    EXPECT_EQ(os_GetEntryAddresses(&addresses, &refused), kFailure) << "no UEFI firmware";
    EXPECT_FALSE(refused);
    const struct {
        const char* lines;
        uint64_t smbios3, smbios;
    } kCases[] = {
        {"ACPI=0x1\nSMBIOS3=0x7f5c0000\nSMBIOS=0xF05b0\n", 0x7F5C0000,         0xF05B0},
        {"SMBIOS=0x10",                                    0,                  0x10   },
        {"SMBIOS3=0xffffffffffffffff\n",                   0xFFFFFFFFFFFFFFFF, 0      },
        {"SMBIOS3=0x10000000000000000\nSMBIOS=0x\n",       0,                  0      },
        {"SMBIOS3=7\nSMBIOS=-1\nXSMBIOS=0x5\n",            0,                  0      },
        {"SMBIOS3=0x12 \nSMBIOS=0x0x12\nSMBIOS=0x3\n",     0,                  3      },
        {"",                                               0,                  0      },
        {"\n\nSMBIOS",                                     0,                  0      },
    };
    for (const auto& c : kCases) {
        m_firmware->Write("efi/systab", c.lines);
        ASSERT_EQ(os_GetEntryAddresses(&addresses, &refused), kSuccess) << c.lines;
        EXPECT_EQ(addresses.smbios3, c.smbios3) << c.lines;
        EXPECT_EQ(addresses.smbios, c.smbios) << c.lines;
    }
    const auto askAsNobody = [&] {
        return BecomeNobody() && os_GetEntryAddresses(&addresses, &refused) == kFailure && refused ? 0 : 1;
    };
    EXPECT_EQ(InChild(askAsNobody), 0) << "a file that only root may read";
}

TEST_F(StandIns, ACPITablesAreListedOncePerFile) {
    EXPECT_EQ(os_ListACPITables(), std::vector<uint32_t>{});
    for (const char* name : {"SSDT2", "FACP", "SSDT1", "dynamic/SSDT9", "ABC"})
        m_firmware->Write(std::string("acpi/tables/") + name, "x");
    std::string names;
    for (const uint32_t table : os_ListACPITables()) names.append(reinterpret_cast<const char*>(&table), 4) += ' ';
    EXPECT_EQ(names, "FACP SSDT SSDT ");
}

TEST_F(StandIns, EachACPITableOfANameIsRead) {
    for (const char* name : {"SSDT1", "SSDT2", "SSDT10", "FACP"})
        m_firmware->Write(std::string("acpi/tables/") + name, name);
    const auto read = [](const char* name, uint32_t place) -> std::string {
        uint32_t number;
        std::memcpy(&number, name, sizeof number);
        std::vector<uint8_t> bytes;
        bool refused = true;
        const bool isRead = os_ReadACPITable(number, place, &bytes, &refused);
        EXPECT_FALSE(refused) << name << place;
        return isRead ? std::string(bytes.begin(), bytes.end()) : "none";
    };
    EXPECT_EQ(read("SSDT", 0), "SSDT1");
    EXPECT_EQ(read("SSDT", 1), "SSDT2");
    EXPECT_EQ(read("SSDT", 9), "SSDT10");
    EXPECT_EQ(read("SSDT", 2), "none");
    EXPECT_EQ(read("FACP", 0), "FACP");
    EXPECT_EQ(read("FACP", 1), "none");
}

TEST_F(StandIns, MemoryIsWhatTheKernelsMapCallsMemory) {
    const std::string kMap =
        "00000000-00000fff : Reserved\n"
        "00001000-0009fbff : System RAM\n"
        "0009fc00-000fffff : Reserved\n"
        "  000a0000-000bffff : PCI Bus 0000:00\n"
        "  000e0000-000fffff : PCI Bus 0000:00\n"
        "    000f0000-000fffff : System ROM\n"
        "00100000-7fffffff : System RAM\n"
        "80000000-8000ffff : ACPI Tables\n"
        "80010000-8001ffff : ACPI Non-volatile Storage\n"
        "80020000-80020fff : ACPI PM1a_EVT_BLK\n"
        "e0000000-efffffff : PCI MMCONFIG 0000 [bus 00-ff]\n"
        "  e0000000-efffffff : Reserved\n"
        "fec00000-fec0ffff : Reserved\n"
        "  fec00000-fec003ff : IOAPIC 0\n"
        "ffffffffffff0000-ffffffffffffffff : Reserved\n";
    const std::string kOddLine = kMap + "more to come\n", kEndless = kMap + std::string(600, '0');
    const std::string kHidden = "00000000-00000000 : Reserved\n  00000000-00000000 : System ROM\n";
    const struct {
        const char* what;
        std::string map;
        uint64_t address, size;
        bool isMemory;
    } kCases[] = {
        {"RAM",                        kMap,     0x1000,             0x1000,  true },
        {"from one to the next",       kMap,     0x9F000,            0x1000,  true },
        {"reserved, up to a device",   kMap,     0x9FC00,            0x400,   true },
        {"one byte into the device",   kMap,     0x9FC00,            0x401,   false},
        {"the ROM in the bus's range", kMap,     0xF0000,            0x10000, true },
        {"one byte before it",         kMap,     0xEFFFF,            2,       false},
        {"ACPI's, both kinds",         kMap,     0x80000000,         0x20000, true },
        {"ACPI's registers",           kMap,     0x8001FFFF,         2,       false},
        {"a gap",                      kMap,     0x80021000,         1,       false},
        {"reserved within a device",   kMap,     0xE0000000,         16,      false},
        {"a device within reserved",   kMap,     0xFEC003FF,         1,       false},
        {"reserved after it",          kMap,     0xFEC00400,         16,      true },
        {"past the last address",      kMap,     0xFFFFFFFFFFFFFFFF, 1,       false},
        {"addresses hidden",           kHidden,  0,                  1,       false},
        {"a line that is none",        kOddLine, 0x1000,             16,      false},
        {"a line that has no end",     kEndless, 0x1000,             16,      false},
        {"no map",                     "",       0x1000,             16,      false},
    };
    const ClFolderOver proc("/proc");
    EXPECT_FALSE(os_IsMemory(0, 1)) << "no file";
    for (const auto& c : kCases) {
        proc.Write("iomem", c.map);
        EXPECT_EQ(os_IsMemory(c.address, c.size), c.isMemory) << c.what;
    }
}

}  // namespace
