// The decoders of types 0 to 3: BIOS, system, baseboard and chassis.
#include <gtest/gtest.h>

#include "Tests/Support/Structures.h"

namespace {

const ClStructureBuilder kBios =
    ClStructureBuilder(0, 0x18).Bytes(4, {1, 2, 0, 0xF0, 3}).Strings({"Maker", "1.2", "01/02/2026"});

TEST(Type0, ShowsVersionCharacteristicsAndReleases) {
    const ClItems items = Decode(ClStructureBuilder(kBios)
                                     .Byte(9, 255)
                                     .Dword(0x0A, 0x80000008)
                                     .Byte(0x12, 0x81)
                                     .Byte(0x13, 0xFC)
                                     .Bytes(0x14, {255, 7, 255, 26}));
    EXPECT_EQ(items.Count(), 56u);
    const struct {
        const char *key, *text;
    } kCases[] = {
        {"BIOS Vendor",                                "Maker"              },
        {"BIOS Version",                               "1.2"                },
        {"Starting Address Segment",                   "F000h"              },
        {"BIOS Release Date",                          "01/02/2026"         },
        {"BIOS ROM Size",                              "16384 KB"           },
        {"BIOS Characteristics#GROUPNAME",             ""                   },
        {"BIOS Characteristics Not Supported",         "Yes"                },
        {"ISA is supported",                           "No"                 },
        {"NEC PC-98",                                  "Yes"                },
        {"ACPI Supported",                             "Yes"                },
        {"USB Legacy is Supported",                    "No"                 },
        {"Smart Battery Supported",                    "Yes"                },
        {"BIOS Boot Specification supported",          "No"                 },
        {"Enable Targeted Content Distribution",       "Yes"                },
        {"System BIOS Minor Release",                  "7"                  },
        {"System BIOS Major Release",                  "255"                },
        {"Embedded Controller Firmware Major Release", "255 (Not Supported)"},
        {"Embedded Controller Firmware Minor Release", "1ah (26)"           },
    };
    for (const auto& c : kCases) EXPECT_EQ(items.Text(c.key), c.text) << c.key;
    EXPECT_EQ(items[52].key, "System BIOS Minor Release");  // in front of the major one
    EXPECT_EQ(items[54].key, "Embedded Controller Firmware Major Release");
}

TEST(Type0, EndsAtAMissingVersion) {
    const ClItems items = Decode(ClStructureBuilder(kBios).Bytes(4, {0, 0}));
    EXPECT_EQ(
        items.Lines(),
        "BIOS Information {Type 0}#GROUPNAME=\nType=0\nLength=24\nHandle=16\nBIOS Vendor=None\nBIOS Version=None\n");
    // A number that names no string is no missing version.
    EXPECT_EQ(Decode(ClStructureBuilder(kBios).Bytes(4, {9, 9})).Count(), 56u);
    EXPECT_EQ(Decode(ClStructureBuilder(kBios).Bytes(4, {9, 9})).Text("BIOS Version"), "None");
}

TEST(Type0, ShowsStringBytesForAShortStructure) {
    const ClItems items = Decode(ClStructureBuilder(0, 18).Bytes(4, {1, 1}).Strings({"\x01\x02\x03\x04\x05\x06"}));
    EXPECT_EQ(items.Count(), 56u);
    EXPECT_EQ(items.Text("ACPI Supported"), "Yes");
    EXPECT_EQ(items.Text("System BIOS Major Release"), "3");
    EXPECT_EQ(items.Text("Embedded Controller Firmware Minor Release"), "6h (6)");
}

TEST(Type1, ShowsStringsUuidAndWakeUp) {
    ClStructureBuilder structure = ClStructureBuilder(1, 0x1B)
                                       .Bytes(4, {1, 0, 9, 2, 0x4C, 0x00, 0x10, 0xAB})
                                       .Bytes(0x18, {6, 3, 0})
                                       .Strings({"M", "S", "K"});
    const ClItems items = Decode(structure);
    EXPECT_EQ(items.Lines(),
              "System Information {Type 1}#GROUPNAME=\nType=1\nLength=27\nHandle=16\n"
              "Manufacturer=M\nProduct Name=None\nVersion=None\nSerial Number=S\n"
              "UUID=4c 0 10 ab 0 0 0 0 0 0 0 0 0 0 0 0\nWake-up Type=Power Switch\nSKU Number=K\nFamily=None\n");
    const char* kWakeUps[] = {"None",       "Other",        "Unknown",  "APM Timer",         "Modem Ring",
                              "LAN Remote", "Power Switch", "PCI PME#", "AC Power Restored", "Error: Invalid Type"};
    for (uint8_t code = 0; code < 10; code++)
        EXPECT_EQ(Decode(structure.Byte(0x18, code)).Text("Wake-up Type"), kWakeUps[code]) << int{code};
    // A structure without UUID still shows all keys.
    EXPECT_EQ(Decode(ClStructureBuilder(1, 8).Byte(4, 1).Strings({"M"})).Count(), 12u);
}

TEST(Type2, ShowsStringsFeaturesAndBoardType) {
    const ClStructureBuilder structure = ClStructureBuilder(2, 0x0F)
                                             .Bytes(4, {1, 2, 3, 0, 4})
                                             .Byte(0x0A, 5)
                                             .Word(0x0B, 0x12)
                                             .Strings({"m", "n", "f", "t", "l"});
    EXPECT_EQ(Decode(structure).Lines(),
              "Base board Information {Type 2}#GROUPNAME=\nType=2\nLength=15\nHandle=16\n"
              "Manufacturer=m\nBoard Name/ ID=n\nFab ID=f\nSerial Number=None\nAssert Tag=t\nFeature Flag=None\n"
              "Board Type=Error: Invalid Type\nLocation In Chassis =l\nChassis Handle=00000012h\n");
    const struct {
        uint8_t offset, value;
        const char *key, *text;
    } kCases[] = {
        {0x09, 0x09, "Feature Flag",         "Hosting Board, replaceable"                           },
        {0x09, 0x20, "Feature Flag",         ""                                                     },
        {0x09, 0x21, "Feature Flag",         "Hosting Board, "                                      },
        {0x09, 0x06, "Feature Flag",         "Requires Daughter Board or Auxiliary card , removable"},
        {0x0D, 1,    "Board Type",           "Unknown"                                              },
        {0x0D, 4,    "Board Type",           "Convectivity Switch"                                  },
        {0x0D, 10,   "Board Type",           "Mother Board (includes processor, memory and I/O)"    },
        {0x0D, 13,   "Board Type",           "InterConnect Board"                                   },
        {0x0D, 14,   "Board Type",           "Error: Invalid Type"                                  },
        {0x0A, 0,    "Location In Chassis ", "None"                                                 },
    };
    for (const auto& c : kCases)
        EXPECT_EQ(Decode(ClStructureBuilder(structure).Byte(c.offset, c.value)).Text(c.key), c.text) << int{c.value};
}

TEST(Type3, EachByteReadsAsItsTableSays) {
    const struct {
        uint8_t offset, value;
        const char *key, *text;
    } kCases[] = {
        {0x04, 0,    "Manufacturer",          "None"                 },
        {0x04, 1,    "Manufacturer",          "first"                },
        {0x04, 3,    "Manufacturer",          "(no such string)"     },
        {0x05, 0,    "Chassis Type",          "None"                 },
        {0x05, 0,    "Chassis Lock",          "None"                 },
        {0x05, 0x80, "Chassis Type",          "Error: Invalid Type"  },
        {0x05, 0x80, "Chassis Lock",          "Present"              },
        {0x05, 0x83, "Chassis Type",          "Desktop"              },
        {0x05, 36,   "Chassis Type",          "Stick PC"             },
        {0x05, 37,   "Chassis Type",          "Error: Invalid Type"  },
        {0x09, 0,    "Bootup State",          "Error: Invalid State" },
        {0x0A, 6,    "Power Supply State",    "Non-recoverable"      },
        {0x0B, 7,    "Thermal State",         "Error: Invalid State" },
        {0x0C, 3,    "Security Status",       "None"                 },
        {0x0C, 6,    "Security Status",       "Error: Invalid Status"},
        {0x0D, 0xAB, "OEM Defined",           "000000ABh"            },
        {0x11, 0,    "Height",                "Unspecified"          },
        {0x11, 1,    "Height",                "4 cm"                 },
        {0x11, 42,   "Height",                "186 cm"               },
        {0x11, 255,  "Height",                "1133 cm"              },
        {0x12, 0,    "Number Of Power Cords", "Unspecified"          },
        {0x12, 2,    "Number Of Power Cords", "2"                    },
    };
    for (const auto& c : kCases) {
        const ClItems items = Decode(ClStructureBuilder(3, 0x15).Byte(c.offset, c.value).Strings({"first", "second"}));
        EXPECT_EQ(items.Text(c.key), c.text) << c.key << " of " << int{c.value};
    }
    EXPECT_EQ(Decode(ClStructureBuilder(3, 0x15).Byte(4, 2)).Text("Manufacturer"), "(null string)");
}

TEST(Type3, ReadsOnIntoTheRecordOfAShortStructure) {
    const ClItems items = Decode(ClStructureBuilder(3, 0x0D).Strings({"AB"}));
    EXPECT_EQ(items.Text("OEM Defined"), "00004241h");  // string bytes, then the closing NULs
    EXPECT_EQ(items.Text("Height"), "Unspecified");     // behind the record
}

}  // namespace
