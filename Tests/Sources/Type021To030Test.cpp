#include <gtest/gtest.h>

#include "Tests/Support/Enumerations.h"

TEST(PointingDevice, ItemsAndEnumerations) {
    const auto device = ClStructureBuilder(21, 7).Bytes(0x04, {3, 162, 0x1F});
    EXPECT_EQ(Decode(device).Lines(),
              "Built-in Pointing Device {Type 21}#GROUPNAME=\nType=21\nLength=7\nHandle=16\n"
              "Pointing Device Type=Mouse\n"
              "Pointing Device Interface=USB\n"
              "Number of Buttons=1Fh\n");
    ExpectEnumeration(device, 0x04, "Pointing Device Type",
                      {
                          {1, "Other"         },
                          {2, "Unknown"       },
                          {3, "Mouse"         },
                          {4, "Track Ball"    },
                          {5, "Track Point"   },
                          {6, "Glide Point"   },
                          {7, "Touch Pad"     },
                          {8, "Touch Screen"  },
                          {9, "Optical Sensor"}
    },
                      "Error: Invalid Type");
    ExpectEnumeration(device, 0x05, "Pointing Device Interface",
                      {
                          {1,   "Other"                  },
                          {2,   "Unknown"                },
                          {3,   "Serial"                 },
                          {4,   "PS/2"                   },
                          {5,   "Infrared"               },
                          {6,   "HP-HIL"                 },
                          {7,   "Bus Mouse"              },
                          {8,   "ADB (Apple Desktop Bus)"},
                          {160, "Bus mouse DB-9"         },
                          {161, "Bus mouse micro-DIN"    },
                          {162, "USB"                    }
    },
                      "Error: Invalid Type");
}

TEST(PortableBattery, Items) {
    const auto battery = ClStructureBuilder(22, 0x1A)
                             .Bytes(0x04, {0, 2, 3, 4, 9, 0x55})  // 55h, the chemistry, isn't shown
                             .Word(0x0A, 0x0FA0)
                             .Word(0x0C, 0x2B5C)
                             .Bytes(0x0E, {2, 0xFF})
                             .Word(0x10, 0x00AB)
                             .Word(0x12, 0x3267)
                             .Bytes(0x14, {2, 10})
                             .Dword(0x16, 0xC0FFEE)
                             .Strings({"Rear", "ACME", "May 2005", "77"});
    EXPECT_EQ(Decode(battery).Lines(),
              "Portable Battery {Type 22}#GROUPNAME=\nType=22\nLength=26\nHandle=16\n"
              "Location=Rear\n"
              "Manufacturer=ACME\n"
              "Manufacture Date=May 2005\n"
              "Serial Number=77\n"
              "Device Name=(no such string)\n"
              "Device Capacity=0FA0h\n"
              "Design Voltage=2B5Ch\n"
              "SBDS Version Number=ACME\n"
              "Maximum Error in Battery Data=FFh\n"
              "SBDS Serial Number=00ABh\n"
              "SBDS Manufacture Date=7/3/2005\n"
              "SBDS Device Chemistry=02h\n"
              "Design Capacity Multiplier=0Ah\n"
              "OEM Specific=00C0FFEEh\n");
}

TEST(PortableBattery, Dates) {
    const struct {
        uint16_t packed;
        const char* text;
    } kCases[] = {
        {0x0000, "0/0/1980"  },
        {0x001F, "31/0/1980" },
        {0x01E0, "0/15/1980" },
        {0xFE00, "0/0/2107"  },
        {0x2A21, "1/1/2001"  },
        {0xFFFF, "31/15/2107"},
    };
    for (const auto& c : kCases)
        EXPECT_EQ(Decode(ClStructureBuilder(22, 0x1A).Word(0x12, c.packed)).Text("SBDS Manufacture Date"), c.text);
}

TEST(ResetSecurityAndPower, Items) {
    const auto reset = ClStructureBuilder(23, 0x0D)
                           .Byte(0x04, 0x3F)
                           .Word(0x05, 1)
                           .Word(0x07, 0xFFFF)
                           .Word(0x09, 0x20)
                           .Word(0x0B, 0x300);
    EXPECT_EQ(Decode(reset).Lines(),
              "System Reset {Type 23}#GROUPNAME=\nType=23\nLength=13\nHandle=16\n"
              "Capabilities=3Fh\n"
              "Reset Count=0001h\n"
              "Reset Limit=FFFFh\n"
              "Timer Interval=0020h\n"
              "Timeout=0300h\n");
    EXPECT_EQ(Decode(ClStructureBuilder(24, 5).Byte(0x04, 0x6D)).Lines(),
              "Hardware Security {Type 24}#GROUPNAME=\nType=24\nLength=5\nHandle=16\n"
              "Hardware Security Settings=6Dh\n");
    EXPECT_EQ(Decode(ClStructureBuilder(25, 9).Bytes(0x04, {0x12, 0x31, 0x23, 0x59, 0x00})).Lines(),
              "System Power Controls {Type 25}#GROUPNAME=\nType=25\nLength=9\nHandle=16\n"
              "Next Scheduled Power-on Month=12h\n"
              "Next Scheduled Power-on Day=31h\n"
              "Next Scheduled Power-on Hour=23h\n"
              "Next Scheduled Power-on Minute=59h\n"
              "Next Scheduled Power-on Second=00h\n");
}

