// The decoders of types 21 to 30.
#include <gtest/gtest.h>

#include "Tests/Support/Expectations.h"

namespace {

TEST(PointingDevice, Enumerations) {
    const ClStructureBuilder device(21, 7);
    const std::string invalid = "Error: Invalid Type";
    ExpectEnumeration(device, 0x04, "Pointing Device Type", invalid, {1, "Other", 9, "Optical Sensor"});
    ExpectEnumeration(device, 0x05, "Pointing Device Interface", invalid, {1, "Other", 8, "ADB (Apple Desktop Bus)"},
                      {160, "Bus mouse DB-9", 162, "USB"});
}

TEST(PortableBattery, Items) {
    ClStructureBuilder battery(22, 0x1A);
    battery.Bytes(0x04, {0, 2, 3, 4, 9, 0x55});  // 55h, the chemistry, isn't shown
    battery.Word(0x0A, 0x0FA0).Word(0x0C, 0x2B5C).Bytes(0x0E, {2, 0xFF}).Word(0x10, 0x00AB).Word(0x12, 0x3267);
    battery.Bytes(0x14, {2, 10}).Dword(0x16, 0xC0FFEE).Strings({"Rear", "ACME", "May 2005", "77"});
    ExpectItems(battery, "Portable Battery {Type 22}",
                "Location=Rear\nManufacturer=ACME\nManufacture Date=May 2005\nSerial Number=77\n"
                "Device Name=(no such string)\nDevice Capacity=0FA0h\nDesign Voltage=2B5Ch\n"
                "SBDS Version Number=ACME\nMaximum Error in Battery Data=FFh\nSBDS Serial Number=00ABh\n"
                "SBDS Manufacture Date=7/3/2005\nSBDS Device Chemistry=02h\nDesign Capacity Multiplier=0Ah\n"
                "OEM Specific=00C0FFEEh\n");
}

TEST(PortableBattery, Dates) {
    const Reading_t kReadings[] = {
        {0x12, 0x0000, "SBDS Manufacture Date", "0/0/1980"  },
        {0x12, 0x01E0, "SBDS Manufacture Date", "0/15/1980" },
        {0x12, 0x2A21, "SBDS Manufacture Date", "1/1/2001"  },
        {0x12, 0xFFFF, "SBDS Manufacture Date", "31/15/2107"},
    };
    ExpectWords(ClStructureBuilder(22, 0x1A), kReadings);
}

// Only the formatted area counts, and a number of 0 is the first string.
TEST(Probes, Items) {
    for (const uint8_t type : std::initializer_list<uint8_t>{26, 28, 29}) {
        ClStructureBuilder probe(type, 0x16);
        probe.Bytes(0x04, {2, 0x67}).Word(0x06, 0x8000).Dword(0x10, 0x55555).Strings({"first", "LM78A"});
        EXPECT_EQ(Decode(probe).Text("Description"), "LM78A");
        EXPECT_EQ(Decode(probe).Text("Maximum Value"), "8000h");
        EXPECT_EQ(Decode(probe).Text("OEM Defined"), "00055555h");
        const ClItems cut = Decode(ClStructureBuilder(type, 4).Strings({"first"}));
        EXPECT_EQ(cut.Text("Description"), "first");
        EXPECT_EQ(cut.Text("OEM Defined"), "00000000h");
    }
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

TEST(RemoteAccess, Items) {
    EXPECT_EQ(Decode(ClStructureBuilder(30, 6)).Text("Manufacturer Name"), "(null string)");
    const ClItems cut = Decode(ClStructureBuilder(30, 5).Byte(0x04, 1).Strings({"ACME"}));
    EXPECT_EQ(cut.Text("Manufacturer Name"), "ACME");
    EXPECT_EQ(cut.Text("Connections"), "00h");
}

// Structures that end early, of the types that read on: the bytes are those of the string area, then zeros.
TEST(ShortStructures, ReadTheRecordsOwnBytes) {
    EXPECT_EQ(Decode(ClStructureBuilder(23, 0x09).Strings({"AB"})).Text("Timer Interval"), "4241h");
    EXPECT_EQ(Decode(ClStructureBuilder(23, 0x09).Strings({"AB"})).Text("Timeout"), "0000h");
    EXPECT_EQ(Decode(ClStructureBuilder(24, 0x04).Strings({"m"})).Text("Hardware Security Settings"), "6Dh");
    EXPECT_EQ(Decode(ClStructureBuilder(22, 0x10).Strings({"AB"})).Text("OEM Specific"), "00000000h");
}

}  // namespace
