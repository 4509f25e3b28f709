// The decoders of types 10 to 15, whose items depend on how much a structure holds.
#include <gtest/gtest.h>

#include "Sources/Decoders.h"
#include "Tests/Support/Structures.h"

namespace {

TEST(Type10, ShowsAsManyEntriesAsItHolds) {
    const auto devices = ClStructureBuilder(10, 9).Bytes(4, {0x83, 1, 0x03, 0, 0x8F}).Strings({"Display"});
    ExpectItems(devices, "On Board Devices Information {Type 10}",
                "Device Type=Enabled, Video\nDescription String=Display\n"
                "Device Type=Disabled, Video\nDescription String=None\n");
    const auto CountOf = [](uint8_t length) { return Decode(ClStructureBuilder(10, length)).Count(); };
    EXPECT_EQ(CountOf(5), 4u);
    EXPECT_EQ(CountOf(6), 4u + 2);
    EXPECT_EQ(CountOf(7), 4u + 2);
    EXPECT_EQ(CountOf(255), 4u + 2 * 125);
}

TEST(Types11And12, ListTheirStrings) {
    ExpectItems(ClStructureBuilder(11, 5).Byte(4, 3).Strings({"one", "two"}), "OEM Strings {Type 11}",
                "Number of OEM Strings=3\nOEM String=one\nOEM String=two\nOEM String=(no such string)\n");
    ExpectItems(ClStructureBuilder(12, 5).Byte(4, 1).Strings({"JP2: clear"}), "System Configuration Options {Type 12}",
                "Number of System Configuration Options Strings=1\n"
                "System Configuration Options String=JP2: clear\n");
    EXPECT_EQ(Decode(ClStructureBuilder(11, 5)).Count(), 5u);
    EXPECT_EQ(Decode(ClStructureBuilder(12, 5).Byte(4, 2)).Texts("System Configuration Options String"),
              (std::vector<std::string>{"(null string)", "(null string)"}));
    // All 255 strings of a full structure.
    EXPECT_EQ(Decode(ClStructureBuilder(11, 5).Byte(4, 255).Strings({"one"})).Texts("OEM String").size(), 255u);
}

ClStructureBuilder Languages(uint8_t count, uint8_t current) {
    return ClStructureBuilder(13, 0x16).Bytes(4, {count, 1}).Byte(0x15, current);
}

TEST(Type13, ShowsEveryField) {
    ExpectItems(Languages(2, 2).Strings({"EN|GB|iso8859-1", "frCA"}), "BIOS Language Information {Type 13}",
                "Current Language=frca (French, Canada)\nFlags=01h\nNumber of Installable Languages=2\n"
                "Language=en|gb|iso8859-1 (English, United Kingdom)\nLanguage=frca (French, Canada)\n");
}

TEST(Type13, TellsWhenTheCurrentLanguageIsNone) {
    const struct {
        uint8_t count, current;
        const char *text, *language;
    } kCases[] = {
        {1, 0, "(Invalid Current Language)", "enus (English, United States)"},
        {1, 2, "(Invalid Current Language)", "enus (English, United States)"},
        {0, 1, "(Invalid Current Language)", "(no such item)"               },
        {2, 2, "(Language(s) not set)",      "enus (English, United States)"},
    };
    for (const auto& c : kCases) {
        const ClItems items = Decode(Languages(c.count, c.current).Strings({"enus"}));
        EXPECT_EQ(items.Text("Current Language"), c.text);
        EXPECT_EQ(items.Text("Language"), c.language);
    }
    const ClItems empty = Decode(Languages(1, 1));
    EXPECT_EQ(empty.Text("Current Language"), "(Language(s) not set)");
    EXPECT_EQ(empty.Text("Language"), " (Language(s) not set)");
    EXPECT_EQ(Decode(Languages(1, 1).Strings({"(odd)"})).Text("Language"), " (Language(s) not set)");
}

TEST(Type13, ShowsFlagsFromVersion21On) {
    const auto FlagsOf = [](uint8_t major, uint8_t minor) {
        return Decode(Languages(0, 0), {.major = major, .minor = minor}).Text("Flags");
    };
    EXPECT_EQ(FlagsOf(1, 9), "None");
    EXPECT_EQ(FlagsOf(2, 0), "None");
    EXPECT_EQ(FlagsOf(2, 1), "01h");
    EXPECT_EQ(FlagsOf(3, 0), "01h");
}

// By the country's two letters, but for the French of three countries.
TEST(Type13, NamesLanguagesByTheirCountry) {
    const struct {
        const char *language, *name;
    } kCases[] = {
        {"en|us|iso8859-1", "English, United States"},
        {"fr|ca|iso8859-1", "French, Canada"        },
        {"frca",            "French, Canada"        },
        {"enca",            "English, Canada"       },
        {"fr|be",           "French, Belgium"       },
        {"nl|be",           "Dutch, Belgium"        },
        {"ja|jp|unicode",   "Japanese, Japan"       },
        {"de|de|iso8859-1", "Unknown Language"      },
        {"us",              "Unknown Language"      },
        {"en|u",            "Unknown Language"      },
        {"enu",             "Unknown Language"      },
        {"",                "Unknown Language"      },
        {nullptr,           "Unknown Language"      },
    };
    for (const auto& c : kCases)
        EXPECT_EQ(ClSMBIOSType13::GetLanguageName(c.language), c.name) << (c.language == nullptr ? "null" : c.language);
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
    ExpectGroup("more entries than it holds", group, Versions(221, 255).Strings({"BIOS", "EC", "ME"}), both);
    ExpectGroup("no room for a count", GroupOf({11}), ClStructureBuilder(11, 4).Strings({"a"}), "");
    ExpectGroup("the first type that is present", GroupOf({200, 221, 221}), Versions(221, 1).Strings({"BIOS"}), first);
    ExpectGroup("no type that is present", GroupOf({200}), Versions(221), "");
    ExpectGroup("no room for a member", ClStructureBuilder(14, 4), Versions(221), "");
    ExpectGroup("a parsed record", GroupOf({0}), Versions(0).Strings({"BIOS", "EC"}), both);
    ExpectGroup("the group itself", GroupOf({14}).Byte(0x04, 1), Versions(221), "");
}

TEST(Type14, TitlesTheFirstGroupAndShowsTheMembersOfAll) {
    const auto first = Versions(221, 1).Strings({"one"}), second = Versions(221, 1).Strings({"two"});
    const std::string members = "one= 01.02.03.0004\ntwo= 01.02.03.0004\n";
    EXPECT_EQ(Decode({GroupOf({221}), first, GroupOf({221}), second}).Lines(), kTitle + members + members);
}

// A log of the later form with room for three descriptors, which count themselves as `count`.
ClStructureBuilder LogWith(uint8_t count) {
    return ClStructureBuilder(15, 0x1D)
        .Byte(0x15, count)
        .Byte(0x16, 2)
        .Bytes(0x17, {0x01, 0x00, 0x08, 0x04, 0x10, 0xFF})
        .Strings({"behind"});
}

TEST(Type15, EarlyFormEndsWithTheAddress) {
    ClStructureBuilder log(15, 0x14);
    log.Word(0x04, 1024).Word(0x06, 0).Word(0x08, 16).Bytes(0x0A, {3, 1}).Dword(0x0C, 0x1A2B).Dword(0x10, 0x00710070);
    ExpectItems(log, "System Event Log {Type 15}",
                "Log Area Length=1024 (400h)\nLog Header Start Offset=0 (00h)\nLog Data Start Offset=16 (10h)\n"
                "Access Method=3\nLog Status=01h (Log Area: Not Full, Valid)\nLog Change Token=00001A2Bh\n"
                "Access Method Address=00710070h\n");
    // One byte less than the later form needs.
    EXPECT_EQ(Decode(ClStructureBuilder(15, 0x16)).Count(), 4u + 7u);
    EXPECT_EQ(Decode(ClStructureBuilder(15, 0x17)).Count(), 4u + 10u);
}

TEST(Type15, DescriptorsStopAtTheFormattedArea) {
    const std::string key = "List of Supported Event Log Type Descriptors";
    using Texts = std::vector<std::string>;
    EXPECT_EQ(Decode(LogWith(3)).Texts(key), (Texts{"\t\t01h 00h", "\t\t08h 04h", "\t\t10h FFh"}));
    EXPECT_EQ(Decode(LogWith(2)).Texts(key), (Texts{"\t\t01h 00h", "\t\t08h 04h"}));
    EXPECT_EQ(Decode(LogWith(0)).Texts(key), Texts{});
    EXPECT_EQ(Decode(LogWith(255)).Texts(key).size(), 3u);
    // The stated size of a descriptor doesn't change the step.
    EXPECT_EQ(Decode(LogWith(3).Byte(0x16, 3)).Texts(key)[1], "\t\t08h 04h");
}

}  // namespace
