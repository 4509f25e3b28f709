// The decoders of types 16 to 41.
#include <gtest/gtest.h>

#include "Sources/Decoders.h"
#include "Tests/Support/Structures.h"

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

TEST(MemoryDevice, ExtendedSizeNeedsASizeOf7FFFh) {
    const struct {
        uint16_t size;
        uint32_t extendedSize;
        const char* text;
    } kCases[] = {
        {0x7FFE, 5,          "0"            },
        {0xFFFF, 5,          "0"            },
        {0x7FFF, 5,          "       5 MB"  },
        {0x7FFF, 0xFFFFFFFF, "4294967295 MB"},
    };
    for (const auto& c : kCases) {
        const ClItems items = Decode(ClStructureBuilder(17, 0x28).Word(0x0C, c.size).Dword(0x1C, c.extendedSize));
        EXPECT_EQ(items.Text("Extended Size"), c.text);
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

TEST(CoolingDevice, GuardsDropTheirOwnItem) {
    const auto Cooling = [](uint8_t length) {
        ClStructureBuilder device(27, length);
        return device.Word(0x04, 0x1C).Bytes(0x06, {0x63, 1}).Dword(0x08, 0x0A0B0C0D).Strings({"first", "CPU fan"});
    };
    const std::string title = "Cooling Device {Type 27}";
    const std::string start =
        "Temperature Probe Handle=001Ch\nDevice Type and Status=63h\n"
        "Cooling Unit Group=01h\nOEM Defined=0A0B0C0Dh\n";
    ExpectItems(Cooling(12), title, start);
    ExpectItems(Cooling(14).Word(0x0C, 5), title, start + "NominalSpeed=05h\n");
    ExpectItems(Cooling(15).Word(0x0C, 1000).Byte(0x0E, 2), title, start + "NominalSpeed=3E8h\nDescription=CPU fan\n");
    // The speed's second byte comes from the string area when the structure ends between the two.
    ExpectItems(Cooling(13).Byte(0x0C, 5), title, start + "NominalSpeed=6605h\n");
}

TEST(Type32, ShowsTheFirstByteOfTheStatus) {
    const auto boot = ClStructureBuilder(32, 0x14).Bytes(4, {0x34, 0x12, 0xFF}).Bytes(0x0A, {0x80, 0xFF});
    const std::string other = "Reserved or Vendor/OEM/Product-specific implementations";
    ExpectItems(boot, "System Boot Information {Type 32}",
                "Reserved=00001234h\nBoot Status=0080h\nDescription=" + other + "\n");
    EXPECT_EQ(Decode(ClStructureBuilder(boot).Byte(0x0A, 8)).Text("Description"),
              "System watchdog timer expired, causing the system to reboot");
    EXPECT_EQ(Decode(ClStructureBuilder(boot).Byte(0x0A, 9)).Text("Description"), other);
}

TEST(Type35, ShowsTheThresholdHandleOnlyWhenThereIsNone) {
    const ClStructureBuilder component = ClStructureBuilder(35, 0x0B).Byte(4, 1).Word(9, 0x1234).Strings({"fan"});
    const std::string title = "Management Device Component {Type 35}";
    ExpectItems(component, title, "Description=fan\n");
    ExpectItems(ClStructureBuilder(component).Word(9, 0xFFFF), title,
                "Description=fan\n"
                "Threshold Handle=No Threshold Data structure is associated with this component\n");
}

const ClStructureBuilder kIpmi =
    ClStructureBuilder(38, 0x12).Bytes(4, {1, 0x20, 0x0A, 0xFF}).Qword(8, 0x123456789ABC).Bytes(0x10, {0x4B, 9});

TEST(Type38, BreaksTheModifierIntoBits) {
    const std::string title = "IPMI Device Information {Type 38}";
    const std::string start =
        "Interface Type=KCS: Keyboard Controller Style\nIPMI Specification Revision=Revision 2.0\n"
        "I2C Slave Address=0Ah\nNV Storage Device Address=FFh\nBase Address=0000123456789ABCh\n"
        "Base Address Modifier / Interrupt Info=";
    ExpectItems(kIpmi, title,
                start +
                    "4Bh\n"
                    "Base Address Modifier bit 7:6 Register spacing=Interface registers are on 32-bit boundaries\n"
                    "Base Address Modifier bit 5=Reserved\n"
                    "Base Address Modifier bit 4 LS-bit for addresses=Address bit 0 = 0b\n"
                    "Interrupt Info bit 3=Interrupt information specified\n"
                    "Base Address Modifier bit 2=Reserved\n"
                    "Interrupt Info bit 1 Interrupt Polarity=active high\n"
                    "Interrupt Info bit 0 Interrupt Trigger Mode=level\nInterrupt Number=9\n");
    ExpectItems(ClStructureBuilder(kIpmi).Byte(0x10, 0), title, start + "00h\nInterrupt Number=9\n");
}

TEST(Type39, ShowsTheSupply) {
    ClStructureBuilder supply(39, 0x16);
    supply.Bytes(4, {0, 1, 2, 0, 3, 9, 1, 2}).Word(0x0C, 0x8000).Word(0x0E, 0x11A6).Strings({"L", "N", "S"});
    supply.Word(0x10, 0xFFFF).Word(0x12, 0xFFFF).Word(0x14, 0xFFFF);
    ExpectItems(supply, "System Power Supply {Type 39}",
                "Power Unit Group=00h Power supply is not a member of a redundant power unit\n"
                "Location=L\nDevice Name=N\nManufacturer=L\nSerial Number=S\nAsset Tag Number=(no such string)\n"
                "Model Part Number=L\nRevision Level=N\nMax Power Capacity=32768 milliWatts\n"
                "DMTF Power Supply Type=Switching\nDMTF Power Supply Status=OK\n"
                "DMTF Input Voltage Range Switching=Auto-switch\nIs power supply unplugged from the wall=Yes\n"
                "Is power supply present=Yes\nIs power supply hot-replaceable=No\n"
                "Input Voltage Probe Handle=No probe(Type 26) is provided\n"
                "Cooling Device Handle=No cooling device(Type 27) is provided\n"
                "Input Current Probe Handle=No current probe(Type 29) is provided\n");
    EXPECT_EQ(Decode(ClStructureBuilder(supply).Byte(4, 0x1F)).Text("Power Unit Group"),
              "1Fh Redundancy. At least one other power supply will be enumerated with the same value");
}

}  // namespace
