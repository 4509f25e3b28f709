// The decoders of types 16 to 20: memory arrays, memory devices, their errors and their addresses.
#include <gtest/gtest.h>

#include "Sources/Decoders.h"
#include "Tests/Support/Expectations.h"

namespace {

const std::string kReplacement = "\xEF\xBF\xBD";

TEST(MemoryArray, CapacityAndEnumerations) {
    const auto array = ClStructureBuilder(16, 0x17).Dword(0x07, 0x80000000).Qword(0x0F, 0x180000000);
    EXPECT_EQ(Decode(array).Text("Maximum Capacity"), "2147483648");
    EXPECT_EQ(Decode(array).Text("Extended Maximum Capacity"), "0001h 80000000h");
    const std::string invalid = "Error: Invalid Type";
    ExpectEnumeration(array, 0x04, "Location", invalid, {1, "Other", 10, "NuBus"},
                      {160, "PC-98/C20 add-on card", 163, "PC-98/Local bus add-on card"});
    ExpectEnumeration(array, 0x05, "Use", invalid, {1, "Other", 7, "Cache memory"});
    ExpectEnumeration(array, 0x06, "Memory Error Correction", invalid, {1, "Other", 7, "CRC"});
    EXPECT_EQ(Decode(ClStructureBuilder(array).Byte(0x04, 162)).Text("Location"), "PC-98/E add-on card\t");
}

TEST(MemoryDevice, Items) {
    ClStructureBuilder device(17, 0x28);
    device.Word(0x04, 0x1000).Word(0x06, 0xFFFE).Word(0x08, 72).Word(0x0A, 64).Word(0x0C, 0x7FFF);
    device.Bytes(0x0E, {9, 0, 1, 2, 26}).Word(0x13, 0x4080).Word(0x15, 2666).Bytes(0x17, {3, 4, 0, 5, 0x82});
    device.Dword(0x1C, 32768).Word(0x20, 2400).Word(0x22, 1200).Word(0x26, 1250);
    device.Strings({"DIMM A1", "BANK 0", "ACME", "12\"34", "AC\tME"});
    ExpectItems(device, "Memory Device {Type 17}",
                "Memory Array Handle=1000h\nMemory Error Information Handle=FFFEh\nTotal Width=72 (0048h)\n"
                "Data Width=64 (0040h)\nSize=32767 (7FFFh)\nForm Factor=DIMM\nDevice Set=0000h\n"
                "Device Locator=DIMM A1\nBank Locator=BANK 0\nMemory Type=DDR4\nType Detail=4080h\n"
                "Type Detail Description=Synchronous, Unbuffered (Unregistered)\nSpeed=2666 MHz\n"
                "Manufacturer=ACME\nSerial Number=12\"34\nAssert Tag=None\nPart Number=AC.ME\nAttributes=130\n"
                "Extended Size=   32768 MB\nConfigured Memory Clock Speed=2400 MHz\n"
                "Minimum Voltage=1200\nMaximum Voltage=Unknown\nConfigured Voltage=1250\n");
}

TEST(MemoryDevice, SizesAreShownAsTheyStand) {
    const struct {
        uint16_t size;
        uint32_t extendedSize;
        const char *sizeText, *extendedText;
    } kCases[] = {
        {0x0000, 5,          "0 (0000h)",     "0"            },
        {0x8200, 5,          "33280 (8200h)", "0"            },
        {0x7FFE, 5,          "32766 (7FFEh)", "0"            },
        {0xFFFF, 5,          "65535 (FFFFh)", "0"            },
        {0x7FFF, 5,          "32767 (7FFFh)", "       5 MB"  },
        {0x7FFF, 12345678,   "32767 (7FFFh)", "12345678 MB"  },
        {0x7FFF, 0xFFFFFFFF, "32767 (7FFFh)", "4294967295 MB"},
    };
    for (const auto& c : kCases) {
        const ClItems items = Decode(ClStructureBuilder(17, 0x28).Word(0x0C, c.size).Dword(0x1C, c.extendedSize));
        EXPECT_EQ(items.Text("Size"), c.sizeText);
        EXPECT_EQ(items.Text("Extended Size"), c.extendedText);
    }
}

TEST(MemoryDevice, ValuesWithoutAName) {
    const Reading_t kReadings[] = {
        {0x0E, 0,    "Form Factor", "Unknown, Value read = 0x00"},
        {0x0E, 15,   "Form Factor", "FB-DIMM"                   },
        {0x0E, 16,   "Form Factor", "Unknown, Value read = 0x10"},
        {0x0E, 0xAB, "Form Factor", "Unknown, Value read = 0xAB"},
        {0x12, 30,   "Memory Type", "LPDDR4"                    },
        {0x12, 31,   "Memory Type", "Unknown, Value read = 0x1F"},
        {0x12, 0xFF, "Memory Type", "Unknown, Value read = 0xFF"},
    };
    ExpectBytes(ClStructureBuilder(17, 0x28), kReadings);
}

TEST(MemoryDevice, TypeDetail) {
    const Reading_t kReadings[] = {
        {0x13, 0x0000, "Type Detail Description", "None"                                },
        {0x13, 0x0001, "Type Detail Description", "Reserved, set to 0"                  },
        {0x13, 0x0100, "Type Detail Description", "CMOS"                                },
        {0x13, 0xA002, "Type Detail Description", "Other, Registered (Buffered), LRDIMM"},
    };
    ExpectWords(ClStructureBuilder(17, 0x28), kReadings);
}

TEST(MemoryDevice, PartNumberIsCleaned) {
    const struct {
        const char* what;
        std::string given, shown;
    } kCases[] = {
        {"empty",                        "",                     ""                          },
        {"plain",                        "M393A4K40CB2-CTD ~",   "M393A4K40CB2-CTD ~"        },
        {"control characters",           "\001A\tB\037",         ".A.B."                     },
        {"delete is no control here",    "A\x7F",                "A\x7F"                     },
        {"two and three bytes",          "\xC3\xA9\xE2\x82\xAC", "\xC3\xA9\xE2\x82\xAC"      },
        {"beyond 16 bits",               "A\xF0\x9F\x98\x80 B",  "A\xF0\x9F\x98\x80 B"       },
        {"a byte of a single-byte page", "Sp\xE9zial",           "Sp" + kReplacement + "zial"},
        {"bytes that no text has",       "\xFF\xFF",             kReplacement + kReplacement },
        {"no lead byte, with a control", "\x80\n",               kReplacement + "."          },
        {"cut off",                      "A\xC3",                "A" + kReplacement          },
        {"longer than it need be",       "\xC0\xAF",             kReplacement + kReplacement },
    };
    for (const auto& c : kCases) EXPECT_EQ(ClSMBIOSType17::GetCleanPartNumber(c.given), c.shown) << c.what;
}

TEST(MemoryDevice, StringNumbers) {
    const ClItems items = Decode(ClStructureBuilder(17, 0x28).Byte(0x1A, 7).Strings({"first"}));
    EXPECT_EQ(items.Text("Device Locator"), "first");
    EXPECT_EQ(items.Text("Bank Locator"), "first");
    EXPECT_EQ(items.Text("Manufacturer"), "None");
    EXPECT_EQ(items.Text("Part Number"), "(no such string)");
    EXPECT_EQ(Decode(ClStructureBuilder(17, 0x28)).Text("Device Locator"), "(null string)");
    EXPECT_EQ(Decode(ClStructureBuilder(17, 0x28)).Text("Part Number"), "None");
}

TEST(MemoryError, Enumerations) {
    const ClStructureBuilder error(18, 0x17);
    ExpectEnumeration(error, 0x04, "Error Type", "Error: Invalid Type", {1, "Other", 14, "Uncorrectable error"});
    ExpectEnumeration(error, 0x05, "Error Granularity", "Error: Invalid Granularity",
                      {1, "Other", 4, "Memory partition level"});
    ExpectEnumeration(error, 0x06, "Error Operation", "Error: Invalid Operation", {1, "Other", 5, "Partial write"});
}

TEST(MappedAddresses, ShowExtendedAddressesByHalves) {
    const auto range = ClStructureBuilder(19, 0x1F).Qword(0x0F, 0x180000000).Qword(0x17, 0x12345600000ABC);
    EXPECT_EQ(Decode(range).Text("Extended Starting Address"), "0001 80000000h");
    EXPECT_EQ(Decode(range).Text("Extended Ending Address"), "123456 0ABCh");
}

// Structures of older versions: all items are there, and no string byte passes for a number.
TEST(MemoryStructures, FieldsBehindTheLengthReadZero) {
    const ClItems array = Decode(ClStructureBuilder(16, 0x0F).Word(0x0D, 2).Strings({"text"}));
    EXPECT_EQ(array.Text("Number of Memory Devices"), "2");
    EXPECT_EQ(array.Text("Extended Maximum Capacity"), "0000h 0000h");

    const ClItems device = Decode(ClStructureBuilder(17, 0x15).Word(0x13, 2).Strings({"A", "B"}));
    EXPECT_EQ(device.Text("Type Detail"), "0002h");
    EXPECT_EQ(device.Text("Speed"), "0 MHz");
    EXPECT_EQ(device.Text("Manufacturer"), "None");
    EXPECT_EQ(device.Text("Attributes"), "0");
    EXPECT_EQ(device.Text("Configured Voltage"), "Unknown");

    const ClItems mapped = Decode(ClStructureBuilder(19, 0x13).Dword(0x0F, 0x55).Strings({"text"}));
    EXPECT_EQ(mapped.Text("Extended Starting Address"), "0000 0000h");  // only half of the field is there
    EXPECT_EQ(mapped.Text("Extended Ending Address"), "0000 0000h");
}

}  // namespace
