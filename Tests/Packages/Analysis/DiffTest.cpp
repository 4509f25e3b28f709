// Two tables differ in what their structures are, not in handles or order.
#include "Packages/Analysis/Diff.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <random>
#include <set>

#include "Packages/Analysis/Redact.h"
#include "Packages/OS/Hmac.h"
#include "Packages/Sample/Sample.h"
#include "Packages/Standard/Facts.h"
#include "Tests/Support/RealTables.h"
#include "Tests/Support/Structures.h"

namespace {

using Bytes_t = std::vector<uint8_t>;
using Structures_t = std::vector<ClStructureBuilder>;

// The differences in lines: what changed, the place, and the facts with both values.
std::vector<std::string> Differences(const Bytes_t& a, const Bytes_t& b, const std::vector<std::string>& ignored = {}) {
    std::vector<std::string> lines;
    DiffTables({a, 0x0300, ignored}, {b, 0x0300, ignored}, [&](const Difference_t& difference) {
        std::string line = ChangeName(difference.change);
        line.append(" ").append(std::to_string(difference.Either().Type())).append(" ").append(difference.place);
        if (!difference.from.empty()) line.append(" from ").append(difference.from);
        for (const FactChange_t& fact : difference.facts) {
            line.append("; ").append(fact.key);
            if (fact.record >= 0) line.append("[").append(std::to_string(fact.record)).append("]");
            if (fact.offset >= 0) line.append("@").append(std::to_string(fact.offset));
            line.append("=").append(fact.a).append("|").append(fact.b);
        }
        lines.push_back(line);
    });
    return lines;
}

// The same machine with other handles and another order. Structures that share a handle keep their order, as it tells
// which of them is meant.
Bytes_t Renumbered(const Bytes_t& table, uint16_t version, std::mt19937& random) {
    std::vector<TableStructure_t> structures;
    for (TableStructure_t structure : ClWalk(table)) {
        const bool isBroken = structure.Length() < kHeaderSize;
        if (isBroken) structure.size = static_cast<uint32_t>(table.data() + table.size() - structure.data);
        structures.push_back(structure);
        if (isBroken) break;
    }
    const ClHandles handles(table);
    const auto references = [&](const TableStructure_t& structure, auto take) {
        ClFacts facts(structure, {.version = version});
        while (facts.Next())
            if (facts->kind == FactKind_t::kHandle) take(facts->offset, static_cast<uint16_t>(facts->number));
    };
    std::set<uint16_t> dangling;
    for (const TableStructure_t& structure : structures)
        references(structure, [&](uint32_t, uint16_t handle) {
            if (!handles.Has(handle, {})) dangling.insert(handle);
        });
    std::vector<uint16_t> free;
    for (unsigned handle = 0; handle < 0xFEFF; handle++)
        if (!dangling.contains(static_cast<uint16_t>(handle))) free.push_back(static_cast<uint16_t>(handle));
    std::ranges::shuffle(free, random);
    std::map<uint16_t, uint16_t> renamed;
    std::map<uint16_t, uint32_t> places;
    for (const TableStructure_t& structure : structures)
        if (renamed.emplace(structure.Handle(), free.back()).second) {
            free.pop_back();
            places[structure.Handle()] = random() & 0xFFFF;
        }
    std::ranges::stable_sort(structures, {}, [&](const TableStructure_t& each) {
        const bool isLast = each.Type() == kEndOfTable || !each.IsWhole() || each.Length() < kHeaderSize;
        return isLast ? 0x10000 : places[each.Handle()];
    });
    Bytes_t made;
    for (const TableStructure_t& structure : structures) {
        Bytes_t bytes(structure.data, structure.data + structure.size);
        const auto write = [&](uint32_t offset, uint16_t handle) { std::memcpy(&bytes[offset], &handle, 2); };
        references(structure, [&](uint32_t offset, uint16_t handle) {
            if (handles.Has(handle, {})) write(offset, renamed[handle]);
        });
        write(2, renamed[structure.Handle()]);
        made.insert(made.end(), bytes.begin(), bytes.end());
    }
    return made;
}

void ExpectNoDifference(const Bytes_t& table, uint16_t version, unsigned times) {
    std::mt19937 random(18);
    const ClDiffTable whole(table, version, {});
    for (unsigned i = 0; i < times; i++) {
        const Bytes_t other = Renumbered(table, version, random);
        DiffTables(whole, {other, version, {}}, [](const Difference_t& difference) {
            std::string facts;
            for (const FactChange_t& fact : difference.facts)
                facts.append(fact.key).append(" ").append(fact.a).append(" ").append(fact.b).append("; ");
            ADD_FAILURE() << ChangeName(difference.change) << " type " << int{difference.Either().Type()} << " "
                          << difference.place << ": " << facts;
        });
        if (::testing::Test::HasFailure()) return;
    }
}

TEST(Diff, HandlesAndOrderAreNoDifference) {
    const std::span<const uint8_t> sample = SampleTable();
    ExpectNoDifference({sample.begin(), sample.end()}, 0x0300, 100);
    ExpectNoDifference(TableOfAllTypes(5), 0x0300, 10);
}

TEST(RealTables, HandlesAndOrderAreNoDifference) {
    if (RealTables().empty()) GTEST_SKIP() << "no images of real machines here";
    for (const RealTable_t& real : RealTables()) {
        SCOPED_TRACE(real.name);
        ExpectNoDifference(real.table, real.version, 28);
    }
}

// What differs, without the values: the structures and the keys of their facts.
std::vector<std::string> NamesOf(const ClDiffTable& a, const ClDiffTable& b) {
    std::vector<std::string> names;
    DiffTables(a, b, [&](const Difference_t& difference) {
        std::set<std::pair<std::string_view, int>> facts;
        for (const FactChange_t& fact : difference.facts) facts.emplace(fact.key, fact.record);
        std::string name = ChangeName(difference.change);
        name.append(" ").append(std::to_string(difference.Either().Type())).append(" ").append(difference.place);
        name.append(" ").append(std::to_string(difference.Either().Handle())).append(" ").append(difference.from);
        for (const auto& [key, record] : facts) name.append(" ").append(key).append(std::to_string(record));
        names.push_back(name);
    });
    return names;
}

TEST(RealTables, DifferInTheSameFactsWhenTheyAreRedacted) {
    if (RealTables().empty()) GTEST_SKIP() << "no images of real machines here";
    const std::string key = "a key for the tests";
    const Hmac_t hmac = [&key](std::span<const uint8_t> message, std::span<uint8_t, 32> mac) {
        return os_HmacSha256({reinterpret_cast<const uint8_t*>(key.data()), key.size()}, message, mac);
    };
    std::deque<Bytes_t> copies;
    std::vector<std::unique_ptr<ClDiffTable>> before, after;
    for (const RealTable_t& real : RealTables()) {
        Bytes_t& copy = copies.emplace_back(real.table);
        ASSERT_TRUE(RedactTable(copy, {.version = real.version}, hmac));
        before.push_back(std::make_unique<ClDiffTable>(real.table, real.version, std::span<const std::string>()));
        after.push_back(std::make_unique<ClDiffTable>(copy, real.version, std::span<const std::string>()));
    }
    for (size_t i = 0; i < before.size(); i++)
        for (size_t j = i + 1; j < before.size(); j++)
            EXPECT_EQ(NamesOf(*before[i], *before[j]), NamesOf(*after[i], *after[j]))
                << RealTables()[i].name << " and " << RealTables()[j].name;
}

// An array with slots; each is a locator and a serial number, which is empty for an empty slot.
Structures_t Slots(const std::vector<std::pair<std::string, std::string>>& slots) {
    Structures_t all = {ClStructureBuilder(16, 0x17, 0x1000).Bytes(4, {3, 3, 3}).Word(0x0D, 4)};
    uint16_t handle = 0x1100;
    for (const auto& [locator, serial] : slots) {
        ClStructureBuilder slot(17, 0x28, handle++);
        slot.Word(4, 0x1000).Bytes(0x0E, {9, 0}).String(0x10, locator);
        if (!serial.empty()) slot.Word(12, 8192).String(0x18, serial);
        all.push_back(slot);
    }
    return all;
}

TEST(Diff, SaysWhatBecameOfParts) {
    const Bytes_t before = TableOf(Slots({
        {"A", "1111"},
        {"B", "2222"},
        {"C", ""    }
    }));
    const auto after = [&](const std::vector<std::pair<std::string, std::string>>& slots) {
        return Differences(before, TableOf(Slots(slots)));
    };
    using Lines_t = std::vector<std::string>;
    EXPECT_EQ(after({
                  {"A", "2222"},
                  {"B", "1111"},
                  {"C", ""    }
    }),
              (Lines_t{"moved 17 A from B", "moved 17 B from A"}));
    EXPECT_EQ(after({
                  {"A", "1111"},
                  {"B", ""    },
                  {"C", "2222"}
    }),
              (Lines_t{"moved 17 C from B"}));
    EXPECT_EQ(after({
                  {"A", "1111"},
                  {"B", "3333"},
                  {"C", ""    }
    }),
              (Lines_t{"replaced 17 B; serial_number=2222|3333"}));
    EXPECT_EQ(after({
                  {"A", "1111"},
                  {"X", ""    },
                  {"B", "2222"},
                  {"C", ""    }
    }),
              (Lines_t{"added 17 X"}));
    EXPECT_EQ(after({
                  {"A", "1111"},
                  {"B", "2222"}
    }),
              (Lines_t{"removed 17 C"}));
    EXPECT_EQ(after({
                  {"A", "1111"},
                  {"B", "2222"},
                  {"C", "4444"}
    }),
              (Lines_t{"changed 17 C; size=no device installed|8 GiB; serial_number=none|4444"}));
    EXPECT_EQ(after({
                  {"A1", "1111"},
                  {"B1", "2222"},
                  {"C1", ""    }
    }),
              (Lines_t{"changed 17 A1; device_locator=A|A1", "changed 17 B1; device_locator=B|B1",
                       "changed 17 C1; device_locator=C|C1"}));
}

TEST(Diff, NamesFactsPartsAndBytes) {
    const auto processor = [](uint16_t characteristics, const std::string& version) {
        return ClStructureBuilder(4, 0x28, 1).Word(0x26, characteristics).String(4, "CPU").String(0x10, version);
    };
    using Lines_t = std::vector<std::string>;
    // A word's parts say what changed in it.
    EXPECT_EQ(Differences(TableOf({ClStructureBuilder(7, 0x13).Word(5, 0x0180)}),
                          TableOf({ClStructureBuilder(7, 0x13).Word(5, 0x0100)})),
              (Lines_t{"changed 7 ; cache_configuration=Enabled (at boot time)|none set"}));
    EXPECT_EQ(Differences(TableOf({processor(4, "Old")}), TableOf({processor(4, "New")})),
              (Lines_t{"changed 4 CPU; processor_version=Old|New"}));
    EXPECT_EQ(Differences(TableOf({processor(4, "Old")}), TableOf({processor(4, "New")}), {"processor_version"}),
              Lines_t());
    const Bytes_t one = TableOf({ClStructureBuilder(11, 5).Byte(4, 1).Strings({"one"})}),
                  two = TableOf({ClStructureBuilder(11, 5).Byte(4, 1).Strings({"two"})});
    EXPECT_EQ(Differences(one, two), (Lines_t{"changed 11 ; string[0]=one|two"}));
    EXPECT_EQ(Differences(one, two, {"strings"}), Lines_t());
    // A structure that the standard doesn't have, and bytes after the last field of one that it has.
    EXPECT_EQ(Differences(TableOf({ClStructureBuilder(0xDD, 12).Bytes(4, {1, 2, 3, 4, 5, 6}).Strings({"one", "two"})}),
                          TableOf({ClStructureBuilder(0xDD, 12).Bytes(4, {1, 9, 9, 4, 5, 7}).Strings({"one", "2"})})),
              (Lines_t{"changed 221 ; data@5=0203|0909; data@9=06|07; string[1]=two|2"}));
    EXPECT_EQ(Differences(TableOf({ClStructureBuilder(13, 0x18).Bytes(0x16, {1, 2})}),
                          TableOf({ClStructureBuilder(13, 0x1A).Bytes(0x16, {1, 3, 4, 5})})),
              (Lines_t{"changed 13 ; data@23=02|03; data@24=|0405"}));
}

TEST(Diff, FollowsReferences) {
    // Two processors whose caches are alike: it counts which of them a processor has.
    const auto machine = [](uint16_t first, uint16_t second) {
        return TableOf({ClStructureBuilder(4, 0x20, 1).Word(0x1A, first).String(4, "CPU 1"),
                        ClStructureBuilder(4, 0x20, 2).Word(0x1A, second).String(4, "CPU 2"),
                        ClStructureBuilder(7, 0x13, 3).Word(7, 100).String(4, "L1"),
                        ClStructureBuilder(7, 0x13, 4).Word(7, 200).String(4, "L1")});
    };
    EXPECT_EQ(Differences(machine(3, 4), machine(3, 4)).size(), 0u);
    const std::vector<std::string> swapped = Differences(machine(3, 4), machine(4, 3));
    EXPECT_EQ(swapped.size(), 2u);
    const std::vector<std::string> lost = Differences(machine(3, 4), machine(3, 0x77));
    ASSERT_EQ(lost.size(), 1u);
    EXPECT_EQ(lost[0], "changed 4 CPU 2; l1_cache_handle=0004h (L1)|0077h (broken)");
}

}  // namespace
