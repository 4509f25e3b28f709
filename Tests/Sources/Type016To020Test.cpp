// The decoders of types 16 to 20: memory arrays, memory devices, their errors and their addresses.
#include <gtest/gtest.h>

#include "Sources/Decoders.h"
#include "Tests/Support/Expectations.h"

namespace {

const std::string kReplacement = "\xEF\xBF\xBD";

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

}  // namespace
