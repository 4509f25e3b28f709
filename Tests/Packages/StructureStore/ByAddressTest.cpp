// The table at the address that UEFI firmware gave to the system, on a machine of the test's own.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/StructureStore/StoreHost.h"
#include "Packages/Format/TableFile.h"
#include "Packages/OS/OS.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/Structures.h"

namespace {

using Bytes_t = std::vector<uint8_t>;

constexpr uint64_t kHigh = 1ull << 40, kLow = 0x7F000000, kDevice = 0xFEC00000;
constexpr uint32_t kFree = 8u << 20;  // bytes of memory from kHigh and from kLow on; all other addresses are a device's

// What the machine has. Reads stay within memory.
struct Machine_t {
    std::map<uint64_t, Bytes_t> blocks;
    EntryAddresses_t addresses = {};
    status_t status = kSuccess;  // of reading the addresses
    bool refused = false;
    uint64_t unreadable = 0;  // the first byte of a block that the system keeps for itself
    uint32_t largestRead = 0, starts = 0;
} machine;

bool IsMemory(uint64_t address, uint64_t size) {
    return std::ranges::any_of(std::initializer_list<uint64_t>{kHigh, kLow}, [&](uint64_t begin) {
        return address >= begin && address - begin <= kFree && size <= kFree - (address - begin);
    });
}

status_t Read(uint64_t address, uint32_t offset, DataBuffer_t* buffer) {
    EXPECT_TRUE(IsMemory(address + offset, buffer->Size)) << "a device is read at " << address;
    machine.largestRead = std::max(machine.largestRead, buffer->Size);
    if (address == machine.unreadable) {
        NoteRefusal(Refusal_t::kRights);
        return 0;
    }
    std::memset(buffer->Data(), 0xA5, buffer->Size);
    for (const auto& [begin, bytes] : machine.blocks)
        for (size_t at = 0; at < bytes.size(); at++)
            if (begin + at >= address && begin + at - address < buffer->Size)
                buffer->Data()[begin + at - address] = bytes[at];
    return kSuccess;
}

status_t GetAddresses(EntryAddresses_t* addresses, bool* refused) {
    *addresses = machine.addresses;
    *refused = machine.refused;
    return machine.status;
}

const Bytes_t& Table() {
    static const Bytes_t table = TableOf({ClStructureBuilder(3, 9), ClStructureBuilder(32, 11)});
    return table;
}

// An entry point for the table at an address. A length of 0 is the table's.
Bytes_t EntryPoint(uint8_t major, uint64_t table, uint32_t length = 0) {
    Bytes_t dump = DumpOf(Table(), major, 1, table);
    dump.resize(kTableOffset);
    const bool is64 = major >= 3;
    if (length != 0) std::memcpy(&dump[is64 ? 0x0C : 0x16], &length, is64 ? 4 : 2);
    SetChecksums(dump);
    return dump;
}

Bytes_t Damaged(Bytes_t bytes, size_t place) {
    bytes[place] ^= 1;
    return bytes;
}

struct Found_t {
    uint8_t entry[kEntryBufferSize] = {};
    uint8_t dmiEntry[kDMIEntryBufferSize] = {};
    SMBIOSTableImage_t* image = nullptr;
    MemoryEnd_t end;

    Found_t() { end = ReadByAddress(entry, dmiEntry, &image); }
    ~Found_t() { os_FreeBlock(image); }
    Found_t(const Found_t&) = delete;
    Found_t& operator=(const Found_t&) = delete;
    Bytes_t Bytes() const { return {image->Data(), image->Data() + image->Length}; }
};

class ByAddress : public testing::Test {
  protected:
    void SetUp() override {
        machine = {};
        machine.blocks[kHigh + 0x1000] = Table();
        machine.blocks[kLow + 0x1000] = Table();
        static HardwareServices_t services = {};
        services.OSFERROXInitialize = services.OSFERROXTerminate = [] {
            machine.starts++;
            return kSuccess;
        };
        services.OSGetSystemTables = Read;
        services.IsMemory = IsMemory;
        services.GetEntryAddresses = GetAddresses;
        m_services = &services;
        UseHardware(services);
    }
    void TearDown() override { UseHardware(kThisHardware); }

    HardwareServices_t* m_services = nullptr;
};

TEST_F(ByAddress, LeadsToATableOrSaysWhyNot) {
    using enum MemoryEnd_t;
    const Bytes_t none, good64 = EntryPoint(3, kHigh + 0x1000), good32 = EntryPoint(2, kLow + 0x1000),
                        bad64 = Damaged(good64, 6), bad32 = Damaged(good32, 9), badDMI = Damaged(good32, 0x1C),
                        noAnchor = Damaged(good64, 3), ofDevice = EntryPoint(3, kDevice), ofZero = EntryPoint(3, 0),
                        ofTop = EntryPoint(3, UINT64_MAX), intoDevice64 = EntryPoint(3, kHigh + kFree - 9, 10),
                        intoDevice32 = EntryPoint(2, kLow + kFree - 0xFFFE, 0xFFFF);
    const struct {
        const char* what;
        Bytes_t at64, at32;  // what is at the two addresses; without bytes, the firmware gave none
        MemoryEnd_t end;
        uint8_t major;  // of the entry point that counts
    } kCases[] = {
        {"the 64-bit one first",    good64,       good32,       kFound,        3},
        {"a 64-bit one alone",      good64,       none,         kFound,        3},
        {"a 32-bit one alone",      none,         good32,       kFound,        2},
        {"no address",              none,         none,         kNoEntryPoint, 0},
        {"a wrong checksum",        bad64,        good32,       kFound,        2},
        {"of the first part",       none,         bad32,        kNoEntryPoint, 0},
        {"of the second part",      none,         badDMI,       kNoEntryPoint, 0},
        {"another anchor",          noAnchor,     none,         kNoEntryPoint, 0},
        {"32 bits in place of 64",  good32,       none,         kNoEntryPoint, 0},
        {"a table in a device",     ofDevice,     none,         kElsewhere,    0},
        {"another in memory",       ofDevice,     good32,       kFound,        2},
        {"a table at 0",            ofZero,       none,         kElsewhere,    0},
        {"at the last address",     ofTop,        none,         kElsewhere,    0},
        {"a last byte in a device", intoDevice64, none,         kElsewhere,    0},
        {"the same for 32 bits",    none,         intoDevice32, kElsewhere,    0},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.what);
        machine.blocks[kHigh] = c.at64;
        machine.blocks[kLow] = c.at32;
        machine.addresses = {c.at64.empty() ? 0 : kHigh, c.at32.empty() ? 0 : kLow};
        const Found_t found;
        EXPECT_EQ(found.end, c.end);
        ASSERT_EQ(found.image != nullptr, c.end == MemoryEnd_t::kFound);
        if (found.image == nullptr) continue;
        EXPECT_EQ(found.Bytes(), Table());
        EXPECT_EQ(found.entry[6], c.major);
        EXPECT_EQ(found.entry[7], 1);
        EXPECT_EQ(found.dmiEntry[14], c.major == 2 ? 0x21 : 0);
    }
}