TEST(Probes, Items) {
    const struct {
        uint8_t type;
        const char* title;
    } kProbes[] = {
        {26, "Voltage Probe {Type 26}"           },
        {28, "Temperature Probe {Type 28}"       },
        {29, "Electrical Current Probe {Type 29}"},
    };
    for (const auto& probe : kProbes) {
        const auto structure = ClStructureBuilder(probe.type, 0x16)
                                   .Bytes(0x04, {2, 0x67})
                                   .Word(0x06, 0x8000)
                                   .Word(0x08, 1)
                                   .Word(0x0A, 0x22)
                                   .Word(0x0C, 0x333)
                                   .Word(0x0E, 0x4444)
                                   .Dword(0x10, 0x55555)
                                   .Word(0x14, 0x6666)
                                   .Strings({"first", "LM78A"});
        EXPECT_EQ(Decode(structure).Lines(), std::string(probe.title) +
                                                 "#GROUPNAME=\nType=" + std::to_string(probe.type) +
                                                 "\nLength=22\nHandle=16\n"
                                                 "Description=LM78A\n"
                                                 "Location and Status=67h\n"
                                                 "Maximum Value=8000h\n"
                                                 "Minimum Value=0001h\n"
                                                 "Resolution=0022h\n"
                                                 "Tolerance=0333h\n"
                                                 "Accuracy=4444h\n"
                                                 "OEM Defined=00055555h\n");
        // Only the formatted area counts, and a number of 0 is the first string.
        const ClItems cut = Decode(ClStructureBuilder(probe.type, 4).Strings({"first"}));
        EXPECT_EQ(cut.Text("Description"), "first");
        EXPECT_EQ(cut.Text("Location and Status"), "00h");
        EXPECT_EQ(cut.Text("OEM Defined"), "00000000h");
    }
}

TEST(CoolingDevice, GuardsDropTheirOwnItem) {
    const auto Cooling = [](uint8_t length) {
        ClStructureBuilder device(27, length);
        device.Word(0x04, 0x001C).Bytes(0x06, {0x63, 0x01}).Dword(0x08, 0x0A0B0C0D).Strings({"first", "CPU fan"});
        return device;
    };
    const std::string start =
        "Temperature Probe Handle=001Ch\nDevice Type and Status=63h\n"
        "Cooling Unit Group=01h\nOEM Defined=0A0B0C0Dh\n";
    const auto Head = [](int length) {
        return "Cooling Device {Type 27}#GROUPNAME=\nType=27\nLength=" + std::to_string(length) + "\nHandle=16\n";
    };
    EXPECT_EQ(Decode(Cooling(12)).Lines(), Head(12) + start);
    EXPECT_EQ(Decode(Cooling(14).Word(0x0C, 5)).Lines(), Head(14) + start + "NominalSpeed=05h\n");
    EXPECT_EQ(Decode(Cooling(15).Word(0x0C, 1000).Byte(0x0E, 2)).Lines(),
              Head(15) + start + "NominalSpeed=3E8h\nDescription=CPU fan\n");
    // The speed's second byte comes from the string area when the structure ends between the two.
    EXPECT_EQ(Decode(Cooling(13).Byte(0x0C, 5)).Lines(), Head(13) + start + "NominalSpeed=6605h\n");
}

TEST(RemoteAccess, Items) {
    const auto access = ClStructureBuilder(30, 6).Bytes(0x04, {1, 0x03}).Strings({"ACME"});
    EXPECT_EQ(Decode(access).Lines(),
              "Out-of-Band Remote Access {Type 30}#GROUPNAME=\nType=30\nLength=6\nHandle=16\n"
              "Manufacturer Name=ACME\n"
              "Connections=03h\n");
    EXPECT_EQ(Decode(ClStructureBuilder(30, 6)).Text("Manufacturer Name"), "(null string)");
    EXPECT_EQ(Decode(ClStructureBuilder(30, 5).Byte(0x04, 1).Strings({"ACME"})).Text("Connections"), "00h");
}

// Structures that end early, of the types that read on: the bytes are those of the string area, then zeros.
TEST(ShortStructures, ReadTheRecordsOwnBytes) {
    EXPECT_EQ(Decode(ClStructureBuilder(23, 0x09).Strings({"AB"})).Text("Timer Interval"), "4241h");
    EXPECT_EQ(Decode(ClStructureBuilder(23, 0x09).Strings({"AB"})).Text("Timeout"), "0000h");
    EXPECT_EQ(Decode(ClStructureBuilder(24, 0x04).Strings({"m"})).Text("Hardware Security Settings"), "6Dh");
    EXPECT_EQ(Decode(ClStructureBuilder(22, 0x10).Strings({"AB"})).Text("OEM Specific"), "00000000h");
}
