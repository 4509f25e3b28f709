// The scan of the BIOS area, the second access method for the table.
#include <cstring>

#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/FERROXExternal/StructureStore/StoreHost.h"
#include "Packages/OS/OS.h"
#include "Tests/Packages/FERROXLib/Library.h"

namespace {

using Scan = ClLibraryTest;
using ScanFailures = ClMachineTest;

struct Found_t {
    status_t status;
    uint8_t entry[kEntryBufferSize] = {};
    uint8_t dmiEntry[kDMIEntryBufferSize] = {};
    SMBIOSTableImage_t* image = nullptr;

    Found_t() { status = osGetStructuresDataNonEFI(entry, dmiEntry, &image); }
    ~Found_t() { os_FreeBlock(image); }
    Found_t(const Found_t&) = delete;
    Found_t& operator=(const Found_t&) = delete;
};

}  // namespace

TEST_F(Scan, FindsBothAnchorsAnywhereInTheArea) {
    const struct {
        const char* what;
        std::vector<uint64_t> entries, dmis;
        status_t status;
        size_t reads;   // of the scan and of the table
        uint8_t entry;  // the index of the entry point that is found
    } kCases[] = {
        {"one block",                       {0xF0000},                   {0xF0010},          1, 2,  0},
        {"first and last block",            {0xF0000},                   {0xFF000},          1, 17, 0},
        {"last block before first",         {0xFF000},                   {0xF0000},          1, 17, 0},
        {"end of a block",                  {0xF0FF0},                   {0xF1000},          1, 3,  0},
        {"last place of all",               {0xF5550},                   {0xFFFF0},          1, 17, 0},
        {"not on a boundary",               {0xF0000},                   {0xF0018},          5, 16, 0},
        {"_DMI_ alone",                     {},                          {0xF0010},          5, 16, 0},
        {"_SM_ alone",                      {0xF0010},                   {},                 5, 16, 0},
        {"below the area",                  {0xEFFF0},                   {0xF0010},          5, 16, 0},
        {"stops at once",                   {0xF0000, 0xF3000},          {0xF0010, 0xF4000}, 1, 2,  0},
        {"later ones until both are found", {0xF0000, 0xF2000, 0xF3010}, {0xF3000},          1, 5,  1},
    };
    for (const auto& c : kCases) {
        Machine().memory.clear();
        Machine().requests.clear();
        for (uint8_t minor = 1; const uint64_t place : c.entries) PutEntry(place, minor++);
        for (const uint64_t place : c.dmis) PutDMI(place);
        const Found_t found;
        EXPECT_EQ(found.status, c.status) << c.what;
        EXPECT_EQ(Machine().requests.size(), c.reads) << c.what;
        EXPECT_EQ(found.image != nullptr, c.status == kSuccess) << c.what;
        if (c.status != kSuccess) continue;
        EXPECT_EQ(found.entry[7], c.entry + 1) << c.what;
        EXPECT_EQ(Hex(std::span(found.entry).subspan(8)), "09 0a 0b 0c 0d 0e 0f 10") << c.what;
        EXPECT_EQ(Hex(found.dmiEntry), "5f 44 4d 49 5f 00 05 00 00 f0 09 00 01 00 28") << c.what;
        EXPECT_EQ(found.image->Length, 5u) << c.what;
        EXPECT_EQ(Hex({found.image->Data(), 5}), "00 01 02 03 04") << c.what;  // memory reads as its address
        EXPECT_EQ(Machine().requests.back().Number(8, 8), kTable) << c.what;
    }
}

TEST_F(ScanFailures, GiveTheirStatusAndNoImage) {
    const struct {
        const char* what;
        size_t length;
        uint32_t table;
        int failingRead;  // counted with the hypervisor test
        size_t failingAllocation;
        status_t status;
        size_t reads;
        bool hasNoMap = false;
    } kCases[] = {
        {"nothing",      5,  kTable,     0,          0,   1,   3 },
        {"first block",  5,  kTable,     2,          0,   5,   0 },
        {"second block", 5,  kTable,     3,          0,   5,   1 },
        {"the table",    5,  kTable,     4,          0,   5,   2 },
        {"length 0",     0,  kTable,     0,          0,   5,   2 },
        {"address 0",    5,  0,          0,          0,   5,   2 },
        {"up to 4 GiB",  16, 0xFFFFFFF0, 0,          0,   1,   3 }, // no table is above it
        {"across 4 GiB", 17, 0xFFFFFFF0, 0,          0,   5,   2 },
        {"no map",       5,  kTable,     0,          0,   5,   2,  true},
        {"no buffer",              5,      kTable,  0, 4100,  3, 0},
        {"no request",              5,     kTable, 0, 4120,   5,  0},
        {"no image",              5,       kTable,   0, 9, 3,   2   },
    };
    for (const auto& c : kCases) {
        NewMachine();
        ASSERT_EQ(FERROXInitialize(), kSuccess);
        Machine().requests.clear();
        PutEntry(0xF0000);
        PutDMI(0xF1000, c.length, c.table);
        if (c.failingRead != 0) Machine().failCalls = {"DeviceIoControl#" + std::to_string(c.failingRead)};
        ClScriptedWindows::failAllocationOf = c.failingAllocation;
        HardwareServices_t hardware = kThisHardware;
        if (c.hasNoMap) hardware.IsMemory = nullptr;
        UseHardware(hardware);
        const Found_t found;
        UseHardware(kThisHardware);
        EXPECT_EQ(found.status, c.status) << c.what;
        EXPECT_EQ(found.image != nullptr, c.status == kSuccess) << c.what;
        EXPECT_EQ(Machine().requests.size(), c.reads) << c.what;
        ClScriptedWindows::failAllocationOf = 0;
        ASSERT_EQ(FERROXTerminate(), kSuccess);
    }
}

// As on ARM64, where other things may be at that address.
TEST_F(Scan, AMachineWithoutABIOSAreaIsNotRead) {
    ASSERT_EQ(FERROXInitialize(), kSuccess);
    PutEntry(0xF0000);
    PutDMI(0xF1000, 5, kTable);
    Machine().requests.clear();
    HardwareServices_t hardware = kThisHardware;
    hardware.HasBIOSArea = [] { return false; };
    UseHardware(hardware);
    uint8_t entry[kEntryBufferSize] = {}, dmiEntry[kDMIEntryBufferSize] = {};
    SMBIOSTableImage_t* image = nullptr;
    EXPECT_EQ(ScanMemory(entry, dmiEntry, &image), MemoryEnd_t::kNoArea);
    EXPECT_EQ(osGetStructuresDataNonEFI(entry, dmiEntry, &image), kFailure);
    UseHardware(kThisHardware);
    EXPECT_EQ(image, nullptr);
    EXPECT_TRUE(Machine().requests.empty());
    ASSERT_EQ(FERROXTerminate(), kSuccess);
}