// A 64-bit entry point states the most that the table may have. Firmware may state any number.
TEST_F(ByAddress, ReadsNoMoreThanATableMayHave) {
    machine.addresses.smbios3 = kHigh;
    for (const uint32_t length : {uint32_t{4096}, uint32_t{kMostTableBytes}, UINT32_MAX}) {
        machine.blocks[kHigh] = EntryPoint(3, kHigh + 0x1000, length);
        const Found_t found;
        ASSERT_EQ(found.end, MemoryEnd_t::kFound) << length;
        EXPECT_EQ(found.Bytes(), Table()) << length;
        EXPECT_EQ(machine.largestRead, std::min<size_t>(length, kMostTableBytes));
    }
    machine.blocks[kHigh + 0x1000].resize(Table().size() - 6);  // without End-of-Table
    machine.blocks[kHigh] = EntryPoint(3, kHigh + 0x1000, 4096);
    EXPECT_EQ(Found_t().image->Length, 4096u);
}

TEST_F(ByAddress, OfAnEntryPointOutsideMemoryReadsNothing) {
    for (const uint64_t address : {uint64_t{1}, kDevice, kLow - 1, kHigh + kFree - 23, UINT64_MAX - 22, UINT64_MAX}) {
        machine.addresses = {address, 0};
        EXPECT_EQ(Found_t().end, MemoryEnd_t::kElsewhere) << address;
        machine.addresses = {0, address};
        EXPECT_EQ(Found_t().end, MemoryEnd_t::kElsewhere) << address;
    }
    EXPECT_EQ(machine.largestRead, 0u);
    machine.addresses = {kHigh, kLow};
    machine.blocks[kHigh] = EntryPoint(3, kHigh + 0x1000);
    m_services->IsMemory = nullptr;
    EXPECT_EQ(Found_t().end, MemoryEnd_t::kElsewhere) << "no map of memory";
}

TEST_F(ByAddress, TellsWhoRefuses) {
    machine.addresses = {kHigh, kLow};
    machine.blocks[kHigh] = EntryPoint(3, kHigh + 0x1000);
    for (const uint64_t unreadable : {kHigh, kHigh + 0x1000}) {
        machine.unreadable = unreadable;
        machine.addresses.smbios = 0;
        EXPECT_EQ(Found_t().end, MemoryEnd_t::kUnreadable) << unreadable;
        EXPECT_EQ(LastRefusal(), Refusal_t::kRights);
        machine.addresses.smbios = kLow;
        machine.blocks[kLow] = EntryPoint(2, kLow + 0x1000);
        EXPECT_EQ(Found_t().end, MemoryEnd_t::kFound) << "the other entry point is in memory that may be read";
    }
    const struct {
        const char* what;
        status_t status;
        bool refused;
        MemoryEnd_t end;
        Refusal_t refusal;
    } kCases[] = {
        {"a user without rights", kFailure,  true,  MemoryEnd_t::kUnreadable,  Refusal_t::kRights},
        {"other firmware",        kFailure,  false, MemoryEnd_t::kNoAddresses, Refusal_t::kOther },
        {"no room",               kNoMemory, false, MemoryEnd_t::kNoRoom,      Refusal_t::kOther },
    };
    for (const auto& c : kCases) {
        machine.status = c.status;
        machine.refused = c.refused;
        EXPECT_EQ(Found_t().end, c.end) << c.what;
        EXPECT_EQ(LastRefusal(), c.refusal) << c.what;
    }
}

TEST_F(ByAddress, StartsNoDriverWhereTheSystemHasNoAddresses) {
    machine.status = kNotSupported;
    EXPECT_EQ(ThisMachineByEfi()->FERROXInitialize(), kNotSupported);
    m_services->GetEntryAddresses = nullptr;
    EXPECT_EQ(ThisMachineByEfi()->FERROXInitialize(), kNotSupported);
    EXPECT_EQ(machine.starts, 0u);
    m_services->GetEntryAddresses = GetAddresses;
    machine.status = kFailure;
    EXPECT_EQ(ThisMachineByEfi()->FERROXInitialize(), kSuccess);
    EXPECT_EQ(ThisMachineByEfi()->FERROXTerminate(), kSuccess);
}

}  // namespace
