// Items that depend on more than a field: on the structure's length, its texts, other structures, the version of the
// table or the processor. The listings test single fields (ListingsTest.cpp).
#include <gtest/gtest.h>

#include "Sources/SMBIOSType013.h"
#include "Sources/SMBIOSType017.h"
#include "Tests/Support/Structures.h"

namespace {

TEST(Type4, RenamesTwoFamiliesOnOneProcessor) {
    const auto ExpectFamily = [](uint32_t signature, uint8_t family, const char* text) {
        const ClStructureBuilder processor = ClStructureBuilder(4, 0x30).Byte(0x06, family).Word(0x28, family);
        const ClItems items = Decode(processor, {.signature = signature});
        EXPECT_EQ(items.Text("Processor Family"), text);
        EXPECT_EQ(items.Text("Processor Family 2"), text);
    };
    ExpectFamily(0x000406E0, 0x0B, "Lumetra(R) Ostrel(R) CPU");
    ExpectFamily(0x000406E0, 0x0F, "Lumetra(R) Vantor(R) CPU");
    ExpectFamily(0x000406E0, 0x0C, "Pentium(R) Pro processor");
    ExpectFamily(0x000506E0, 0x0B, "Ostrel Family");
    ExpectFamily(0x000406E2, 0x0F, "Lumetra(R) Vantor(R) CPU");
}

TEST(CountedItems, AreAsManyAsTheStructureSays) {
    EXPECT_EQ(Decode(ClStructureBuilder(10, 255)).Count(), 4u + 2 * 125);
    EXPECT_EQ(Decode(ClStructureBuilder(11, 5).Byte(4, 255).Strings({"one"})).Texts("OEM String").size(), 255u);
}

TEST(Type13, ShowsFlagsFromVersion21On) {
    const auto FlagsOf = [](uint8_t major, uint8_t minor) {
        return Decode(ClStructureBuilder(13, 0x16).Byte(5, 1), {.major = major, .minor = minor}).Text("Flags");
    };
    EXPECT_EQ(FlagsOf(1, 9), "None");
    EXPECT_EQ(FlagsOf(2, 0), "None");
    EXPECT_EQ(FlagsOf(2, 1), "01h");
    EXPECT_EQ(FlagsOf(3, 0), "01h");
    EXPECT_EQ(ClSMBIOSType13::GetLanguageName(nullptr), "Unknown Language");
}

// A firmware version structure of two entries.
ClStructureBuilder Versions(uint8_t type, uint8_t count = 2) {
    return ClStructureBuilder(type, 0x13)
        .Byte(0x04, count)
        .Bytes(0x05, {0, 1, 1, 2, 3, 0x04, 0x00})
        .Bytes(0x0C, {0, 2, 0x0A, 0xFF, 0, 0xCD, 0xAB});
}

// A group of members of these types.
ClStructureBuilder GroupOf(std::initializer_list<uint8_t> types) {
    ClStructureBuilder group(14, static_cast<uint8_t>(5 + 3 * types.size()));
    size_t offset = 5;
    for (const uint8_t type : types) group.Byte(offset, type), offset += 3;
    return group.Strings({"Group name"});
}

constexpr const char* kTitle = "Group Associations {Type 14}#GROUPNAME=\n";

// Expects these lines below the title for a table of this group and this structure.
void ExpectGroup(const char* what, const ClStructureBuilder& group, const ClStructureBuilder& member,
                 const std::string& lines) {
    EXPECT_EQ(Decode({group, member}).Lines(), kTitle + lines) << what;
}

TEST(Type14, ShowsTheVersionsOfItsMembers) {
    const ClStructureBuilder group = GroupOf({221});
    const std::string first = "BIOS= 01.02.03.0004\n", both = first + "EC= 0a.ff.00.abcd\n";
    ExpectGroup("names in order", group, Versions(221).Strings({"BIOS", "EC"}), both);
    ExpectGroup("a disabled name leaves its entry", group, Versions(221).Strings({"BIOS", "Disabled", "EC"}), both);
    ExpectGroup("fewer names than entries", group, Versions(221).Strings({"BIOS", "Disabled"}), first);
    ExpectGroup("no names", group, Versions(221), "(null string)= 01.02.03.0004\n(null string)= 0a.ff.00.abcd\n");
    ExpectGroup("no entries", group, Versions(221, 0).Strings({"BIOS"}), "");
    ExpectGroup("more entries than Length holds: bytes of the strings", group,
                Versions(221, 255).Strings({"BIOS", "EC", "ME"}), both + "ME= 4f.53.00.4345\n");
    ExpectGroup("more than the record holds: zeros", group,
                ClStructureBuilder(221, 5).Byte(4, 255).Strings({"a", "b", "c", "d"}),
                "a= 62.00.63.6400\nb= 00.00.00.0000\nc= 00.00.00.0000\nd= 00.00.00.0000\n");
    ExpectGroup("a count among the strings", GroupOf({11}), ClStructureBuilder(11, 4).Strings({"a"}),
                "a= 00.00.00.0000\n");
    ExpectGroup("a parsed record ends with its fixed bytes", GroupOf({0}), Versions(0, 4).Strings({"A", "B", "C", "D"}),
                "A= 01.02.03.0004\nB= 0a.ff.00.abcd\nC= 42.00.43.0000\nD= 00.00.00.0000\n");
    ExpectGroup("the first type that is present", GroupOf({200, 221, 221}), Versions(221, 1).Strings({"BIOS"}), first);
    ExpectGroup("no type that is present", GroupOf({200}), Versions(221), "");
    ExpectGroup("no room for a member", ClStructureBuilder(14, 4), Versions(221), "");
    ExpectGroup("a parsed record", GroupOf({0}), Versions(0).Strings({"BIOS", "EC"}), both);
    ExpectGroup("the group itself", GroupOf({14}).Byte(0x04, 1), Versions(221), "Group name= 00.47.72.756f\n");
}

TEST(Type14, TitlesTheFirstGroupAndShowsTheMembersOfAll) {
    const auto first = Versions(221, 1).Strings({"one"}), second = Versions(221, 1).Strings({"two"});
    const std::string members = "one= 01.02.03.0004\ntwo= 01.02.03.0004\n";
    EXPECT_EQ(Decode({GroupOf({221}), first, GroupOf({221}), second}).Lines(), kTitle + members + members);
}

TEST(Type17, CleansItsPartNumber) {
    const std::string replacement = "\xEF\xBF\xBD";
    const struct {
        const char* what;
        std::string given, shown;
    } kCases[] = {
        {"empty",                        "",                   ""                         },
        {"plain",                        "M393A4K40CB2-CTD ~", "M393A4K40CB2-CTD ~"       },
        {"control characters",           "\001A\tB\037",       ".A.B."                    },
        {"delete is no control here",    "A\x7F",              "A\x7F"                    },
        {"a byte of a single-byte page", "Sp\xE9zial",         "Sp" + replacement + "zial"},
        {"no lead byte, with a control", "\x80\n",             replacement + "."          },
    };
    for (const auto& c : kCases) EXPECT_EQ(ClSMBIOSType17::GetCleanPartNumber(c.given).View(), c.shown) << c.what;
}

}  // namespace
