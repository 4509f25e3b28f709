// The decoders of types 7 to 9: caches, port connectors and slots.
#include <gtest/gtest.h>

#include "Tests/Support/Enumerations.h"

namespace {

const ClStructureBuilder kCache = ClStructureBuilder(7, 0x13)
                                      .Byte(0x04, 1)
                                      .Word(0x05, 0x0180)
                                      .Word(0x07, 2048)
                                      .Word(0x09, 1024)
                                      .Word(0x0B, 0x0003)
                                      .Word(0x0D, 0x0080)
                                      .Bytes(0x0F, {15, 5, 5, 7})
                                      .Strings({"L1"});

TEST(Type7, ShowsEveryField) {
    EXPECT_EQ(Decode(kCache).Lines(),
              "Cache Information {Type 7}#GROUPNAME=\nType=7\nLength=19\nHandle=16\nSocket Designation=L1\n"
              "Cache Configuration=L1; Not Socketed; Internal; Write Back\nMaximum Cache Size=2 M\n"
              "Installed Size=1024 K\nSupported SRAM Type=Other, Unknown\nCurrent SRAM Type=None\n"
              "Cache Speed=15 Ns \nError Correction Type=Single-bit ECC\nSystem Cache Type=Unified\n"
              "Associativity=8-way Set-Associative\n");
}

TEST(Type7, RendersItsWords) {
    const struct {
        size_t offset;
        uint16_t value;
        const char *key, *text;
    } kCases[] = {
        {0x05, 0x0000, "Cache Configuration", "L1; Not Socketed; Internal; Write Through"         },
        {0x05, 0x022F, "Cache Configuration", "L8; Socketed; External; Varies with Memory address"},
        {0x05, 0xFFC2, "Cache Configuration", "L3; Not Socketed; Reserved; Unknown"               },
        {0x05, 0x0069, "Cache Configuration", "L2; Socketed; Unknown; Write Through"              },
        {0x07, 0,      "Maximum Cache Size",  "0 K"                                               },
        {0x07, 1025,   "Maximum Cache Size",  "1 M"                                               },
        {0x07, 1500,   "Maximum Cache Size",  "1 M"                                               },
        {0x07, 0x8001, "Maximum Cache Size",  "64 K"                                              },
        {0x07, 0x8010, "Maximum Cache Size",  "1024 K"                                            },
        {0x09, 0x8200, "Installed Size",      "32 M"                                              },
        {0x09, 0xFFFF, "Installed Size",      "2047 M"                                            },
        {0x0B, 0x0000, "Supported SRAM Type", "None"                                              },
        {0x0D, 0xFFFF, "Current SRAM Type",
         "Other, Unknown, Non-Burst, Burst, Pipeline Burst, Synchronous, Asynchronous"            },
        {0x0F, 0x0500, "Cache Speed",         "0 Ns (unknown)"                                    },
    };
    for (const auto& c : kCases)
        EXPECT_EQ(Decode(ClStructureBuilder(kCache).Word(c.offset, c.value)).Text(c.key), c.text) << c.key;
}

TEST(Type7, Enumerations) {
    constexpr const char* kError = "Error: Invalid Type";
    ExpectRuns(kCache, 0x10, "Error Correction Type", kError,
               {
                   {1, {"Other", "Unknown", "None", "Parity", "Single-bit ECC", "Multi-bit ECC"}}
    });
    ExpectRuns(kCache, 0x11, "System Cache Type", kError,
               {
                   {1, {"Other", "Unknown", "Instruction", "Data", "Unified"}}
    });
    ExpectRuns(kCache, 0x12, "Associativity", kError,
               {
                   {1,
                    {"Other", "Unknown", "Direct Mapped", "2-way Set-Associative", "4-way Set-Associative",
                     "Fully Associative", "8-way Set-Associative", "16-way Set-Associative", "12-way Set-Associative",
                     "24-way Set-Associative", "32-way Set-Associative", "48-way Set-Associative",
                     "64-way Set-Associative", "20-way Set-Associative"}}
    });
}

TEST(Type7, ReadsZeroBehindItsLength) {
    const ClItems items = Decode(ClStructureBuilder(7, 0x0F).Strings({"\x01\x01\x01\x01"}));
    EXPECT_EQ(items.Count(), 14u);
    EXPECT_EQ(items.Text("Cache Speed"), "0 Ns (unknown)");
    EXPECT_EQ(items.Text("Associativity"), "Error: Invalid Type");
}

TEST(Type8, ShowsEveryField) {
    const auto port = ClStructureBuilder(8, 9).Bytes(4, {1, 255, 0, 11, 31}).Strings({"J1"});
    EXPECT_EQ(Decode(port).Lines(),
              "Port Connector Information {Type 8}#GROUPNAME=\nType=8\nLength=9\nHandle=16\n"
              "Internal Reference Designator=J1\nInternal Connector Type=Other - Ref Des indicates type\n"
              "External Reference Designator=None\nExternal Connector Type=RJ-45\nPort Type=Network Port\n");
}

TEST(Type8, Enumerations) {
    const ClStructureBuilder port(8, 9);
    const std::vector<Run_t> connectors = {
        {0,
         {"None",
          "Centronics",
          "Mini Centronics",
          "Proprietary",
          "DB25 pin male",
          "DB25 pin female",
          "DB-15  pin male",
          "DB-15 pin female",
          "DB-9 pin male",
          "DB9  pin female",
          "RJ-11",
          "RJ-45",
          "50 Pin MiniSCSI",
          "Mini-DIN",
          "Micro-DIN",
          "PS/2",
          "Infrared",
          "HP-HIL",
          "Access Bus",
          "SSA SCSI",
          "Circular DIN-8 male",
          "Circular DIN-8 female",
          "On Board IDE",
          "On Board Floppy",
          "9 Pin Dual Inline (pin 10 cut)",
          "25 Pin Dual Inline (pin 26 cut)",
          "50 Pin Dual Inline",
          "68 Pin  Dual Inline",
          "On Board Sound Input from CD-ROM",
          "Mini-Centronics Type-14",
          "Mini-Centronics Type-26",
          "Mini-jack (headphones)",
          "BNC",
          "1394",
          "SAS/SATA Plug Receptacle",
          "USB Type-C Receptacle"}                                        },
        Run_t{160, {"PC-98", "PC-98Hireso", "PC-H98", "PC-98Note", "PC-98Full"}},
        Run_t{255, {"Other - Ref Des indicates type"}                          }
    };
    ExpectRuns(port, 0x05, "Internal Connector Type", "Error: Invalid Type", connectors);
    ExpectRuns(port, 0x07, "External Connector Type", "Error: Invalid Type", connectors);
    ExpectRuns(port, 0x08, "Port Type", "Error: Invalid Type",
               {
                   {0,
                    {"None",
                     "Parallel Port XT/AT Compatible",
                     "Parallel Port PS/2",
                     "Parallel Port ECP",
                     "Parallel Port EPP",
                     "Parallel Port ECP/EPP",
                     "Serial Port XT/AT Compatible",
                     "Serial Port 16450 Compatible",
                     "Serial Port 16550 Compatible",
                     "Serial Port 16550A Compatible",
                     "SCSI Port",
                     "MIDI Port",
                     "Joy Stick Port",
                     "Keyboard Port",
                     "Mouse Port",
                     "SSA SCSI",
                     "USB",
                     "FireWire (IEEE P1394)",
                     "PCMCIA Type I",
                     "PCMCIA Type II",
                     "PCMCIA Type III",
                     "Cardbus",
                     "Access Bus Port",
                     "SCSI II",
                     "SCSI Wide",
                     "PC-98",
                     "PC-98-Hireso",
                     "PC-H98",
                     "Video Port",
                     "Audio Port",
                     "Modem Port",
                     "Network Port",
                     "SATA",
                     "SAS",
                     "MFDP (Multi-Function Display Port)",
                     "Sparkline"}                                   },
                   Run_t{160, {"8251 Compatible", "8251 FIFO Compatible"}},
                   Run_t{255, {"Other"}                                  }
    });
}

const ClStructureBuilder kSlot = ClStructureBuilder(9, 0x11)
                                     .Bytes(0x04, {1, 0xA8, 10, 4, 3})
                                     .Word(0x09, 1)
                                     .Bytes(0x0B, {0x0C, 0x01})
                                     .Word(0x0D, 256)
                                     .Bytes(0x0F, {3, 0xFD})
                                     .Strings({"SLOT1"});

TEST(Type9, ShowsEveryField) {
    EXPECT_EQ(Decode(kSlot).Lines(),
              "System Slots {Type 9}#GROUPNAME=\nType=9\nLength=17\nHandle=16\nSlot Designation=SLOT1\n"
              "Slot Type=PCI Express x4\nSlot Data Bus Width=4x or x4\nCurrent Usage=In use\n"
              "Slot Length=Short Length\nSlot ID=01h\n"
              "Slot Characteristics=Provides 3.3 volts, Shared Slot Opening\n"
              "Slot Characteristics 2=Supports Power Management Event (PME#) signal\n"
              "Segment Group Number=256\nBus Number=3\nDevice Number=31\nFunction Number=5\n"
              "Device/Function Number=253\n");
}

TEST(Type9, ShowsAnAddressForSomeSlotTypesOnly) {
    for (uint32_t type = 0; type < 256; type++) {
        const ClItems items = Decode(ClStructureBuilder(kSlot).Byte(0x05, static_cast<uint8_t>(type)));
        const bool hasAddress = type == 6 || type == 15 || type == 18 || (type > 164 && type < 171);
        EXPECT_EQ(items.Count(), hasAddress ? 17u : 15u) << type;
        EXPECT_EQ(items.Text("Segment Group Number"), hasAddress ? "256" : "0FFh") << type;
        EXPECT_EQ(items.Text("Bus Number"), hasAddress ? "3" : "0FFh") << type;
        EXPECT_EQ(items.Text("Device/Function Number"), hasAddress ? "253" : "0FFh") << type;
    }
}

TEST(Type9, Enumerations) {
    ExpectRuns(kSlot, 0x05, "Slot Type", "Error: Invalid Type",
               {
                   {1,
                    {"Other",
                     "Unknown",
                     "ISA",
                     "MCA",
                     "EISA",
                     "PCI",
                     "PC Card (PCMCIA)",
                     "VL-VESA",
                     "Proprietary",
                     "Processor Card Slot",
                     "Proprietary Memory Card Slot",
                     "I/O Riser Card Slot",
                     "NuBus",
                     "PCI - 66MHz Capable",
                     "AGP",
                     "AGP 2X",
                     "AGP 4X",
                     "PCI-X",
                     "AGP-8X",
                     "M.2 Socket 1-DP (Mechanical Key A)",
                     "M.2 Socket 1-SD (Mechanical Key E)",
                     "M.2 Socket 2 (Mechanical Key B)",
                     "M.2 Socket 3 (Mechanical Key M)",
                     "MXM Type I",
                     "MXM Type II",
                     "MXM Type III (standard connector)",
                     "MXM Type III (HE connector)",
                     "MXM Type IV",
                     "MXM 3.0 Type A",
                     "MXM 3.0 Type B",
                     "PCI Express Gen 2 SFF-8639",
                     "PCI Express Gen 3 SFF-8639",
                     "PCI Express Mini 52-pin",
                     "PCI Express Mini 52-pin",
                     "PCI Express Mini 76-pin"}   },
                   Run_t{160,
                    {"PC-98/C20",
                          "PC/98/C24",
                          "PC-98/E",
                          "PC-98/Local Bus",
                          "PC-98/Card",
                          "PCI Express",
                          "PCI Express x1",
                          "PCI Express x2",
                          "PCI Express x4",
                          "PCI Express x8",
                          "PCI Express x16",
                          "PCI Express Gen 2",
                          "PCI Express Gen 2 x1",
                          "PCI Express Gen 2 x2",
                          "PCI Express Gen 2 x4",
                          "PCI Express Gen 2 x8",
                          "PCI Express Gen 2 x16",
                          "PCI Express Gen 3",
                          "PCI Express Gen 3 x1",
                          "PCI Express Gen 3 x2",
                          "PCI Express Gen 3 x4",
                          "PCI Express Gen 3 x8",
                          "PCI Express Gen 3 x16"}}
    });
    ExpectRuns(kSlot, 0x06, "Slot Data Bus Width", "Error: Invalid Width",
               {
                   {1,
                    {"Other", "Unknown", "8 bit", "16 bit", "32 bit", "64 bit", "128 bit", "1x or x1", "2x or x2",
                     "4x or x4", "8x or x8", "12x or x12", "16x or x16", "32x or x32"}}
    });
    ExpectRuns(kSlot, 0x07, "Current Usage", "Error: Invalid Usage",
               {
                   {1, {"Other", "Unknown", "Available", "In use", "Unavailable"}}
    });
    ExpectRuns(kSlot, 0x08, "Slot Length", "Error: Invalid Length",
               {
                   {1,
                    {"Other", "Unknown", "Short Length", "Long Length", "2.5\" drive form factor",
                     "3.5\" drive form factor"}}
    });
}

TEST(Type9, RendersIdAndCharacteristics) {
    EXPECT_EQ(Decode(ClStructureBuilder(kSlot).Word(0x09, 0)).Text("Slot ID"), "None");
    EXPECT_EQ(Decode(ClStructureBuilder(kSlot).Word(0x09, 0x0100)).Text("Slot ID"), "100h");
    const struct {
        uint8_t bits;
        const char *first, *second;
    } kCases[] = {
        {0x00, "None",                                                                                 "None"                                  },
        {0x30, "PC Card-16, CardBus",                                                                  "Reserved, set to 0, Reserved, set to 0"},
        {0x0F, "Characteristics unknown, Provides 5.0 volts, Provides 3.3 volts, Shared Slot Opening",
         "Supports Power Management Event (PME#) signal, Supports hot-plug devices, Supports SMBus signal, "
         "Supports Bifurcation"                                                                                                                },
        {0xC0, "Zoom Video, Modem Ring Resume",                                                        "Reserved, set to 0, Reserved, set to 0"},
    };
    for (const auto& c : kCases) {
        const ClItems items = Decode(ClStructureBuilder(kSlot).Bytes(0x0B, {c.bits, c.bits}));
        EXPECT_EQ(items.Text("Slot Characteristics"), c.first);
        EXPECT_EQ(items.Text("Slot Characteristics 2"), c.second);
    }
    const ClItems old = Decode(ClStructureBuilder(9, 0x0D).Byte(0x05, 6).Strings({"\x01\x01\x01\x01"}));
    EXPECT_EQ(old.Text("Device/Function Number"), "0");
}

}  // namespace
