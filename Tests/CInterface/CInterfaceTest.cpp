// The C interface: items, statuses, independent handles, and what an opened table changes in the process.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "CInterface/quorlin_c.h"
#include "Packages/Debug/Debug.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/Sample/Sample.h"
#include "Sources/Quorlin.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/Records.h"
#include "Tests/Support/Structures.h"

namespace {

using Table_t = std::unique_ptr<quorlin_table, decltype(&quorlin_close)>;

Table_t Open(const std::vector<uint8_t>& bytes, const quorlin_options* options = nullptr) {
    quorlin_table* table = nullptr;
    EXPECT_EQ(quorlin_open_memory(bytes.data(), bytes.size(), options, &table), QUORLIN_OK) << quorlin_last_error();
    return {table, quorlin_close};
}

std::vector<uint8_t> Sample() { return {SampleTable().begin(), SampleTable().end()}; }

const ClStructureBuilder kSystem = ClStructureBuilder(1, 0x1B, 1).Bytes(4, {1, 2}).Strings({"Halvorsen", "\"Fjord\""});
const ClStructureBuilder kChassis = ClStructureBuilder(3, 0x15, 2).Bytes(4, {1, 3}).Strings({"Nord"});

TEST(CInterface, ReturnsItemsByCursorNumberAndKey) {
    const Table_t table = Open(TableOf({kSystem, kChassis}));
    quorlin_item item = {};
    std::vector<std::string> titles;
    uint32_t count = 0;
    for (; quorlin_next(table.get(), &item) == QUORLIN_OK; count++) {
        EXPECT_EQ(item.index, count);
        if (item.kind == QUORLIN_STRUCTURE) {
            titles.emplace_back(item.key);
            EXPECT_EQ(item.structure, item.index);
        }
        quorlin_item same = {};
        EXPECT_EQ(quorlin_get(table.get(), count, &same), QUORLIN_OK);
        EXPECT_EQ(same.key, item.key);
        EXPECT_EQ(quorlin_value(table.get(), count), item.value);
    }
    EXPECT_EQ(titles,
              (std::vector<std::string>{"System Information {Type 1}", "System Enclosure or Chassis Types {Type 3}"}));
    EXPECT_EQ(quorlin_count(table.get()), count);
    EXPECT_EQ(quorlin_next(table.get(), &item), QUORLIN_NO_MORE);
    EXPECT_EQ(item.index, count - 1);  // as it was
    EXPECT_EQ(quorlin_rewind(table.get()), QUORLIN_OK);
    EXPECT_EQ(quorlin_next(table.get(), &item), QUORLIN_OK);
    EXPECT_EQ(item.index, 0u);

    EXPECT_EQ(quorlin_find(table.get(), "Manufacturer", 0, &item), QUORLIN_OK);
    EXPECT_STREQ(item.value, "Halvorsen");
    EXPECT_EQ(item.structure, 0u);
    EXPECT_EQ(quorlin_find(table.get(), "Manufacturer", item.index + 1, &item), QUORLIN_OK);
    EXPECT_STREQ(item.value, "Nord");
    quorlin_item title = {};
    EXPECT_EQ(quorlin_get(table.get(), item.structure, &title), QUORLIN_OK);
    EXPECT_STREQ(title.key, titles[1].c_str());
    EXPECT_EQ(quorlin_find(table.get(), "Manufacturer", item.index + 1, &item), QUORLIN_NO_MORE);
    EXPECT_EQ(quorlin_find(table.get(), "manufacturer", 0, &item), QUORLIN_NO_MORE);
    EXPECT_EQ(quorlin_get(table.get(), count, &item), QUORLIN_BAD_VALUE);
    EXPECT_EQ(quorlin_value(table.get(), count), nullptr);
}

// Item by item the same as from a package, but for the mark of groups.
TEST(CInterface, AgreesWithThePackage) {
    const ClItems expected = DecodeTable(Sample(), Quorlin::kSweep);
    const Table_t table = Open(Sample());
    ASSERT_EQ(quorlin_count(table.get()), expected.Count());
    for (uint32_t index = 0; index < expected.Count(); index++) {
        quorlin_item item = {};
        ASSERT_EQ(quorlin_get(table.get(), index, &item), QUORLIN_OK);
        const bool isMarked = expected[index].key.ends_with("#GROUPNAME");
        EXPECT_EQ(item.key + std::string(isMarked ? "#GROUPNAME" : ""), expected[index].key);
        EXPECT_EQ(item.value, expected[index].value);
        EXPECT_EQ(item.kind != QUORLIN_ITEM, isMarked && expected[index].value.empty()) << item.key;
    }
}

TEST(CInterface, KeepsHandlesApart) {
    Table_t first = Open(TableOf({kSystem}));
    quorlin_item item = {};
    ASSERT_EQ(quorlin_find(first.get(), "Product Name", 0, &item), QUORLIN_OK);
    const Table_t second = Open(TableOf({kChassis}));
    EXPECT_STREQ(item.value, "\"Fjord\"");
    first.reset();
    EXPECT_EQ(quorlin_find(second.get(), "Manufacturer", 0, &item), QUORLIN_OK);
    EXPECT_STREQ(item.value, "Nord");

    const std::vector<uint8_t> system = TableOf({kSystem}), chassis = TableOf({kChassis});
    std::atomic<int> bad{0};
    std::vector<std::thread> threads;
    for (const auto* bytes : {&system, &chassis, &system, &chassis})
        threads.emplace_back([&bad, bytes, maker = bytes == &system ? "Halvorsen" : "Nord"] {
            for (int round = 0; round < 50; round++) {
                const Table_t table = Open(*bytes);
                quorlin_item found = {};
                if (quorlin_find(table.get(), "Manufacturer", 0, &found) != QUORLIN_OK ||
                    found.value != std::string(maker))
                    bad++;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(bad, 0);
}

// The header's first options, without the member that names a record, still work.
TEST(CInterface, ReplaysARecord) {
    const std::string folder = WriteRecord("c-record");
    quorlin_options options = {sizeof options, 0, 0, 0, 0, 0, folder.c_str()};
    quorlin_table* opened = nullptr;
    ASSERT_EQ(quorlin_open_machine(&options, &opened), QUORLIN_OK) << quorlin_last_error();
    const Table_t table(opened, quorlin_close);
    quorlin_item item = {};
    ASSERT_EQ(quorlin_find(opened, "Serial Number", 0, &item), QUORLIN_OK);
    EXPECT_STREQ(item.value, "SN-4711");
    quorlin_fact_table* facts = nullptr;
    ASSERT_EQ(quorlin_facts_open_machine(&options, &facts), QUORLIN_OK);
    EXPECT_EQ(quorlin_structure_count(facts), 3u);
    quorlin_facts_close(facts);
    const std::string none = folder + "/none";
    options.replay = none.c_str();
    EXPECT_EQ(quorlin_open_machine(&options, &opened), QUORLIN_NO_IMAGE);
    EXPECT_NE(std::string(quorlin_last_error()).find("not a record"), std::string::npos) << quorlin_last_error();
    options.size = 12;
    const std::vector<uint8_t> chassis = TableOf({kChassis});
    ASSERT_EQ(quorlin_open_memory(chassis.data(), chassis.size(), &options, &opened), QUORLIN_OK);
    quorlin_close(opened);
}

TEST(CInterface, LeavesTheProcessAsItWas) {
    const std::vector<uint8_t> chosen = TableOf({kChassis}), other = TableOf({kSystem});
    const ImageSource_t source = {chosen.data(), static_cast<uint32_t>(chosen.size()), 3, 0, 0};
    ASSERT_EQ(SetImageMachine(&source), kSuccess);
    const Table_t table = Open(other);

    // The host's own package still reads the host's own choice, and while it does no handle can be opened.
    BaseAbstraction* package = CreateSmbiosPackage();
    ASSERT_EQ(package->Initialize(), kSuccess);
    std::string line;
    EXPECT_EQ(package->GetNextItem(line), kSuccess);
    EXPECT_EQ(line, "\"System Enclosure or Chassis Types {Type 3}#GROUPNAME\", \"\"");
    quorlin_table* none = nullptr;
    EXPECT_EQ(quorlin_open_memory(other.data(), other.size(), nullptr, &none), QUORLIN_BUSY);
    EXPECT_EQ(quorlin_open_machine(nullptr, &none), QUORLIN_BUSY);
    EXPECT_EQ(none, nullptr);
    EXPECT_STREQ(quorlin_last_error(), quorlin_status_text(QUORLIN_BUSY));
    EXPECT_EQ(package->UnInitialize(), kSuccess);
    DestroySmbiosPackage(package);
    EXPECT_NE(Open(other), nullptr);
    EXPECT_STREQ(quorlin_last_error(), "");
}

TEST(CInterface, ReadsDumpsAndTakesOptionsForBareTables) {
    const auto versionOf = [](const Table_t& table) {
        uint8_t major = 0, minor = 0;
        EXPECT_EQ(quorlin_smbios_version(table.get(), &major, &minor), QUORLIN_OK);
        return std::to_string(major) + "." + std::to_string(minor);
    };
    quorlin_options options = {sizeof options, 0, 2, 7, 0, 0, nullptr};
    EXPECT_EQ(versionOf(Open(TableOf({kSystem}))), "3.0");
    EXPECT_EQ(versionOf(Open(TableOf({kSystem}), &options)), "2.7");
    EXPECT_EQ(versionOf(Open(DumpOf(TableOf({kSystem}), 3, 4), &options)), "3.4");

    const std::string path = WriteFile("Ærø-表.bin", DumpOf(TableOf({kSystem}), 3, 1));
    quorlin_table* fromFile = nullptr;
    ASSERT_EQ(quorlin_open_file(path.c_str(), nullptr, &fromFile), QUORLIN_OK) << quorlin_last_error();
    EXPECT_EQ(versionOf(Table_t(fromFile, quorlin_close)), "3.1");
}

TEST(CInterface, NamesTheFormAndTheFlawsOfAnImage) {
    const auto whole = TableOf({kChassis}), noEnd = ClStructureBuilder(kChassis).Image();
    std::vector<uint8_t> cut = noEnd, badSum = DumpOf(whole, 2, 7);
    cut.insert(cut.end(), whole.begin(), whole.begin() + 9);
    badSum[4]++;
    const struct {
        std::vector<uint8_t> bytes;
        const char *form, *remark;
    } kCases[] = {
        {whole,  "table", ""                                                                                          },
        {badSum, "dump",  "the entry point's checksums don't fit"                                                     },
        {noEnd,  "table", "no End-of-Table structure ends it"                                                         },
        {cut,    "table", "broken at offset 1Bh: the table ends within a structure; no End-of-Table structure ends it"},
    };
    for (const auto& c : kCases) {
        const Table_t table = Open(c.bytes);
        EXPECT_STREQ(quorlin_form(table.get()), c.form);
        EXPECT_STREQ(quorlin_remark(table.get()), c.remark);
    }
    EXPECT_EQ(quorlin_form(nullptr), nullptr);
    EXPECT_EQ(quorlin_remark(nullptr), nullptr);
}

TEST(CInterface, DecodesType148OnDemand) {
    const auto table = TableOf({kChassis, ClStructureBuilder(148, 40)});
    quorlin_options options = {sizeof options, 0, 0, 0, 0, 1, nullptr};
    quorlin_item item = {};
    EXPECT_EQ(quorlin_find(Open(table).get(), "Firmware Version Information {Type 148}", 0, &item), QUORLIN_NO_MORE);
    EXPECT_EQ(quorlin_find(Open(table, &options).get(), "Firmware Version Information {Type 148}", 0, &item),
              QUORLIN_OK);
    EXPECT_EQ(item.index, 17u);
}

TEST(CInterface, RefusesATableOfTooManyItems) {
    std::vector<ClStructureBuilder> bomb(255, ClStructureBuilder(221, 5).Byte(4, 255));
    bomb.resize(300, ClStructureBuilder(14, 8).Byte(5, 221));
    const auto bytes = TableOf(bomb);
    quorlin_table* table = nullptr;
    EXPECT_EQ(quorlin_open_memory(bytes.data(), bytes.size(), nullptr, &table), QUORLIN_TOO_MANY_ITEMS);
    EXPECT_EQ(quorlin_open_memory(bytes.data(), bytes.size(), nullptr, &table), QUORLIN_TOO_MANY_ITEMS);
    EXPECT_EQ(table, nullptr);
}

// The configuration is read once in a process, and closing the last trace handle forgets it.
TEST(CInterface, TracesLaterOpeningsLikeTheFirst) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process without handles
    const auto traced = [] {
        testing::internal::CaptureStdout();
        Open(TableOf({kSystem}));
        const std::string text = testing::internal::GetCapturedStdout();
        return std::count(text.begin(), text.end(), '\n');
    };
    const auto traceTwice = [&] {
        if (DebugUseConfigText("Global:SyncFlag<Y>;Quorlin:TraceType<In>;SMBIOSDbgHdl:TraceType<In>") != kSuccess)
            return 2;
        const auto first = traced(), second = traced();
        return first > 2 && second == first ? 0 : 1;
    };
    EXPECT_EXIT(std::exit(traceTwice()), testing::ExitedWithCode(0), "");
}

TEST(CInterface, RefusesWhatIsNoTable) {
    const std::vector<uint8_t> noise(64, 0xA5), empty;
    const quorlin_options fromTheFuture = {sizeof(quorlin_options) + 4, 0, 0, 0, 0, 0, nullptr};
    quorlin_table* table = nullptr;
    EXPECT_EQ(quorlin_open_memory(noise.data(), noise.size(), nullptr, &table), QUORLIN_NO_IMAGE);
    EXPECT_NE(std::string(quorlin_last_error()).find("not a table"), std::string::npos);
    EXPECT_EQ(quorlin_open_memory(noise.data(), 0, nullptr, &table), QUORLIN_NO_IMAGE);
    EXPECT_EQ(quorlin_open_file("/no/such/file", nullptr, &table), QUORLIN_NO_IMAGE);
    EXPECT_EQ(quorlin_open_memory(noise.data(), noise.size(), &fromTheFuture, &table), QUORLIN_BAD_VALUE);
    EXPECT_EQ(table, nullptr);
}

TEST(CInterface, ReturnsAStatusForNullPointers) {
    const Table_t table = Open(TableOf({kSystem}));
    const std::vector<uint8_t> bytes = TableOf({kSystem});
    quorlin_table* out = nullptr;
    quorlin_item item = {};
    EXPECT_EQ(quorlin_open_machine(nullptr, nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_open_file(nullptr, nullptr, &out), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_open_file("x", nullptr, nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_open_memory(nullptr, 4, nullptr, &out), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_open_memory(bytes.data(), bytes.size(), nullptr, nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_next(nullptr, &item), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_next(table.get(), nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_get(nullptr, 0, &item), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_get(table.get(), 0, nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_find(nullptr, "x", 0, &item), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_find(table.get(), nullptr, 0, &item), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_find(table.get(), "x", 0, nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_rewind(nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_smbios_version(nullptr, nullptr, nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_smbios_version(table.get(), nullptr, nullptr), QUORLIN_OK);
    EXPECT_EQ(quorlin_count(nullptr), 0u);
    EXPECT_EQ(quorlin_value(nullptr, 0), nullptr);
    quorlin_close(nullptr);
}

TEST(CInterface, ReturnsTheVersionOfTheBuild) { EXPECT_STREQ(quorlin_version(), QUORLIN_PROJECT_VERSION); }

}  // namespace

TEST(CInterface, HasATextForEachStatus) {
    std::set<std::string> texts;
    for (uint32_t status = QUORLIN_OK; status <= QUORLIN_TOO_MANY_ITEMS + 1u; ++status)
        texts.insert(quorlin_status_text(static_cast<quorlin_status>(status)));
    EXPECT_TRUE(texts.contains("unknown status"));
    EXPECT_GE(texts.size(), 10u);
}
