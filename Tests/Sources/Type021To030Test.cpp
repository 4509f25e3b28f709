// The decoders of types 21 to 30.
#include <gtest/gtest.h>

#include "Tests/Support/Expectations.h"

namespace {

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

}  // namespace
