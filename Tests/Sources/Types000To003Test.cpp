// The decoders of types 0 to 3: BIOS, system, baseboard and chassis.
#include <gtest/gtest.h>

#include "Tests/Support/Expectations.h"

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
    const KeyText_t kTexts[] = {
        {"Starting Address Segment",                   "F000h"              },
        {"BIOS Release Date",                          "01/02/2026"         },
        {"BIOS ROM Size",                              "16384 KB"           },
        {"BIOS Characteristics#GROUPNAME",             ""                   },
        {"BIOS Characteristics Not Supported",         "Yes"                },
        {"NEC PC-98",                                  "Yes"                },
        {"ACPI Supported",                             "Yes"                },
        {"BIOS Boot Specification supported",          "No"                 },
        {"Enable Targeted Content Distribution",       "Yes"                },
        {"System BIOS Minor Release",                  "7"                  },
        {"System BIOS Major Release",                  "255"                },
        {"Embedded Controller Firmware Major Release", "255 (Not Supported)"},
        {"Embedded Controller Firmware Minor Release", "1ah (26)"           },
    };
    ExpectTexts(items, kTexts);
    EXPECT_EQ(items[52].key, "System BIOS Minor Release");  // in front of the major one
    EXPECT_EQ(items[54].key, "Embedded Controller Firmware Major Release");
}

TEST(Type0, EndsAtAMissingVersion) {
    ExpectItems(ClStructureBuilder(kBios).Bytes(4, {0, 0}), "BIOS Information {Type 0}",
                "BIOS Vendor=None\nBIOS Version=None\n");
    // A number that names no string is no missing version.
    const ClItems unnamed = Decode(ClStructureBuilder(kBios).Bytes(4, {9, 9}));
    EXPECT_EQ(unnamed.Count(), 56u);
    EXPECT_EQ(unnamed.Text("BIOS Version"), "None");
}

TEST(Type1, ShowsStringsUuidAndWakeUp) {
    const ClStructureBuilder system = ClStructureBuilder(1, 0x1B)
                                          .Bytes(4, {1, 0, 9, 2, 0x4C, 0x00, 0x10, 0xAB})
                                          .Bytes(0x18, {6, 3, 0})
                                          .Strings({"M", "S", "K"});
    ExpectItems(system, "System Information {Type 1}",
                "Manufacturer=M\nProduct Name=None\nVersion=None\nSerial Number=S\n"
                "UUID=4c 0 10 ab 0 0 0 0 0 0 0 0 0 0 0 0\nWake-up Type=Power Switch\nSKU Number=K\nFamily=None\n");
}

TEST(Type2, ShowsStringsFeaturesAndBoardType) {
    const ClStructureBuilder board = ClStructureBuilder(2, 0x0F)
                                         .Bytes(4, {1, 2, 3, 0, 4})
                                         .Byte(0x0A, 5)
                                         .Word(0x0B, 0x12)
                                         .Strings({"m", "n", "f", "t", "l"});
    ExpectItems(board, "Base board Information {Type 2}",
                "Manufacturer=m\nBoard Name/ ID=n\nFab ID=f\nSerial Number=None\nAssert Tag=t\nFeature Flag=None\n"
                "Board Type=Error: Invalid Type\nLocation In Chassis =l\nChassis Handle=00000012h\n");
}

}  // namespace
