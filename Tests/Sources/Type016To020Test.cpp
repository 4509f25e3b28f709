#include <gtest/gtest.h>

#include <cstdio>

#include "Sources/Decoders.h"
#include "Tests/Support/Enumerations.h"

namespace {

std::string UnknownValue(uint8_t value) {
    char text[40];
    std::snprintf(text, sizeof text, "Unknown, Value read = 0x%02X", value);
    return text;
}

const std::string kReplacement = "\xEF\xBF\xBD";

}  // namespace

TEST(MemoryArray, Items) {
    const auto array = ClStructureBuilder(16, 0x17)
                           .Bytes(0x04, {3, 3, 6})
                           .Dword(0x07, 0x80000000)
                           .Word(0x0B, 0xFFFE)
                           .Word(0x0D, 24)
                           .Qword(0x0F, 0x0000000180000000);
    EXPECT_EQ(Decode(array).Lines(),
              "Physical Memory Array {Type 16}#GROUPNAME=\nType=16\nLength=23\nHandle=16\n"
              "Location=System board or motherboard\n"
              "Use=System memory\n"
              "Memory Error Correction=Multi-bit ECC\n"
              "Maximum Capacity=2147483648\n"
              "Memory Error Information Handle=FFFEh\n"
              "Number of Memory Devices=24\n"
              "Extended Maximum Capacity=0001h 80000000h\n");
}

TEST(MemoryArray, Enumerations) {
    const ClStructureBuilder array(16, 0x17);
    ExpectEnumeration(array, 0x04, "Location",
                      {
                          {1,   "Other"                      },
                          {2,   "Unknown"                    },
                          {3,   "System board or motherboard"},
                          {4,   "ISA add-on card"            },
                          {5,   "EISA add-on card"           },
                          {6,   "PCI add-on card"            },
                          {7,   "MCA add-on card"            },
                          {8,   "PCMCIA add-on card"         },
                          {9,   "Proprietary add-on card"    },
                          {10,  "NuBus"                      },
                          {160, "PC-98/C20 add-on card"      },
                          {161, "PC-98/C24 add-on carder"    },
                          {162, "PC-98/E add-on card\t"      },
                          {163, "PC-98/Local bus add-on card"}
    },
                      "Error: Invalid Type");
    ExpectEnumeration(array, 0x05, "Use",
                      {
                          {1, "Other"           },
                          {2, "Unknown"         },
                          {3, "System memory"   },
                          {4, "Video memory"    },
                          {5, "Flash memory"    },
                          {6, "Non-volatile RAM"},
                          {7, "Cache memory"    }
    },
                      "Error: Invalid Type");
    ExpectEnumeration(array, 0x06, "Memory Error Correction",
                      {
                          {1, "Other"         },
                          {2, "Unknown"       },
                          {3, "None"          },
                          {4, "Parity"        },
                          {5, "Single-bit ECC"},
                          {6, "Multi-bit ECC" },
                          {7, "CRC"           }
    },
                      "Error: Invalid Type");
}

