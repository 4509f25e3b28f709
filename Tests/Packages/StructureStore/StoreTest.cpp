// The store: its walk over good and bad tables, its records, its set-up and tear-down.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/FERROXExternal/StructureStore/ParsedRecords.h"
#include "Packages/FERROXExternal/StructureStore/StoreParts.h"
#include "Packages/OS/OS.h"
#include "Tests/Support/Structures.h"

using namespace std::string_literals;

namespace {

using Bytes_t = std::vector<uint8_t>;

// A store with this table, open while the object lives.
class ClStore {
  public:
    explicit ClStore(const Bytes_t& table) : m_table(table) {
        const ImageSource_t source = {m_table.data(), static_cast<uint32_t>(m_table.size()), 2, 7, 0};
        EXPECT_EQ(SetImageMachine(&source), kSuccess);
        EXPECT_EQ(LibSMBIOSInit(entry), kSuccess);
    }
    ~ClStore() { EXPECT_EQ(LibSMBIOSExit(), kSuccess); }

    std::vector<uint8_t*> Records(uint32_t type) const {
        uint8_t** array = nullptr;
        uint8_t count = 0;
        EXPECT_EQ(GetSMBIOSStruture(type, &array, &count), kSuccess);
        std::vector<uint8_t*> records(array, array + count);
        EXPECT_EQ(array == nullptr, count == 0);
        os_FreeBlock(array);
        return records;
    }
    uint8_t entry[kEntryBufferSize] = {};

