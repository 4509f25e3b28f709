// The store: its walk over well-made and awkward tables, its records, and its set-up and tear-down.
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

// A store that is up on a table for as long as this object lives.
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

Bytes_t Text(std::string_view text) { return {text.begin(), text.end()}; }

TEST(Walk, StopsWhereTheTableEnds) {
    using namespace std::string_literals;
    const struct {
        const char* what;
        Bytes_t table;
        std::vector<uint32_t> types;  // the types whose structures are found, with repetition
    } kCases[] = {
        {"nothing", {}, {}},
        {"an End-of-Table structure alone", Text("\x7F\x04\0\0\0\0"s), {}},
        {"no End-of-Table structure", Text("\x20\x04\0\0\0\0\x21\x04\0\0\0\0"s), {32, 33}},
        {"what follows End-of-Table isn't read", Text("\x20\x04\0\0\0\0\x7F\x04\0\0\0\0\x21\x04\0\0\0\0"s), {32}},
        {"type 126 is a structure like others", Text("\x7E\x04\0\0\0\0\x7F\x04\0\0\0\0"s), {126}},
        {"a header cut short is dropped", Text("\x20\x04\0\0\0\0\x21\x04\0"s), {32}},
        {"a structure without its double NUL is kept", Text("\x20\x04\0\0\0\0\x21\x06\0\0zz"s), {32, 33}},
        {"a Length past the table's end", Text("\x20\xFF\0\0zz"s), {32}},
        {"a Length of 0: the search begins at the structure", Text("\x20\0\1\1a\0\0\x21\x04\0\0\0\0"s), {32, 33}},
        {"zeros are structures of type 0", Bytes_t(8, 0), {0, 0, 0}},
    };
    for (const auto& c : kCases) {
        const ClStore store(c.table);
        std::vector<uint32_t> found;
        for (uint32_t type = 0; type < 256; type++) found.insert(found.end(), store.Records(type).size(), type);
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
    Bytes_t whole = {7, 0, 0, 0};  // the type before the structure, and zeros behind it
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
            EXPECT_EQ(text == nullptr ? "(null)" : std::string(text), c.texts[place]) << c.what << ", pointer " << place;
        }
    }
}