TEST(MemoryDevice, Items) {
    const auto device = ClStructureBuilder(17, 0x28)
                            .Word(0x04, 0x1000)
                            .Word(0x06, 0xFFFE)
                            .Word(0x08, 72)
                            .Word(0x0A, 64)
                            .Word(0x0C, 0x7FFF)
                            .Bytes(0x0E, {9, 0, 1, 2, 26})
                            .Word(0x13, 0x4080)
                            .Word(0x15, 2666)
                            .Bytes(0x17, {3, 4, 0, 5, 0x82})
                            .Dword(0x1C, 32768)
                            .Word(0x20, 2400)
                            .Word(0x22, 1200)
                            .Word(0x26, 1250)
                            .Strings({"DIMM A1", "BANK 0", "ACME", "12\"34", "AC\tME"});
    EXPECT_EQ(Decode(device).Lines(),
              "Memory Device {Type 17}#GROUPNAME=\nType=17\nLength=40\nHandle=16\n"
              "Memory Array Handle=1000h\n"
              "Memory Error Information Handle=FFFEh\n"
              "Total Width=72 (0048h)\n"
              "Data Width=64 (0040h)\n"
              "Size=32767 (7FFFh)\n"
              "Form Factor=DIMM\n"
              "Device Set=0000h\n"
              "Device Locator=DIMM A1\n"
              "Bank Locator=BANK 0\n"
              "Memory Type=DDR4\n"
              "Type Detail=4080h\n"
              "Type Detail Description=Synchronous, Unbuffered (Unregistered)\n"
              "Speed=2666 MHz\n"
              "Manufacturer=ACME\n"
              "Serial Number=12\"34\n"
              "Assert Tag=None\n"
              "Part Number=AC.ME\n"
              "Attributes=130\n"
              "Extended Size=   32768 MB\n"
              "Configured Memory Clock Speed=2400 MHz\n"
              "Minimum Voltage=1200\n"
              "Maximum Voltage=Unknown\n"
              "Configured Voltage=1250\n");
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

TEST(MemoryDevice, Enumerations) {
    const ClStructureBuilder device(17, 0x28);
    ExpectEnumeration(device, 0x0E, "Form Factor",
                      {
                          {1,  "Other"           },
                          {2,  "Unknown"         },
                          {3,  "SIMM"            },
                          {4,  "SIP"             },
                          {5,  "Chip"            },
                          {6,  "DIP"             },
                          {7,  "ZIP"             },
                          {8,  "Proprietary Card"},
                          {9,  "DIMM"            },
                          {10, "TSOP"            },
                          {11, "Row of chips"    },
                          {12, "RIMM"            },
                          {13, "SODIMM"          },
                          {14, "SRIMM"           },
                          {15, "FB-DIMM"         }
    },
                      UnknownValue);
    ExpectEnumeration(
        device, 0x12, "Memory Type",
        {
            {1,  "Other"       },
            {2,  "Unknown"     },
            {3,  "DRAM"        },
            {4,  "EDRAM"       },
            {5,  "VRAM"        },
            {6,  "SRAM"        },
            {7,  "RAM"         },
            {8,  "ROM"         },
            {9,  "FLASH"       },
            {10, "EEPROM"      },
            {11, "FEPROM"      },
            {12, "EPROM"       },
            {13, "CDRAM"       },
            {14, "3DRAM"       },
            {15, "SDRAM"       },
            {16, "SGRAM"       },
            {17, "RDRAM"       },
            {18, "DDR"         },
            {19, "DDR2"        },
            {20, "DDR2 FB-DIMM"},
            {21, "Reserved"    },
            {22, "Reserved"    },
            {23, "Reserved"    },
            {24, "DDR3"        },
            {25, "FBD2"        },
            {26, "DDR4"        },
            {27, "LPDDR"       },
            {28, "LPDDR2"      },
            {29, "LPDDR3"      },
            {30, "LPDDR4"      }
    },
        UnknownValue);
}

TEST(MemoryDevice, TypeDetail) {
    const char* const kTexts[] = {"Reserved, set to 0",
                                  "Other",
                                  "Unknown",
                                  "Fast-paged",
                                  "Static column",
                                  "Pseudo-static",
                                  "RAMBUS",
                                  "Synchronous",
                                  "CMOS",
                                  "EDO",
                                  "Window DRAM",
                                  "Cache DRAM",
                                  "Non-volatile",
                                  "Registered (Buffered)",
                                  "Unbuffered (Unregistered)",
                                  "LRDIMM"};
    std::string all;
    for (unsigned bit = 0; bit < 16; bit++) {
        EXPECT_EQ(ClSMBIOSType17::GetTypeDetailString(static_cast<uint16_t>(1u << bit)), kTexts[bit]);
        all += (bit == 0 ? "" : ", ") + std::string(kTexts[bit]);
    }
    EXPECT_EQ(ClSMBIOSType17::GetTypeDetailString(0xFFFF), all);
    EXPECT_EQ(ClSMBIOSType17::GetTypeDetailString(0), "None");
}

TEST(MemoryDevice, PartNumberIsCleaned) {
    const struct {
        const char* what;
        std::string given, shown;
    } kCases[] = {
        {"empty",                        "",                     ""                          },
        {"plain",                        "M393A4K40CB2-CTD ~",   "M393A4K40CB2-CTD ~"        },
        {"control characters",
         "\x01"
         "A\tB\x1F",                                             ".A.B."                     },
        {"delete is no control here",    "A\x7F",                "A\x7F"                     },
        {"two and three bytes",          "\xC3\xA9\xE2\x82\xAC", "\xC3\xA9\xE2\x82\xAC"      },
        {"beyond 16 bits",
         "A\xF0\x9F\x98\x80"
         "B",                                                    "A\xF0\x9F\x98\x80"
         "B"                                                                    },
        {"a byte of a single-byte page",
         "Sp\xE9"
         "cial",                                                 "Sp" + kReplacement + "cial"},
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

TEST(MemoryError, Items) {
    const auto error = ClStructureBuilder(18, 0x17)
                           .Bytes(0x04, {14, 4, 5})
                           .Dword(0x07, 0x12)
                           .Dword(0x0B, 0x80000000)
                           .Dword(0x0F, 0xABCDEF)
                           .Dword(0x13, 0x1000);
    EXPECT_EQ(Decode(error).Lines(),
              "32-bit Memory Error Information {Type 18}#GROUPNAME=\nType=18\nLength=23\nHandle=16\n"
              "Error Type=Uncorrectable error\n"
              "Error Granularity=Memory partition level\n"
              "Error Operation=Partial write\n"
              "Vendor Syndrome=00000012h\n"
              "Memory Array Error Address=80000000h\n"
              "Device Error Address=00ABCDEFh\n"
              "Error Resolution=00001000h\n");
    const ClItems unlisted = Decode(ClStructureBuilder(18, 0x17).Bytes(0x04, {15, 5, 6}));
    EXPECT_EQ(unlisted.Text("Error Type"), "Error: Invalid Type");
    EXPECT_EQ(unlisted.Text("Error Granularity"), "Error: Invalid Granularity");
    EXPECT_EQ(unlisted.Text("Error Operation"), "Error: Invalid Operation");
}

TEST(MappedAddresses, Items) {
    const auto array = ClStructureBuilder(19, 0x1F)
                           .Dword(0x04, 0x1F)
                           .Dword(0x08, 0xFFFFFFFF)
                           .Word(0x0C, 0x1000)
                           .Byte(0x0E, 4)
                           .Qword(0x0F, 0x0000000180000000)
                           .Qword(0x17, 0x0012345600000ABC);
    EXPECT_EQ(Decode(array).Lines(),
              "Memory Array Mapped Address {Type 19}#GROUPNAME=\nType=19\nLength=31\nHandle=16\n"
              "Starting Address=0000001Fh\n"
              "Ending Address=FFFFFFFFh\n"
              "Memory Array Handle=1000h\n"
              "Partition Width=04h\n"
              "Extended Starting Address=0001 80000000h\n"
              "Extended Ending Address=123456 0ABCh\n");
    const auto device = ClStructureBuilder(20, 0x23)
                            .Dword(0x04, 0x20)
                            .Dword(0x08, 0x3FFFFF)
                            .Word(0x0C, 0x1100)
                            .Word(0x0E, 0x1300)
                            .Bytes(0x10, {1, 2, 0xFF});
    EXPECT_EQ(Decode(device).Lines(),
              "Memory Device Mapped Address {Type 20}#GROUPNAME=\nType=20\nLength=35\nHandle=16\n"
              "Starting Address=00000020h\n"
              "Ending Address=003FFFFFh\n"
              "Memory Device Handle=1100h\n"
              "Memory Array Mapped Address Handle=1300h\n"
              "Partition Row Position=01h\n"
              "Interleave Position=02h\n"
              "Interleaved Data Depth=FFh\n");
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
