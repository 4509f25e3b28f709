// Analysis by the C interface.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "CInterface/quorlin_c.h"
#include "Tests/Support/Structures.h"

namespace {

using Table_t = std::unique_ptr<quorlin_fact_table, decltype(&quorlin_facts_close)>;
using Lines_t = std::vector<std::string>;

Table_t Open(const std::vector<uint8_t>& bytes) {
    quorlin_fact_table* table = nullptr;
    EXPECT_EQ(quorlin_facts_open_memory(bytes.data(), bytes.size(), nullptr, &table), QUORLIN_OK);
    return {table, quorlin_facts_close};
}

Table_t Machine(const std::string& serial, uint8_t wakeUp) {
    return Open(TableOf({
        ClStructureBuilder(0, 0x18, 1),
        ClStructureBuilder(1, 0x1B, 2).Byte(8, 1).Byte(0x18, wakeUp).String(4, "Halvorsen").String(7, serial),
    }));
}

void TakeFinding(const quorlin_finding* finding, void* context) {
    if (finding->severity < QUORLIN_WARNING || finding->structure == QUORLIN_NO_STRUCTURE) return;
    static_cast<Lines_t*>(context)->push_back(std::string(finding->rule) + " " + std::to_string(finding->structure) +
                                              " " + finding->key + " " + finding->found + " " +
                                              std::to_string(finding->size));
}

void TakeDifference(const quorlin_difference* difference, void* context) {
    std::string line = std::to_string(difference->change) + " " + std::to_string(difference->structure_a) + " " +
                       std::to_string(difference->structure_b);
    for (size_t i = 0; i < difference->fact_count; i++) {
        const quorlin_fact_change& fact = difference->facts[i];
        line.append(" ").append(fact.key).append(" ").append(fact.a == nullptr ? "-" : fact.a);
        line.append(" ").append(fact.b == nullptr ? "-" : fact.b);
    }
    static_cast<Lines_t*>(context)->push_back(line);
}

TEST(CAnalysis, ChecksComparesAndRedacts) {
    const Table_t a = Machine("1234567", 6), b = Machine("7654321", 99);
    Lines_t lines;
    EXPECT_EQ(quorlin_check(b.get(), TakeFinding, &lines), QUORLIN_OK);
    EXPECT_EQ(lines, (Lines_t{"QR0501 1 wake_up_type 0x63 1"}));
    lines.clear();
    EXPECT_EQ(quorlin_diff(a.get(), b.get(), nullptr, 0, TakeDifference, &lines), QUORLIN_OK);
    EXPECT_EQ(lines, (Lines_t{"2 1 1 serial_number 1234567 7654321 wake_up_type Power Switch reserved (0x63)"}));
    lines.clear();
    const char* const ignored[] = {"serial_number", "wake_up_type"};
    EXPECT_EQ(quorlin_diff(a.get(), b.get(), ignored, 2, TakeDifference, &lines), QUORLIN_OK);
    EXPECT_EQ(lines, Lines_t());

    size_t size = 0;
    const uint8_t* bytes = quorlin_facts_bytes(a.get(), &size);
    std::vector<uint8_t> copy(size);
    EXPECT_EQ(quorlin_redact(a.get(), "0123456789abcdef", 16, 0, copy.data()), QUORLIN_OK);
    EXPECT_NE(copy, std::vector<uint8_t>(bytes, bytes + size));
    EXPECT_EQ(quorlin_diff(a.get(), Open(copy).get(), ignored, 1, TakeDifference, &lines), QUORLIN_OK);
    EXPECT_EQ(lines.size(), 1u) << lines.back();  // the UUID
}

TEST(CAnalysis, ReportsErrors) {
    const Table_t table = Machine("1234567", 6);
    uint8_t out[256];
    const char* const unknown[] = {"no_such_key"};
    const char* const null[] = {nullptr};
    EXPECT_EQ(quorlin_check(nullptr, TakeFinding, nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_check(table.get(), nullptr, nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_diff(table.get(), nullptr, nullptr, 0, TakeDifference, nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_diff(table.get(), table.get(), nullptr, 1, TakeDifference, nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_diff(table.get(), table.get(), null, 1, TakeDifference, nullptr), QUORLIN_NULL_POINTER);
    EXPECT_EQ(quorlin_diff(table.get(), table.get(), unknown, 1, TakeDifference, nullptr), QUORLIN_BAD_VALUE);
    EXPECT_EQ(quorlin_redact(table.get(), "0123456789abcde", 15, 0, out), QUORLIN_BAD_VALUE);
    EXPECT_EQ(quorlin_redact(table.get(), nullptr, 16, 0, out), QUORLIN_NULL_POINTER);
}

}  // namespace
