// The decoders of types 32 to 39 and 41: boot, memory errors, management devices, power supplies, onboard devices.
#include <gtest/gtest.h>

#include "Tests/Support/Enumerations.h"
#include "Tests/Support/Structures.h"

namespace {

TEST(Type32, ShowsTheFirstByteOfTheStatus) {
    ClStructureBuilder structure = ClStructureBuilder(32, 0x14).Bytes(4, {0x34, 0x12, 0xFF}).Bytes(0x0A, {0x80, 0xFF});
    EXPECT_EQ(Decode(structure).Lines(),
              "System Boot Information {Type 32}#GROUPNAME=\nType=32\nLength=20\nHandle=16\nReserved=00001234h\n"
              "Boot Status=0080h\nDescription=Reserved or Vendor/OEM/Product-specific implementations\n");
    ExpectEnumeration(structure, 0x0A, "Description",
                      {
                          {0, "No errors detected"                                         },
                          {1, "No bootable media"                                          },
                          {2, "normal operating system failed to load"                     },
                          {3, "Firmware-detected hardware failure"                         },
                          {4, "Operating system-detected hardware failure"                 },
                          {5, "User-requested boot, usually through a keystroke"           },
                          {6, "System security violation"                                  },
                          {7, "Previously-requested image"                                 },
                          {8, "System watchdog timer expired, causing the system to reboot"}
    },
                      "Reserved or Vendor/OEM/Product-specific implementations");
}

TEST(Type33, ShowsAllDigitsOfItsAddresses) {
    const ClStructureBuilder structure = ClStructureBuilder(33, 0x1F)
                                             .Bytes(4, {3, 4, 3})
                                             .Dword(0x07, 0xAB)
                                             .Qword(0x0B, 0x1234567890)
                                             .Qword(0x13, 0x8000000000000000)
                                             .Dword(0x1B, 0x1000);
    EXPECT_EQ(Decode(structure).Lines(),
              "64-Bit Memory Error Information {Type 33}#GROUPNAME=\nType=33\nLength=31\nHandle=16\n"
              "Error Type=OK\nError Granularity=Memory partition level\nError Operation=Read\n"
              "Vendor Syndrome=000000ABh\nMemory Array Error Address=0000001234567890h\n"
              "Device Error Address=8000000000000000h\nError Resolution=00001000h\n");
    ExpectEnumeration(structure, 0x04, "Error Type",
                      {
                          {1,  "Other"                     },
                          {2,  "Unknown"                   },
                          {3,  "OK"                        },
                          {4,  "Bad read"                  },
                          {5,  "Parity error"              },
                          {6,  "Single-bit error"          },
                          {7,  "Double-bit error"          },
                          {8,  "Multi-bit error"           },
                          {9,  "Nibble error"              },
                          {10, "Checksum error"            },
                          {11, "CRC error"                 },
                          {12, "Corrected single-bit error"},
                          {13, "Corrected error"           },
                          {14, "Uncorrectable error"       }
    },
                      "Error: Invalid Type");
    ExpectEnumeration(structure, 0x05, "Error Granularity",
                      {
                          {1, "Other"                 },
                          {2, "Unknown"               },
                          {3, "Device level"          },
                          {4, "Memory partition level"}
    },
                      "Error: Invalid Granularity");
    ExpectEnumeration(structure, 0x06, "Error Operation",
                      {
                          {1, "Other"        },
                          {2, "Unknown"      },
                          {3, "Read"         },
                          {4, "Write"        },
                          {5, "Partial write"}
    },
                      "Error: Invalid Operation");
}

TEST(Type34, ShowsTheDeviceUnderTheErrorTypeKey) {
    const ClStructureBuilder structure =
        ClStructureBuilder(34, 0x0B).Bytes(4, {0, 3}).Dword(6, 0x4C).Byte(0x0A, 5).Strings({"sensor", "second"});
    EXPECT_EQ(Decode(structure).Lines(),
              "Management Device {Type 34}#GROUPNAME=\nType=34\nLength=11\nHandle=16\nDescription=sensor\n"
              "Error Type=National Semiconductor LM75\nAddress=0000004Ch\nAddress Type=SM Bus\n");
    EXPECT_EQ(Decode(ClStructureBuilder(structure).Byte(4, 2)).Text("Description"), "second");
    EXPECT_EQ(Decode(ClStructureBuilder(structure).Strings({})).Text("Description"), "(null string)");
    ExpectEnumeration(structure, 0x05, "Error Type",
                      {
                          {1,  "Other"                      },
                          {2,  "Unknown"                    },
                          {3,  "National Semiconductor LM75"},
                          {4,  "National Semiconductor LM78"},
                          {5,  "National Semiconductor LM79"},
                          {6,  "National Semiconductor LM80"},
                          {7,  "National Semiconductor LM81"},
                          {8,  "Analog Devices ADM9240"     },
                          {9,  "Dallas Semiconductor DS1780"},
                          {10, "Maxim 1617"                 },
                          {11, "Genesys GL518SM"            },
                          {12, "Winbond W83781D"            },
                          {13, "Holtek HT82H791"            }
    },
                      "Error: Invalid Type");
    ExpectEnumeration(structure, 0x0A, "Address Type",
                      {
                          {1, "Other"   },
                          {2, "Unknown" },
                          {3, "I/O Port"},
                          {4, "Memory"  },
                          {5, "SM Bus"  }
    },
                      "Error: Invalid Address Type");
}

TEST(Type35, ShowsTheThresholdHandleOnlyWhenThereIsNone) {
    const ClStructureBuilder structure = ClStructureBuilder(35, 0x0B).Byte(4, 1).Word(9, 0x1234).Strings({"fan"});
    const std::string head =
        "Management Device Component {Type 35}#GROUPNAME=\nType=35\nLength=11\nHandle=16\nDescription=fan\n";
    EXPECT_EQ(Decode(structure).Lines(), head);
    EXPECT_EQ(Decode(ClStructureBuilder(structure).Word(9, 0xFFFF)).Lines(),
              head + "Threshold Handle=No Threshold Data structure is associated with this component\n");
}

TEST(Type36, ShowsThresholdsAsTheyAre) {
    ClStructureBuilder structure(36, 0x10);
    structure.Word(4, 0).Word(6, 0x8000).Word(8, 0x1F).Word(0x0A, 0xABC).Word(0x0C, 1).Word(0x0E, 0xFFFF);
    EXPECT_EQ(Decode(structure).Lines(),
              "Management Device Threshold Data {Type 36}#GROUPNAME=\nType=36\nLength=16\nHandle=16\n"
              "Lower Threshold - Non-critical=0h\nUpper Threshold - Non-critical=8000h\n"
              "Lower Threshold - Critical=1Fh\nUpper Threshold - Critical=ABCh\n"
              "Lower Threshold - Non-recoverable=1h\nUpper Threshold - Non-recoverable=FFFFh\n");
}

TEST(Type37, ShowsTheChannel) {
    const ClStructureBuilder structure = ClStructureBuilder(37, 7).Bytes(4, {3, 255, 2});
    EXPECT_EQ(Decode(structure).Lines(),
              "Memory Channel {Type 37}#GROUPNAME=\nType=37\nLength=7\nHandle=16\nChannel Type=RamBus\n"
              "Maximum Channel Load=255\nMemory Device Count=2\n");
    ExpectEnumeration(structure, 4, "Channel Type",
                      {
                          {1, "Other"   },
                          {2, "Unknown" },
                          {3, "RamBus"  },
                          {4, "SyncLink"}
    },
                      "Error: Invalid Channel Type");
}

const ClStructureBuilder kIpmi =
    ClStructureBuilder(38, 0x12).Bytes(4, {1, 0x20, 0x0A, 0xFF}).Qword(8, 0x123456789ABC).Bytes(0x10, {0x4B, 9});

TEST(Type38, BreaksTheModifierIntoBits) {
    const std::string head =
        "IPMI Device Information {Type 38}#GROUPNAME=\nType=38\nLength=18\nHandle=16\n"
        "Interface Type=KCS: Keyboard Controller Style\nIPMI Specification Revision=Revision 2.0\n"
        "I2C Slave Address=0Ah\nNV Storage Device Address=FFh\nBase Address=0000123456789ABCh\n"
        "Base Address Modifier / Interrupt Info=";
    EXPECT_EQ(Decode(kIpmi).Lines(),
              head +
                  "4Bh\n"
                  "Base Address Modifier bit 7:6 Register spacing=Interface registers are on 32-bit boundaries\n"
                  "Base Address Modifier bit 5=Reserved\n"
                  "Base Address Modifier bit 4 LS-bit for addresses=Address bit 0 = 0b\n"
                  "Interrupt Info bit 3=Interrupt information specified\n"
                  "Base Address Modifier bit 2=Reserved\n"
                  "Interrupt Info bit 1 Interrupt Polarity=active high\n"
                  "Interrupt Info bit 0 Interrupt Trigger Mode=level\nInterrupt Number=9\n");
    EXPECT_EQ(Decode(ClStructureBuilder(kIpmi).Byte(0x10, 0)).Lines(), head + "00h\nInterrupt Number=9\n");
    const std::string spacing = "Base Address Modifier bit 7:6 Register spacing";
    const struct {
        uint8_t modifier;
        std::string key, text;
    } kCases[] = {
        {0x10, spacing,                                            "Interface registers are on successive byte boundaries"},
        {0x80, spacing,                                            "Interface registers are on 16-byte boundaries"        },
        {0xC0, spacing,                                            "Reserved"                                             },
        {0x10, "Base Address Modifier bit 4 LS-bit for addresses", "Address bit 0 = 1b"                                   },
        {0x04, "Interrupt Info bit 3",                             "Interrupt information not specified"                  },
        {0x04, "Interrupt Info bit 1 Interrupt Polarity",          "active low"                                           },
        {0x04, "Interrupt Info bit 0  Interrupt Trigger Mode",     "edge"                                                 },
        {0x04, "Interrupt Info bit 0 Interrupt Trigger Mode",      "(no such item)"                                       },
    };
    for (const auto& c : kCases)
        EXPECT_EQ(Decode(ClStructureBuilder(kIpmi).Byte(0x10, c.modifier)).Text(c.key), c.text) << c.key;
    // Without the last two bytes, those of the empty string area show.
    const ClItems shorter = Decode(ClStructureBuilder(38, 0x10));
    EXPECT_EQ(shorter.Text("Base Address Modifier / Interrupt Info"), "00h");
    EXPECT_EQ(shorter.Text("Interrupt Number"), "0");
    EXPECT_EQ(shorter.Count(), 11u);
}

TEST(Type38, NamesInterfaceAndRevision) {
    ExpectEnumeration(kIpmi, 4, "Interface Type",
                      {
                          {0,  "Unknown"                               },
                          {1,  "KCS: Keyboard Controller Style"        },
                          {2,  "SMIC: Server Management Interface Chip"},
                          {3,  "BT: Block Transfer"                    },
                          {4,  "SSIF: SMBus System Interface"          },
                          {5,  "Reserved"                              },
                          {6,  "Reserved"                              },
                          {7,  "Reserved"                              },
                          {8,  "Reserved"                              },
                          {9,  "Reserved"                              },
                          {10, "Reserved"                              },
                          {11, "Reserved"                              },
                          {12, "Reserved"                              },
                          {13, "Reserved"                              },
                          {14, "Reserved"                              },
                          {15, "Reserved"                              }
    },
                      "Error: Invalid Interface Type");
    EXPECT_EQ(Decode(ClStructureBuilder(kIpmi).Byte(5, 0x15)).Text("IPMI Specification Revision"), "Revision 1.5");
    EXPECT_EQ(Decode(ClStructureBuilder(kIpmi).Byte(5, 0xB1)).Text("IPMI Specification Revision"), "Revision B.1");
}

TEST(Type39, ShowsTheSupply) {
    const ClStructureBuilder structure = ClStructureBuilder(39, 0x16)
                                             .Bytes(4, {0, 1, 2, 0, 3, 9, 1, 2})
                                             .Word(0x0C, 0x8000)
                                             .Word(0x0E, 0x11A6)
                                             .Word(0x10, 0xFFFF)
                                             .Word(0x12, 0xFFFF)
                                             .Word(0x14, 0xFFFF)
                                             .Strings({"L", "N", "S"});
    EXPECT_EQ(Decode(structure).Lines(),
              "System Power Supply {Type 39}#GROUPNAME=\nType=39\nLength=22\nHandle=16\n"
              "Power Unit Group=00h Power supply is not a member of a redundant power unit\n"
              "Location=L\nDevice Name=N\nManufacturer=L\nSerial Number=S\nAsset Tag Number=(no such string)\n"
              "Model Part Number=L\nRevision Level=N\nMax Power Capacity=32768 milliWatts\n"
              "DMTF Power Supply Type=Switching\nDMTF Power Supply Status=OK\n"
              "DMTF Input Voltage Range Switching=Auto-switch\nIs power supply unplugged from the wall=Yes\n"
              "Is power supply present=Yes\nIs power supply hot-replaceable=No\n"
              "Input Voltage Probe Handle=No probe(Type 26) is provided\n"
              "Cooling Device Handle=No cooling device(Type 27) is provided\n"
              "Input Current Probe Handle=No current probe(Type 29) is provided\n");
    const ClItems other = Decode(
        ClStructureBuilder(structure).Byte(4, 0x1F).Word(0x0E, 1).Word(0x10, 0x1A).Word(0x12, 0).Word(0x14, 0xFFFE));
    EXPECT_EQ(other.Text("Power Unit Group"),
              "1Fh Redundancy. At least one other power supply will be enumerated with the same value");
    EXPECT_EQ(other.Text("Is power supply unplugged from the wall"), "No");
    EXPECT_EQ(other.Text("Is power supply present"), "No");
    EXPECT_EQ(other.Text("Is power supply hot-replaceable"), "Yes");
    EXPECT_EQ(other.Text("Input Voltage Probe Handle"), "001Ah");
    EXPECT_EQ(other.Text("Cooling Device Handle"), "0000h");
    EXPECT_EQ(other.Text("Input Current Probe Handle"), "FFFEh");
}

// The fields of the characteristics word, each with all values that it can hold.
TEST(Type39, NamesItsCharacteristics) {
    const struct {
        std::string key;
        uint32_t shift, count;
        std::vector<std::string> listed;
        std::string otherwise;
    } kFields[] = {
        {"DMTF Power Supply Type",
         10, 64,
         {"Error: Invalid Power Suppy Type", "Other", "Unknown", "Linear", "Switching", "Battery", "UPS", "Converter",
          "Regulator"},
         "Reserved"             },
        {"DMTF Power Supply Status",
         7,  8,
         {"Error: Invalid Status", "Other", "Unknown", "OK", "Non-critical",
          "Critical; power supply has failed and has been taken off-line."},
         "Error: Invalid Status"},
        {"DMTF Input Voltage Range Switching",
         3,  16,
         {"Error: Invalid Switch", "Other", "Unknown", "Manual", "Auto-switch", "Wide range", "Not applicable"},
         "Reserved"             },
    };
    for (const auto& field : kFields) {
        for (uint32_t value = 0; value < field.count; value++) {
            const auto word = static_cast<uint16_t>(value << field.shift);
            EXPECT_EQ(Decode(ClStructureBuilder(39, 0x16).Word(0x0E, word)).Text(field.key),
                      value < field.listed.size() ? field.listed[value] : field.otherwise)
                << field.key << ", value " << value;
        }
    }
}

TEST(Type41, ShowsDeviceAndAddress) {
    const ClStructureBuilder structure =
        ClStructureBuilder(41, 0x0B).Bytes(4, {1, 0x83, 1}).Word(7, 0x100).Bytes(9, {255, 0x0A}).Strings({"VGA"});
    EXPECT_EQ(Decode(structure).Lines(),
              "Onboard Devices Extended Information {Type 41}#GROUPNAME=\nType=41\nLength=11\nHandle=16\n"
              "Reference Designation=VGA\nDevice Status=Device Enabled\nDevice Type=Video\nDevice Type Instance=01h\n"
              "Segment Group Number=256\nBus Number=255\nDevice Number=1\nFunction Number=2\n");
    const ClItems other = Decode(ClStructureBuilder(structure).Byte(5, 0x0B).Byte(0x0A, 0xF8));
    EXPECT_EQ(other.Text("Device Status"), "Device Disabled");
    EXPECT_EQ(other.Text("Device Type"), "Error: Invalid Type");
    EXPECT_EQ(other.Text("Device Number"), "31");
    EXPECT_EQ(other.Text("Function Number"), "0");
    // The status bit takes no part in the device type.
    ExpectEnumeration(structure, 5, "Device Type",
                      {
                          {1,    "Other"          },
                          {2,    "Unknown"        },
                          {3,    "Video"          },
                          {4,    "SCSI Controller"},
                          {5,    "Ethernet"       },
                          {6,    "Token Ring"     },
                          {7,    "Sound"          },
                          {8,    "PATA Controller"},
                          {9,    "SATA Controller"},
                          {10,   "SAS Controller" },
                          {0x81, "Other"          },
                          {0x82, "Unknown"        },
                          {0x83, "Video"          },
                          {0x84, "SCSI Controller"},
                          {0x85, "Ethernet"       },
                          {0x86, "Token Ring"     },
                          {0x87, "Sound"          },
                          {0x88, "PATA Controller"},
                          {0x89, "SATA Controller"},
                          {0x8A, "SAS Controller" }
    },
                      "Error: Invalid Type");
}

}  // namespace