  private:
    Bytes_t m_table;
};

TEST(Walk, StopsWhereTheTableEnds) {
    const std::string k32 = "\x20\x04\0\0\0\0"s, k33 = "\x21\x04\0\0\0\0"s, k126 = "\x7E\x04\0\0\0\0"s,
                      kEnd = "\x7F\x04\0\0\0\0"s;
    const struct {
        const char* what;
        std::string table, types;  // of the structures that are found, in rising order
    } kCases[] = {
        {"nothing",                                           "",                       ""      },
        {"an End-of-Table structure alone",                   kEnd,                     ""      },
        {"no End-of-Table structure",                         k32 + k33,                "32 33 "},
        {"what follows End-of-Table isn't read",              k32 + kEnd + k33,         "32 "   },
        {"type 126 is a structure like others",               k126 + kEnd,              "126 "  },
        {"a header cut short is dropped",                     k32 + "\x21\x04\0"s,      "32 "   },
        {"a structure without its double NUL is kept",        k32 + "\x21\x06\0\0zz"s,  "32 33 "},
        {"a Length past the table's end",                     "\x20\xFF\0\0zz"s,        "32 "   },
        {"a Length of 0: the search begins at the structure", "\x20\0\1\1a\0\0"s + k33, "32 33 "},
        {"zeros are structures of type 0",                    "\0\0\0\0\0\0\0\0"s,      "0 0 0 "},
    };
    for (const auto& c : kCases) {
        const ClStore store({c.table.begin(), c.table.end()});
        std::string found;
        for (uint32_t type = 0; type < 256; type++)
            for (size_t count = store.Records(type).size(); count > 0; count--) found += std::to_string(type) + " ";
        EXPECT_EQ(found, c.types) << c.what;
        EXPECT_TRUE(store.Records(256).empty()) << c.what;
    }
}

TEST(Records, OfMostTypesAreTheStructureItself) {
    const Bytes_t image = ClStructureBuilder(7, 0x0F).Byte(0x05, 9).Strings({"L1", "second"}).Image();
    Bytes_t table = image;
    table.insert(table.end(), image.begin(), image.end() - 4);  // the second one ends within its strings
    const ClStore store(table);
    const std::vector<uint8_t*> records = store.Records(7);
    ASSERT_EQ(records.size(), 2u);
    Bytes_t whole = {7, 0, 0, 0};  // the type before the structure, and zeros after it
    whole.insert(whole.end(), image.begin(), image.end());
    whole.resize(whole.size() + kSpareBytes, 0);
    EXPECT_EQ(Bytes_t(records[0], records[0] + whole.size()), whole);
    std::fill(whole.end() - kSpareBytes - 4, whole.end(), uint8_t{0});
    EXPECT_EQ(Bytes_t(records[1], records[1] + whole.size() - 2), Bytes_t(whole.begin(), whole.end() - 2));
}

TEST(Records, OfTypes0To2PointAtTheirStrings) {
    const auto bios = [] { return ClStructureBuilder(0, 0x18); };
    const struct {
        const char* what;
        ClStructureBuilder structure;
        std::vector<std::string> texts;  // in the order of the pointers; "(null)" for a null one
    } kCases[] = {
  // clang-format off
        {"type 0", bios().Bytes(4, {2, 1, 0, 0, 9}).Strings({"one", "two"}),
         {"two", "one", "(null)"}},
        {"type 0 with an empty string, and number 0", bios().Bytes(4, {2, 1}).Strings({"", "x"}),
         {"x", "(null)", "(null)"}},
        {"type 0 without strings: only number 1 finds the empty area", bios().Bytes(4, {1, 2}),
         {"", "(null)", "(null)"}},
        {"type 1", ClStructureBuilder(1, 0x1B).Bytes(4, {1, 2, 3, 4}).Bytes(0x19, {5, 6})
                       .Strings({"a", "b", "c", "d", "e", "f"}),
         {"a", "b", "c", "d", "e", "f"}},
        {"type 1 of 25 bytes takes its last numbers from the string area",
         ClStructureBuilder(1, 25).Bytes(4, {1, 1, 1, 1}).Strings({"\2\1x", "y"}),
         {"\2\1x", "\2\1x", "\2\1x", "\2\1x", "y", "\2\1x"}},
        {"type 2", ClStructureBuilder(2, 0x11).Bytes(4, {1, 2, 3, 4, 5, 0, 1}).Strings({"a", "b", "c", "d", "e"}),
         {"a", "b", "c", "d", "e", "a"}},
  // clang-format on
    };
    for (const auto& c : kCases) {
        const ClStore store(TableOf({c.structure}));
        const uint8_t type = c.structure.Type();
        const uint8_t* body = store.Records(type).at(0) + 4;
        for (size_t place = 0; place < c.texts.size(); place++) {
            const char* text;
            std::memcpy(&text, body + ParsedBytes(type) + 8 * place, sizeof text);
            EXPECT_EQ(text == nullptr ? "(null)" : std::string(text), c.texts[place]) << c.what << place;
        }
    }
}

// They take no bytes from the next structure or from after the table.
TEST(Records, OfAShortTypeHaveItsOwnStringBytesAndThenZeros) {
    const Bytes_t next = ClStructureBuilder(200, 40).Image();
    const struct {
        uint8_t type, length;
        std::string strings, expected;
    } kCases[] = {
        {0, 18, "abcdefgh\0\0"s, "abcdef"s       },
        {0, 18, "ab\0\0"s,       "ab\0\0\0\0"s   },
        {0, 18, "ab"s,           "ab\0\0\0\0"s   },
        {1, 24, "\0\0"s,         "\0\0\0"s       },
        {2, 8,  "a\0\0"s,        "a\0\0\0\0\0\0"s},
    };
    for (const auto& c : kCases) {
        Bytes_t table = ClStructureBuilder(c.type, c.length).Image();
        table.resize(c.length);
        table.insert(table.end(), c.strings.begin(), c.strings.end());
        if (c.strings.ends_with('\0')) table.insert(table.end(), next.begin(), next.end());
        const ClStore store(table);
        EXPECT_EQ(std::memcmp(store.Records(c.type).at(0) + 4 + c.length, c.expected.data(), c.expected.size()), 0)
            << int{c.type} << c.strings;
    }
}

TEST(Lookup, GivesAllStructuresOfATypeInTableOrder) {
    std::vector<ClStructureBuilder> structures;
    for (uint16_t handle = 0; handle < 600; handle++) structures.emplace_back(handle % 2 == 0 ? 11 : 12, 5, handle);
    const ClStore store(TableOf(structures));
    EXPECT_EQ(store.Records(11).size(), 255u);  // the largest 8-bit count
    for (const uint32_t first : {0u, 255u, 299u, 300u, 301u}) {
        uint8_t** records = nullptr;
        uint32_t count = 0;
        ASSERT_EQ(GetSMBIOSStrutureFrom(12, first, &records, &count), kSuccess);
        ASSERT_EQ(count, first < 300 ? 300 - first : 0);
        for (uint32_t place = 0; place < count; place++)
            EXPECT_EQ(records[place][6] + 256 * records[place][7], static_cast<int>(2 * (first + place) + 1));
        os_FreeBlock(records);
    }
}

// The statuses that a machine's calls return, and a letter for each call.
struct FakeMachine_t {
    status_t initialize = kSuccess, first = kSuccess, second = kBadValue, terminate = kSuccess;
    std::string calls = {};
} fake;

status_t FakeImage(status_t status, uint8_t* entry, SMBIOSTableImage_t** image) {
    if (status != kSuccess) return status;
    const Bytes_t table = TableOf({ClStructureBuilder(32, 11)});
    *image = static_cast<SMBIOSTableImage_t*>(os_NewBlock(sizeof(SMBIOSTableImage_t) + table.size()));
    (*image)->Length = static_cast<uint32_t>(table.size());
    std::memcpy((*image)->Data(), table.data(), table.size());
    entry[6] = 2;
    entry[7] = 8;
    return kSuccess;
}

constexpr MachineServices_t kFakeMachine = {
    [] { return fake.calls += 'i', fake.initialize; },
    [] { return fake.calls += 't', fake.terminate; },
    [](uint8_t* entry, uint8_t*, SMBIOSTableImage_t** image) {
        return fake.calls += '1', FakeImage(fake.first, entry, image);
    },
    [](uint8_t* entry, uint8_t*, SMBIOSTableImage_t** image) {
        return fake.calls += '2', FakeImage(fake.second, entry, image);
    },
    [](uint32_t, CPUIDRecord_t*) { return kSuccess; },
};

TEST(SetUp, TakesTheFirstAccessMethodThatHasATable) {
    const FakeMachine_t kWorks, kSecondOnly{.first = kNoMemory, .second = kSuccess}, kNoTable{.first = kNoMemory},
        kNoHardware{.initialize = kFailure}, kStaysOpen{.terminate = kFailure};
    const struct {
        const char* what;
        FakeMachine_t machine;
        status_t status, closed;
        const char* calls;
    } kCases[] = {
        {"first access method",  kWorks,      kSuccess, kSuccess, "i1t" },
        {"second access method", kSecondOnly, kSuccess, kSuccess, "i12t"},
        {"no table",             kNoTable,    kFailure, kFailure, "i12t"},
        {"no hardware",          kNoHardware, kFailure, kFailure, "i"   },
        {"it doesn't close",     kStaysOpen,  kSuccess, kFailure, "i1t" },
        {"and reads again",      kWorks,      kSuccess, kSuccess, "i1t" },
    };
    for (const auto& c : kCases) {
        fake = c.machine;
        ASSERT_EQ(SetMachine(&kFakeMachine), kSuccess);
        uint8_t entry[kEntryBufferSize] = {};
        EXPECT_EQ(LibSMBIOSInit(entry), c.status) << c.what;
        EXPECT_EQ(LibSMBIOSExit(), c.closed) << c.what;  // 5 also for a store that failed to open
        EXPECT_EQ(fake.calls, c.calls) << c.what;
    }
}

TEST(SetUp, ReadsTheTableOnceForAllUsers) {
    fake = {};
    ASSERT_EQ(SetMachine(&kFakeMachine), kSuccess);
    uint8_t entry[kEntryBufferSize] = {}, later[kEntryBufferSize] = {};
    ASSERT_EQ(LibSMBIOSInit(entry), kSuccess);
    EXPECT_EQ(SetMachine(&kFakeMachine), kFailure);
    ASSERT_EQ(LibSMBIOSInit(later), kSuccess);
    EXPECT_EQ(later[6], 2);
    EXPECT_EQ(later[7], 8);
    EXPECT_EQ(LibSMBIOSExit(), kSuccess);
    EXPECT_EQ(fake.calls, "i1");
    EXPECT_EQ(LibSMBIOSExit(), kSuccess);
    EXPECT_EQ(LibSMBIOSExit(), kFailure);
    EXPECT_EQ(fake.calls, "i1t");
}

}  // namespace
