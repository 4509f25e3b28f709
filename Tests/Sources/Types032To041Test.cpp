// The decoders of types 32 to 39 and 41: boot, memory errors, management devices, power supplies, onboard devices.
#include <gtest/gtest.h>

#include "Tests/Support/Expectations.h"

namespace {

TEST(Type32, ShowsTheFirstByteOfTheStatus) {
    const auto boot = ClStructureBuilder(32, 0x14).Bytes(4, {0x34, 0x12, 0xFF}).Bytes(0x0A, {0x80, 0xFF});
    const std::string other = "Reserved or Vendor/OEM/Product-specific implementations";
    ExpectItems(boot, "System Boot Information {Type 32}",
                "Reserved=00001234h\nBoot Status=0080h\nDescription=" + other + "\n");
    ExpectEnumeration(boot, 0x0A, "Description", other,
                      {0, "No errors detected", 8, "System watchdog timer expired, causing the system to reboot"});
}

TEST(Type33, ShowsAllDigitsOfItsAddresses) {
    const auto error = ClStructureBuilder(33, 0x1F).Qword(0x0B, 0x1234567890).Qword(0x13, 0x8000000000000000);
    EXPECT_EQ(Decode(error).Text("Memory Array Error Address"), "0000001234567890h");
    EXPECT_EQ(Decode(error).Text("Device Error Address"), "8000000000000000h");
}

TEST(Type34, ShowsTheDeviceUnderTheErrorTypeKey) {
    const ClStructureBuilder device =
        ClStructureBuilder(34, 0x0B).Bytes(4, {0, 3}).Dword(6, 0x4C).Byte(0x0A, 5).Strings({"sensor", "second"});
    ExpectItems(device, "Management Device {Type 34}",
                "Description=sensor\nError Type=National Semiconductor LM75\nAddress=0000004Ch\n"
                "Address Type=SM Bus\n");
    EXPECT_EQ(Decode(ClStructureBuilder(device).Byte(4, 2)).Text("Description"), "second");
    EXPECT_EQ(Decode(ClStructureBuilder(device).Strings({})).Text("Description"), "(null string)");
    ExpectEnumeration(device, 0x05, "Error Type", "Error: Invalid Type", {1, "Other", 13, "Holtek HT82H791"});
    ExpectEnumeration(device, 0x0A, "Address Type", "Error: Invalid Address Type", {1, "Other", 5, "SM Bus"});
}

TEST(Type35, ShowsTheThresholdHandleOnlyWhenThereIsNone) {
    const ClStructureBuilder component = ClStructureBuilder(35, 0x0B).Byte(4, 1).Word(9, 0x1234).Strings({"fan"});
    const std::string title = "Management Device Component {Type 35}";
    ExpectItems(component, title, "Description=fan\n");
    ExpectItems(ClStructureBuilder(component).Word(9, 0xFFFF), title,
                "Description=fan\n"
                "Threshold Handle=No Threshold Data structure is associated with this component\n");
}

TEST(Type36, ShowsThresholdsAsTheyAre) {
    const Reading_t kWords[] = {
        {0x04, 0,      "Lower Threshold - Non-critical",    "0h"   },
        {0x0A, 0xABC,  "Upper Threshold - Critical",        "ABCh" },
        {0x0E, 0xFFFF, "Upper Threshold - Non-recoverable", "FFFFh"},
    };
    ExpectWords(ClStructureBuilder(36, 0x10), kWords);
}

TEST(Type37, ShowsTheChannel) {
    ExpectEnumeration(ClStructureBuilder(37, 7), 4, "Channel Type", "Error: Invalid Channel Type",
                      {1, "Other", 4, "SyncLink"});
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
    const char* const spacing = "Base Address Modifier bit 7:6 Register spacing";
    const char* const mode = "Interrupt Info bit 0 Interrupt Trigger Mode";
    const char* const edgeMode = "Interrupt Info bit 0  Interrupt Trigger Mode";
    const Reading_t kReadings[] = {
        {0x10, 0x10, spacing,                       "Interface registers are on successive byte boundaries"},
        {0x10, 0x80, spacing,                       "Interface registers are on 16-byte boundaries"        },
        {0x10, 0xC0, spacing,                       "Reserved"                                             },
        {0x10, 0x04, edgeMode,                      "edge"                                                 },
        {0x10, 0x04, mode,                          "(no such item)"                                       },
        {0x05, 0x15, "IPMI Specification Revision", "Revision 1.5"                                         },
        {0x05, 0xB1, "IPMI Specification Revision", "Revision B.1"                                         },
    };
    ExpectBytes(kIpmi, kReadings);
    ExpectEnumeration(kIpmi, 4, "Interface Type", "Error: Invalid Interface Type", {0, "Unknown", 15, "Reserved"});
    // Without the last two bytes, those of the empty string area show.
    const ClItems shorter = Decode(ClStructureBuilder(38, 0x10));
    EXPECT_EQ(shorter.Text("Base Address Modifier / Interrupt Info"), "00h");
    EXPECT_EQ(shorter.Text("Interrupt Number"), "0");
    EXPECT_EQ(shorter.Count(), 11u);
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
    const Reading_t kWords[] = {
        {0x10, 0x1A,   "Input Voltage Probe Handle", "001Ah"},
        {0x12, 0,      "Cooling Device Handle",      "0000h"},
        {0x14, 0xFFFE, "Input Current Probe Handle", "FFFEh"},
    };
    ExpectWords(supply, kWords);
}

// The three fields of the characteristics word; a value beyond a gap has no word, and the others' bits don't count.
TEST(Type39, NamesItsCharacteristics) {
    const char* const type = "DMTF Power Supply Type";
    const char* const status = "DMTF Power Supply Status";
    const char* const switching = "DMTF Input Voltage Range Switching";
    const Reading_t kWords[] = {
        {0x0E, 0x03FF, type,      "Error: Invalid Power Suppy Type"                               },
        {0x0E, 0x23FF, type,      "Regulator"                                                     },
        {0x0E, 0x2400, type,      "Reserved"                                                      },
        {0x0E, 0xFC00, type,      "Reserved"                                                      },
        {0x0E, 0xFC7F, status,    "Error: Invalid Status"                                         },
        {0x0E, 0xFEFF, status,    "Critical; power supply has failed and has been taken off-line."},
        {0x0E, 0x0300, status,    "Error: Invalid Status"                                         },
        {0x0E, 0x0380, status,    "Error: Invalid Status"                                         },
        {0x0E, 0xFF87, switching, "Error: Invalid Switch"                                         },
        {0x0E, 0xFFB7, switching, "Not applicable"                                                },
        {0x0E, 0x0038, switching, "Reserved"                                                      },
        {0x0E, 0x0058, switching, "Reserved"                                                      },
    };
    ExpectWords(ClStructureBuilder(39, 0x16), kWords);
}

TEST(Type41, ShowsDeviceAndAddress) {
    const ClStructureBuilder device =
        ClStructureBuilder(41, 0x0B).Bytes(4, {1, 0x83, 1}).Word(7, 0x100).Bytes(9, {255, 0x0A}).Strings({"VGA"});
    ExpectItems(device, "Onboard Devices Extended Information {Type 41}",
                "Reference Designation=VGA\nDevice Status=Device Enabled\nDevice Type=Video\n"
                "Device Type Instance=01h\nSegment Group Number=256\nBus Number=255\nDevice Number=1\n"
                "Function Number=2\n");
    const Reading_t kReadings[] = {
        {0x05, 0x0B, "Device Status",   "Device Disabled"},
        {0x0A, 0xF8, "Device Number",   "31"             },
        {0x0A, 0xF8, "Function Number", "0"              },
    };
    ExpectBytes(device, kReadings);
    // The status bit takes no part in the device type.
    ExpectEnumeration(device, 5, "Device Type", "Error: Invalid Type", {1, "Other", 10, "SAS Controller"},
                      {0x81, "Other", 0x8A, "SAS Controller"});
}

}  // namespace