// Neither from the next structure nor from after the table.
TEST(Records, OfAShortTypeHoldItsOwnStringBytesAndThenZeros) {
    const Bytes_t next = ClStructureBuilder(200, 40).Image();
    const struct {
        uint8_t type, length;
        std::string strings, expected;
    } kCases[] = {
        {0, 18, "abcdefgh\0\0"s, "abcdef"s            },
        {0, 18, "ab\0\0"s,       "ab\0\0\0\0"s        },
        {0, 18, "ab"s,                  "ab\0\0\0\0"s        },
        {1, 24, "\0\0"s,         "\0\0\0"s           },
        {2, 8,  "a\0\0"s,        "a\0\0\0\0\0\0"s    },
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
    EXPECT_EQ(store.Records(11).size(), 255u);  // all that the 8-bit count can tell
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

// A machine that counts its calls, and fails one of them.
struct FakeMachine_t {
    int initialised = 0, terminated = 0, firstRoad = 0, secondRoad = 0;
    bool failInitialize = false, failFirstRoad = false, failSecondRoad = true, failTerminate = false;
} fake;

status_t FakeImage(uint8_t* entry, SMBIOSTableImage_t** image) {
    const Bytes_t table = TableOf({ClStructureBuilder(32, 11)});
    *image = static_cast<SMBIOSTableImage_t*>(os_NewBlock(sizeof(SMBIOSTableImage_t) + table.size()));
    (*image)->Length = static_cast<uint32_t>(table.size());
    std::memcpy((*image)->Data(), table.data(), table.size());
    entry[6] = 2;
    entry[7] = 8;
    return kSuccess;
}

constexpr MachineServices_t kFakeMachine = {
    [] { return fake.initialised++, fake.failInitialize ? kFailure : kSuccess; },
    [] { return fake.terminated++, fake.failTerminate ? kFailure : kSuccess; },
    [](uint8_t* entry, uint8_t*, SMBIOSTableImage_t** image) {
        return fake.firstRoad++, fake.failFirstRoad ? kNoMemory : FakeImage(entry, image);
    },
    [](uint8_t* entry, uint8_t*, SMBIOSTableImage_t** image) {
        return fake.secondRoad++, fake.failSecondRoad ? kBadValue : FakeImage(entry, image);
    },
    [](uint32_t, CPUIDRecord_t*) { return kSuccess; },
};

TEST(SetUp, TakesTheFirstRoadThatHasATable) {
    const struct {
        const char* what;
        FakeMachine_t machine;
        status_t status, closed;
        int terminated, secondRoad;
    } kCases[] = {
        {"first road", {}, kSuccess, kSuccess, 0, 0},
        {"second road", {.failFirstRoad = true, .failSecondRoad = false}, kSuccess, kSuccess, 0, 1},
        {"no road", {.failFirstRoad = true}, kFailure, kFailure, 1, 1},
        {"no hardware", {.failInitialize = true}, kFailure, kFailure, 0, 0},
        {"it doesn't close", {.failTerminate = true}, kSuccess, kFailure, 0, 0},
        {"and reads again", {}, kSuccess, kSuccess, 0, 0},
    };
    for (const auto& c : kCases) {
        fake = c.machine;
        ASSERT_EQ(SetMachine(&kFakeMachine), kSuccess);
        uint8_t entry[kEntryBufferSize] = {};
        EXPECT_EQ(LibSMBIOSInit(entry), c.status) << c.what;
        EXPECT_EQ(fake.terminated, c.terminated) << c.what;
        EXPECT_EQ(fake.secondRoad, c.secondRoad) << c.what;
        EXPECT_EQ(LibSMBIOSExit(), c.closed) << c.what;  // 5 on a store that stayed down, too
        EXPECT_EQ(fake.terminated, fake.initialised - (fake.failInitialize ? 1 : 0)) << c.what;
    }
}

TEST(SetUp, ReadsTheTableOnceForAllUsers) {
    fake = {};
    ASSERT_EQ(SetMachine(&kFakeMachine), kSuccess);
    uint8_t entry[kEntryBufferSize] = {}, later[kEntryBufferSize] = {};
    ASSERT_EQ(LibSMBIOSInit(entry), kSuccess);
    EXPECT_EQ(SetMachine(&kFakeMachine), kFailure);
    ASSERT_EQ(LibSMBIOSInit(later), kSuccess);
    EXPECT_EQ(fake.firstRoad, 1);
    EXPECT_EQ(later[6], 2);
    EXPECT_EQ(later[7], 8);
    EXPECT_EQ(LibSMBIOSExit(), kSuccess);
    EXPECT_EQ(fake.terminated, 0);
    EXPECT_EQ(LibSMBIOSExit(), kSuccess);
    EXPECT_EQ(fake.terminated, 1);
    EXPECT_EQ(LibSMBIOSExit(), kFailure);
    EXPECT_EQ(fake.terminated, 1);
}

TEST(Dump, GivesTheTableAsItIs) {
    const Bytes_t table = TableOf({ClStructureBuilder(11, 5).Strings({"x"})});
    ClStore store(table);
    uint8_t entry[kEntryBufferSize] = {};
    SMBIOSTableImage_t* image = nullptr;
    ASSERT_EQ(GetSMBIOSDump(entry, &image), kSuccess);
    EXPECT_EQ(Bytes_t(image->Data(), image->Data() + image->Length), table);
    EXPECT_EQ(entry[6], 2);
    os_FreeBlock(image);
    LibVersion_t version = {};
    EXPECT_EQ(GetSMBIOSLibVersion(nullptr), kNullPointer);
    ASSERT_EQ(GetSMBIOSLibVersion(&version), kSuccess);
    EXPECT_EQ(std::string(version.Major) + version.Build, "021001");
}

}  // namespace
