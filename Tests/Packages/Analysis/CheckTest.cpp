// Each rule of check has a table with exactly its fault, made from one that has none.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>

#include "Packages/Analysis/Findings.h"
#include "Tests/Support/Structures.h"

namespace {

using Structures_t = std::map<uint8_t, ClStructureBuilder>;  // one of each type, in rising order

// A machine without a fault, by level 3.0: a processor with a cache, two slots' worth of memory in one module.
Structures_t Machine() {
    Structures_t all;
    const auto add = [&all](ClStructureBuilder structure) { all.emplace(structure.Type(), structure); };
    add(ClStructureBuilder(0, 0x18, 0x0000)
            .Bytes(4, {1, 2})
            .Word(6, 0xE000)
            .Byte(8, 3)
            .Strings({"Halvorsen", "HVB2.14", "05/12/2015"}));
    add(ClStructureBuilder(1, 0x1B, 0x0100)
            .Bytes(4, {1, 2, 3, 4})
            .Bytes(8, {1, 9, 8, 7, 6, 5, 4, 3, 2, 1, 2, 3, 4, 5, 6, 7})
            .Byte(0x18, 6)
            .Strings({"Halvorsen", "Fjelltind 2440", "Rev C", "HV24-0811-00417"}));
    add(ClStructureBuilder(3, 0x16, 0x0300).Bytes(4, {1, 0x17, 0, 0, 0, 3, 3, 3, 3}).Strings({"Halvorsen"}));
    add(ClStructureBuilder(4, 0x30, 0x0400)
            .Bytes(4, {1, 3, 0xB3, 2})
            .Byte(0x18, 0x41)
            .Word(0x14, 3000)
            .Word(0x16, 2500)
            .Byte(0x19, 1)
            .Word(0x1A, 0x0700)
            .Word(0x1C, 0xFFFF)
            .Word(0x1E, 0xFFFF)
            .Bytes(0x23, {4, 4, 8})
            .Word(0x28, 0xB3)
            .Word(0x2A, 4)
            .Word(0x2C, 4)
            .Word(0x2E, 8)
            .Strings({"CPU 1", "Norvane"}));
    add(ClStructureBuilder(7, 0x13, 0x0700)
            .Byte(4, 1)
            .Word(5, 0x0180)
            .Word(7, 0x0100)
            .Word(9, 0x0100)
            .Bytes(0x10, {5, 5, 7})
            .Strings({"L1"}));
    add(ClStructureBuilder(9, 0x11, 0x0900).Bytes(4, {1, 0xA5, 8, 3, 3}).Strings({"Slot 1"}));
    add(ClStructureBuilder(16, 0x17, 0x1000).Bytes(4, {3, 3, 3}).Dword(7, 0x01000000).Word(0x0B, 0xFFFE).Word(0x0D, 1));
    add(ClStructureBuilder(17, 0x28, 0x1100)
            .Word(4, 0x1000)
            .Word(6, 0xFFFE)
            .Word(8, 64)
            .Word(10, 64)
            .Word(12, 8192)
            .Bytes(0x0E, {9, 0, 1, 0, 0x1A})
            .Word(0x15, 3200)
            .Bytes(0x17, {2, 3})
            .Word(0x20, 2933)
            .Word(0x22, 1200)
            .Word(0x24, 1200)
            .Word(0x26, 1200)
            .Strings({"DIMM A1", "Norvane", "6F21A07C"}));
    add(ClStructureBuilder(19, 0x1F, 0x1300).Dword(8, 0x007FFFFF).Word(12, 0x1000).Byte(14, 1));
    add(ClStructureBuilder(32, 0x0B, 0x2000));
    add(ClStructureBuilder(127, 4, 0x7F00));
    return all;
}

std::vector<uint8_t> BytesOf(const Structures_t& structures, const std::vector<ClStructureBuilder>& more = {}) {
    std::vector<uint8_t> bytes;
    const auto add = [&bytes](const ClStructureBuilder& structure) {
        const std::vector<uint8_t> image = structure.Image();
        bytes.insert(bytes.end(), image.begin(), image.end());
    };
    for (const auto& [type, structure] : structures)
        if (type != 127) add(structure);
    for (const ClStructureBuilder& structure : more) add(structure);
    if (structures.contains(127)) add(structures.at(127));
    return bytes;
}

// The findings as "QR0501 type 17 memory_type x1", one a line.
std::string Findings(const CheckedTable_t& table, const RuleChoice_t& choice = {}) {
    std::string lines;
    for (const FindingGroup_t& group : FindGroups(table, choice))
        lines.append(RuleOf(group.rule).id)
            .append(" type ")
            .append(std::to_string(group.type))
            .append(" ")
            .append(group.key)
            .append(" x")
            .append(std::to_string(group.count))
            .append("\n");
    return lines;
}

// What a changed machine, with more structures before its end, has. Rows call a function, as clang-format would align
// rows of braces.
struct Case_t {
    const char* findings;
    std::function<void(Structures_t&)> change;
    std::vector<ClStructureBuilder> more;
};
Case_t Case(const char* findings, std::function<void(Structures_t&)> change,
            std::vector<ClStructureBuilder> more = {}) {
    return {findings, std::move(change), std::move(more)};
}

TEST(Check, FindsExactlyEachFault) {
    EXPECT_EQ(Findings({.bytes = BytesOf(Machine())}), "");
    const auto set = [](uint8_t type, size_t offset, std::initializer_list<uint8_t> bytes) {
        return [=, values = std::vector<uint8_t>(bytes)](Structures_t& all) {
            for (size_t i = 0; i < values.size(); i++) all.at(type).Byte(offset + i, values[i]);
        };
    };
    const auto nothing = [](Structures_t&) {};
    const Case_t cases[] = {
        Case("QR0103 type -1  x1\n", [](Structures_t& all) { all.erase(127); }),
        Case("QR0203 type 24  x1\n", nothing, {ClStructureBuilder(24, 4, 0x1800)}),
        Case("QR0204 type 9  x1\n",
             [](Structures_t& all) {
                 ClStructureBuilder slot(9, 0x0D, 0x0900);
                 all.insert_or_assign(9, slot.Bytes(4, {1, 0xA5, 8, 3, 3}).Strings({"Slot 1"}));
             }),
        Case("QR0205 type 32  x1\n", set(32, 2, {0x00, 0x01})),
        Case("QR0301 type 9 slot_designation x1\n", set(9, 4, {2})),
        Case("QR0302 type 12 string x1\n", nothing, {ClStructureBuilder(12, 5, 0x0C00).Byte(4, 1).Strings({"a\tb"})}),
        Case("QR0303 type 3 version x1\n", [](Structures_t& all) { all.at(3).String(6, "   "); }),
        Case("QR0304 type 3 version x1\n", [](Structures_t& all) { all.at(3).String(6, "Default string"); }),
        Case("QR0401 type 17 physical_memory_array_handle x1\nQR0701 type 16 number_of_memory_devices x1\n",
             set(17, 4, {0x34, 0x12})),
        Case("QR0402 type 4 l1_cache_handle x1\n", set(4, 0x1A, {0x00, 0x09})),
        Case("QR0501 type 17 memory_type x1\n", set(17, 0x12, {0x99})),
        Case("QR0502 type 2 contained_object_handles x1\n", nothing,
             {ClStructureBuilder(2, 0x0F, 0x0200).Byte(0x0D, 10).Word(0x0B, 0x0300).Byte(0x0E, 9)}),
        Case("QR0503 type 0 firmware_release_date x1\n", [](Structures_t& all) { all.at(0).String(8, "May 2015"); }),
        Case("QR0601 type -1  x1\n", [](Structures_t& all) { all.erase(9); }),
        Case("QR0602 type 1 product_name x1\n", set(1, 5, {0})),
        Case("QR0701 type 16 number_of_memory_devices x1\n", set(16, 0x0D, {2})),
        Case("QR0702 type 16 capacity x1\n", set(16, 7, {0, 0, 0x40, 0})),
        Case("QR0703 type 19  x1\n", set(19, 8, {0xFF, 0xFF, 0x3F, 0})),
        Case("QR0704 type 20 range_end x1\n", nothing,
             {ClStructureBuilder(20, 0x23, 0x1400)
                  .Dword(4, 0x2000)
                  .Dword(8, 0x1000)
                  .Word(12, 0x1100)
                  .Word(14, 0x1300)
                  .Byte(0x10, 1)}),
        Case("QR0705 type 19 range_start x1\n", [](Structures_t& all) { all.at(19).Dword(8, 0x005FFFFF); },
             {ClStructureBuilder(19, 0x1F, 0x1301).Dword(4, 0x00400000).Dword(8, 0x007FFFFF).Word(12, 0x1000)}),
        Case("QR0711 type 7 cache_size x1\n", set(7, 9, {0x00, 0x02})),
        Case("QR0712 type 7 installed_cache_size_2 x1\n",
             [](Structures_t& all) {
                 ClStructureBuilder cache(7, 0x1B, 0x0700);
                 cache.Byte(4, 1).Word(5, 0x0180).Word(7, 0x0100).Word(9, 0x0100).Bytes(0x10, {5, 5, 7});
                 all.insert_or_assign(7, cache.Dword(0x13, 0x0100).Dword(0x17, 0x0080).Strings({"L1"}));
             }),
        Case("QR0713 type 4 core_count_2 x1\n", set(4, 0x2A, {6})),
        Case("QR0714 type 4 cores_enabled x1\n", [](Structures_t& all) { all.at(4).Byte(0x24, 6).Word(0x2C, 6); }),
        Case("QR0715 type 4 current_speed x1\n", set(4, 0x16, {0xFF, 0x0F})),
        Case("QR0721 type 17 extended_size x1\n", set(17, 0x1C, {0, 0x10, 0, 0})),
        Case("QR0722 type 17 data_width x1\n", set(17, 10, {72})),
        Case("QR0723 type 16 memory_error_correction x1\n", set(16, 6, {6})),
        Case("QR0724 type 17 configured_voltage x1\n", set(17, 0x26, {0x14, 0x05})),
        Case("QR0725 type 17 configured_speed x1\n", set(17, 0x20, {0xFF, 0x0F})),
        Case("QR0801 type 1 uuid x1\n",
             [](Structures_t& all) {
                 for (size_t i = 0; i < 16; i++) all.at(1).Byte(8 + i, 0xFF);
             }),
    };
    std::set<std::string_view> seen;
    for (const Case_t& c : cases) {
        Structures_t machine = Machine();
        c.change(machine);
        EXPECT_EQ(Findings({.bytes = BytesOf(machine, c.more)}), c.findings);
        seen.insert(std::string_view(c.findings).substr(0, 6));
    }

    // What concerns the table as a whole.
    const std::vector<uint8_t> bytes = BytesOf(Machine());
    EXPECT_EQ(Findings({.bytes = bytes, .checksumsFit = false}), "QR0101 type -1  x1\n");
    EXPECT_EQ(Findings({.bytes = bytes, .missing = 7}), "QR0102 type -1  x1\n");
    EXPECT_EQ(Findings({.bytes = bytes, .structures = 10}), "QR0104 type -1  x1\n");
    EXPECT_EQ(Findings({.bytes = bytes, .largest = 72}), "QR0105 type 1  x1\n");
    EXPECT_EQ(Findings({.bytes = bytes, .structures = 11, .largest = 73}), "");
    std::vector<uint8_t> shortened(bytes.begin(), bytes.end() - 1);
    EXPECT_EQ(Findings({.bytes = shortened}), "QR0202 type 127  x1\n");
    // After a broken structure nothing can be told.
    shortened = {200, 2, 0x34, 0x12, 0, 0, 200, 2, 0x34, 0x12, 0, 0};
    EXPECT_EQ(Findings({.bytes = shortened}), "QR0201 type 200  x1\n");
    EXPECT_EQ(Findings({.bytes = shortened, .missing = 7}), "QR0102 type -1  x1\nQR0201 type 200  x1\n");
    // Two modules of one maker with one serial number.
    Structures_t machine = Machine();
    machine.at(16).Word(0x0D, 2);
    machine.at(19).Dword(8, 0x00FFFFFF);
    const ClStructureBuilder twin = Machine().at(17).Word(2, 0x1101);
    EXPECT_EQ(Findings({.bytes = BytesOf(machine, {twin})}), "QR0802 type 17 serial_number x1\n");
    seen.insert({"QR0101", "QR0102", "QR0104", "QR0105", "QR0201", "QR0202", "QR0802"});
    for (const RuleId_t rule : kRules) EXPECT_TRUE(seen.contains(RuleOf(rule).id)) << RuleOf(rule).id;
}

// Tables that are almost like those with a fault.
TEST(Check, LeavesWhatIsRightAlone) {
    const auto word = [](uint8_t type, size_t offset, uint16_t value) {
        return [=](Structures_t& all) { all.at(type).Word(offset, value); };
    };
    const auto nothing = [](Structures_t&) {};
    const Case_t cases[] = {
        Case("", nothing, {ClStructureBuilder(24, 5, 0x1800)}),
        Case("", nothing, {ClStructureBuilder(12, 5, 0x0C00).Byte(4, 1).Strings({"caf\xC3\xA9"})}),
        Case("", nothing,
             {ClStructureBuilder(2, 0x13, 0x0200)
                  .Byte(0x0D, 10)
                  .Word(0x0B, 0x0300)
                  .Byte(0x0E, 2)
                  .Word(0x0F, 0x0400)
                  .Word(0x11, 0x0900)}),
        Case("", nothing,
             {ClStructureBuilder(20, 0x23, 0x1400)
                  .Dword(8, 0x007FFFFF)
                  .Word(12, 0x1100)
                  .Word(14, 0x1300)
                  .Byte(0x10, 1)}),
        Case("", nothing, {ClStructureBuilder(221, 4, 0xDD00).Strings({"a", "b"})}),
        // No error was reported, or the firmware doesn't report errors.
        Case("", word(17, 6, 0xFFFF)),
        Case("", word(17, 6, 0xFFFE)),
        // No cache of this level, an unknown speed, a size in the second form, as many enabled as there are.
        Case("", word(4, 0x1A, 0xFFFF)),
        Case("", word(4, 0x16, 0)),
        Case("", word(17, 0x20, 0)),
        Case("", [](Structures_t& all) { all.at(17).Word(12, 0x7FFF).Dword(0x1C, 8192); }),
        Case("",
             [](Structures_t& all) {
                 all.at(4)
                     .Byte(0x23, 0xFF)
                     .Byte(0x24, 0xFF)
                     .Byte(0x25, 0xFF)
                     .Word(0x2A, 300)
                     .Word(0x2C, 300)
                     .Word(0x2E, 600);
             }),
        // Check bits, and an array that has them; ranges next to each other; addresses that no memory has below 1 MiB.
        Case("",
             [](Structures_t& all) {
                 all.at(16).Byte(6, 6);
                 all.at(17).Word(8, 72);
             }),
        Case("", [](Structures_t& all) { all.at(19).Dword(8, 0x003FFFFF); },
             {ClStructureBuilder(19, 0x1F, 0x1301).Dword(4, 0x00400000).Dword(8, 0x007FFFFF).Word(12, 0x1000)}),
        Case("", [](Structures_t& all) { all.at(19).Dword(8, 0x0009FFFF); },
             {ClStructureBuilder(19, 0x1F, 0x1301).Dword(4, 0x000A0080).Dword(8, 0x007FFFFF).Word(12, 0x1000)}),
    };
    for (const Case_t& c : cases) {
        Structures_t machine = Machine();
        c.change(machine);
        EXPECT_EQ(Findings({.bytes = BytesOf(machine, c.more)}), c.findings) << "case " << &c - cases;
    }
}

// What is right for the version, or too new for it, is no finding.
TEST(Check, JudgesByTheVersion) {
    const auto without = [](uint8_t type) {
        Structures_t all = Machine();
        all.erase(type);
        return BytesOf(all);
    };
    EXPECT_EQ(Findings({.bytes = without(127), .version = 0x0201}), "");
    EXPECT_EQ(Findings({.bytes = without(9), .version = 0x0202}), "");
    // 2.31 is 2.3.1, which hasn't the fields of 2.4.
    const std::vector<uint8_t> firmware = TableOf({ClStructureBuilder(0, 0x14, 0x0000)
                                                       .Bytes(4, {1, 2})
                                                       .Byte(8, 3)
                                                       .Strings({"Halvorsen", "HVB2.14", "05/12/2015"})});
    RuleChoice_t choice;
    for (const char* line : {"off all", "on QR0204"}) EXPECT_EQ(choice.AddLine(line), "");
    EXPECT_EQ(Findings({.bytes = firmware, .version = 0x021F}, choice), "");
    EXPECT_EQ(Findings({.bytes = firmware, .version = 0x0204}, choice), "QR0204 type 0  x1\n");
    // Codes at places that the version doesn't have: a rack type in a table of 3.0.
    Structures_t all = Machine();
    all.insert_or_assign(
        3,
        ClStructureBuilder(3, 0x18, 0x0300).Bytes(4, {1, 0x17, 0, 0, 0, 3, 3, 3, 3}).Byte(0x16, 0xEE).Strings({"H"}));
    EXPECT_EQ(Findings({.bytes = BytesOf(all)}), "");
    EXPECT_EQ(Findings({.bytes = BytesOf(all), .version = 0x0309}, {.least = Severity_t::kWarning, .settings = {}}),
              "QR0501 type 3 rack_type x1\n");
}

TEST(Check, RulesAreOnAndOffByAProfile) {
    Structures_t machine = Machine();
    machine.at(17).Byte(0x12, 0x99);
    machine.at(3).String(6, "Default string");
    const std::vector<uint8_t> bytes = BytesOf(machine);
    const auto with = [&](std::initializer_list<const char*> lines) {
        RuleChoice_t choice;
        for (const char* line : lines) EXPECT_EQ(choice.AddLine(line), "") << line;
        return Findings({.bytes = bytes}, choice);
    };
    const std::string code = "QR0501 type 17 memory_type x1\n", filler = "QR0304 type 3 version x1\n";
    EXPECT_EQ(with({"# nothing", "", "  "}), code + filler);
    EXPECT_EQ(with({"off all", "on QR0501"}), code);
    EXPECT_EQ(with({"off QR0501 type 17", "off QR0304 type 2"}), filler);
    EXPECT_EQ(with({"off QR0304 maker halvorsen"}), code);
    EXPECT_EQ(with({"off QR0304 maker Norvane"}), code + filler);
    for (const char* wrong : {"QR0501", "off", "off QR9999", "off QR0501 type", "off QR0501 type 256",
                              "on QR0501 maker", "on QR0501 board 3"})
        EXPECT_NE(RuleChoice_t().AddLine(wrong), "") << wrong;
}

}  // namespace
