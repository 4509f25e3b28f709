// Facts by the C interface: many tables on many threads, lifetimes, errors, and whatever bytes a table may have.
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "CInterface/quorlin_c.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/Sample/Sample.h"
#include "Sources/Quorlin.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/Structures.h"

namespace {

using Table_t = std::unique_ptr<quorlin_fact_table, decltype(&quorlin_facts_close)>;
using Walk_t = std::unique_ptr<quorlin_fact_walk, decltype(&quorlin_walk_close)>;

Table_t Open(const std::vector<uint8_t>& bytes, const quorlin_options* options = nullptr) {
    quorlin_fact_table* table = nullptr;
    EXPECT_EQ(quorlin_facts_open_memory(bytes.data(), bytes.size(), options, &table), QUORLIN_OK)
        << quorlin_last_error();
    return {table, quorlin_facts_close};
}

Walk_t WalkOf(const Table_t& table) {
    quorlin_fact_walk* walk = nullptr;
    EXPECT_EQ(quorlin_walk_open(table.get(), &walk), QUORLIN_OK);
    return {walk, quorlin_walk_close};
}

std::vector<uint8_t> Sample() { return {SampleTable().begin(), SampleTable().end()}; }

const ClStructureBuilder kSystem =
    ClStructureBuilder(1, 0x1B, 1).Bytes(4, {1, 2}).Strings({"Halvorsen", "Default string"});
const ClStructureBuilder kChassis = ClStructureBuilder(3, 0x15, 2).Bytes(4, {1, 3}).Strings({"Nord"});

// All that the facts of a structure say, by key.
std::map<std::string, std::string> FactsOf(const Walk_t& walk, uint32_t structure) {
    std::map<std::string, std::string> facts;
    EXPECT_EQ(quorlin_walk_begin(walk.get(), structure, 0), QUORLIN_OK);
    while (const quorlin_fact* fact = quorlin_walk_next(walk.get())) {
        std::string text(fact->text, fact->text_size);
        uint32_t bit = 0;
        while (const char* word = quorlin_walk_word(walk.get(), &bit)) text.append(word).append(";");
        for (uint32_t i = 0; const char* source = quorlin_walk_source(walk.get(), i); i++)
            text.append("<").append(source);
        facts[fact->key] = text + " " + std::to_string(fact->number) + quorlin_unit_text(fact->unit) + " " +
                           quorlin_state_text(fact->state);
    }
    return facts;
}

TEST(CFacts, ReadsStructuresAndFacts) {
    const Table_t table = Open(TableOf({
        kSystem,
        ClStructureBuilder(17, 0x22, 7).Bytes(4, {0x99, 0}).Bytes(0x0C, {0x10, 0}).Bytes(0x13, {0x80, 0}),
    }));
    const quorlin_structure* memory = quorlin_structure_at(table.get(), 1);
    ASSERT_NE(memory, nullptr);
    EXPECT_STREQ(memory->name, "Memory Device");
    EXPECT_EQ(memory->type, 17);
    EXPECT_EQ(memory->handle, 7);
    EXPECT_EQ(memory->length, 0x22);
    EXPECT_EQ(memory->index, 1u);
    EXPECT_EQ(memory->instance, 1u);
    EXPECT_EQ(memory->is_whole, 1);
    size_t size = 0;
    EXPECT_EQ(quorlin_facts_bytes(table.get(), &size) + memory->offset, memory->bytes);
    EXPECT_LE(memory->offset + memory->size, size);

    const Walk_t walk = WalkOf(table);
    const auto system = FactsOf(walk, 0), device = FactsOf(walk, 1);
    const struct {
        const char *key, *text;
    } kCases[] = {
        {"memory_size",                  "<size<extended_size 16777216byte value"},
        {"type_detail",                  "Synchronous; 128 value"                },
        {"physical_memory_array_handle", " 153 broken"                           },
    };
    for (const auto& c : kCases) EXPECT_EQ(device.contains(c.key) ? device.at(c.key) : "absent", c.text) << c.key;
    EXPECT_EQ(system.at("manufacturer"), "Halvorsen 1 value");
    EXPECT_EQ(system.at("product_name"), "Default string 2 filler");
    EXPECT_FALSE(device.contains("extended_speed"));

    int absent = 0;
    EXPECT_EQ(quorlin_walk_begin(walk.get(), 1, 1), QUORLIN_OK);
    while (const quorlin_fact* fact = quorlin_walk_next(walk.get())) absent += fact->state == QUORLIN_IS_ABSENT;
    EXPECT_GT(absent, 0);
    EXPECT_EQ(quorlin_walk_next(walk.get()), nullptr);
}

TEST(CFacts, StaysApartFromPackagesAndOtherTables) {
    const std::vector<uint8_t> system = TableOf({kSystem}), chassis = TableOf({kChassis});
    BaseAbstraction* package = CreateSmbiosPackage();
    const ImageSource_t source = {chassis.data(), static_cast<uint32_t>(chassis.size()), 3, 0, 0};
    ASSERT_EQ(SetImageMachine(&source), kSuccess);
    ASSERT_EQ(package->Initialize(), kSuccess);
    quorlin_fact_table* none = nullptr;
    EXPECT_EQ(quorlin_facts_open_machine(nullptr, &none), QUORLIN_BUSY);
    EXPECT_EQ(none, nullptr);
    EXPECT_STREQ(quorlin_last_error(), quorlin_status_text(QUORLIN_BUSY));

    const Table_t shared = Open(system);
    std::atomic<int> bad{0};
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; number++)
        threads.emplace_back([&] {
            for (int round = 0; round < 50; round++) {
                const Table_t own = Open(chassis);
                const Walk_t first = WalkOf(shared), second = WalkOf(own);
                bad += FactsOf(first, 0)["manufacturer"] != "Halvorsen 1 value";
                bad += FactsOf(second, 0)["manufacturer"] != "Nord 1 value";
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(bad, 0);
    EXPECT_EQ(package->UnInitialize(), kSuccess);
    DestroySmbiosPackage(package);
}

TEST(CFacts, OwnsItsBytes) {
    std::vector<uint8_t> bytes = TableOf({kSystem});
    const Table_t table = Open(bytes);
    std::fill(bytes.begin(), bytes.end(), uint8_t{0xFF});
    const Walk_t walk = WalkOf(table);
    const quorlin_structure* structure = quorlin_structure_at(table.get(), 0);
    EXPECT_EQ(FactsOf(walk, 0)["manufacturer"], "Halvorsen 1 value");
    EXPECT_EQ(quorlin_structure_at(table.get(), 0), structure);
}

TEST(CFacts, ReportsErrors) {
    const Table_t table = Open(TableOf({kSystem}));
    const Walk_t walk = WalkOf(table);
    quorlin_fact_table* none = nullptr;
    quorlin_fact_walk* noWalk = nullptr;
    const quorlin_options unknown = {sizeof unknown - 1, 0, 0, 0, 0, 0, nullptr};
    const uint8_t noTable[] = "no table at all";
    uint32_t bit = 0;
    EXPECT_EQ(quorlin_facts_open_file("/no/such/file", nullptr, &none), QUORLIN_NO_IMAGE);
    EXPECT_EQ(quorlin_facts_open_memory(noTable, sizeof noTable, nullptr, &none), QUORLIN_NO_IMAGE);
    EXPECT_NE(std::string(quorlin_last_error()), "");
    EXPECT_EQ(quorlin_facts_open_memory(noTable, sizeof noTable, &unknown, &none), QUORLIN_BAD_VALUE);
    EXPECT_EQ(quorlin_facts_open_memory(nullptr, 0, nullptr, &none), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_facts_open_file(nullptr, nullptr, &none), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_facts_open_machine(nullptr, nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(quorlin_walk_open(nullptr, &noWalk), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_walk_open(table.get(), nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_walk_begin(nullptr, 0, 0), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_walk_begin(walk.get(), quorlin_structure_count(table.get()), 0), QUORLIN_BAD_VALUE);
    EXPECT_EQ(quorlin_structure_at(table.get(), quorlin_structure_count(table.get())), nullptr);
    EXPECT_EQ(quorlin_structure_at(nullptr, 0), nullptr);
    EXPECT_EQ(quorlin_facts_version(nullptr, nullptr, nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_facts_bytes(nullptr, nullptr), nullptr);
    // Before the first fact there is none.
    EXPECT_EQ(quorlin_walk_next(walk.get()), nullptr);
    EXPECT_EQ(quorlin_walk_word(walk.get(), &bit), nullptr);
    EXPECT_EQ(quorlin_walk_source(walk.get(), 0), nullptr);
    EXPECT_STREQ(quorlin_state_text(7), "");
    EXPECT_STREQ(quorlin_unit_text(1000), "");
    quorlin_facts_close(nullptr);
    quorlin_walk_close(nullptr);
}

// The layout that other languages use.
TEST(CFacts, KeepsItsLayout) {
    EXPECT_EQ(sizeof(quorlin_structure), 40u);
    EXPECT_EQ(offsetof(quorlin_structure, handle), 32u);
    EXPECT_EQ(sizeof(quorlin_fact), 80u);
    EXPECT_EQ(offsetof(quorlin_fact, text), 56u);
    EXPECT_EQ(offsetof(quorlin_fact, offset), 2u);
    EXPECT_EQ(offsetof(quorlin_fact, record), 12u);
}

TEST(CFacts, ReadsNothingOutsideWhateverTheBytes) {
    std::mt19937 random(17);
    const std::vector<uint8_t> sample = Sample();
    for (int round = 0; round < 300; round++) {
        std::vector<uint8_t> bytes = sample;
        for (int change = 0; change < 200; change++)
            bytes[64 + random() % (bytes.size() - 64)] = static_cast<uint8_t>(random());
        bytes.resize(bytes.size() - random() % 500);
        const Table_t table = Open(DumpOf(bytes, 3, static_cast<uint8_t>(round % 10), 32));
        const Walk_t walk = WalkOf(table);
        for (uint32_t index = 0; index < quorlin_structure_count(table.get()); index++) {
            const quorlin_structure& structure = *quorlin_structure_at(table.get(), index);
            ASSERT_EQ(quorlin_walk_begin(walk.get(), index, round % 2), QUORLIN_OK);
            while (const quorlin_fact* fact = quorlin_walk_next(walk.get())) {
                ASSERT_LE(fact->offset + fact->size, structure.size) << fact->key;
                ASSERT_TRUE(fact->size == 0 || fact->offset + fact->size <= structure.length) << fact->key;
                if (fact->string_size == 0) continue;
                const auto* string = reinterpret_cast<const uint8_t*>(fact->string);
                ASSERT_TRUE(string >= structure.bytes + structure.length &&
                            string + fact->string_size < structure.bytes + structure.size)
                    << fact->key;
            }
        }
    }
}

}  // namespace
