// The decoders of types 32 to 39 and 41: boot, memory errors, management devices, power supplies, onboard devices.
#include <gtest/gtest.h>

#include "Tests/Support/Expectations.h"

namespace {

TEST(Type32, ShowsTheFirstByteOfTheStatus) {
    const auto boot = ClStructureBuilder(32, 0x14).Bytes(4, {0x34, 0x12, 0xFF}).Bytes(0x0A, {0x80, 0xFF});
    const std::string other = "Reserved or Vendor/OEM/Product-specific implementations";
    ExpectItems(boot, "System Boot Information {Type 32}",
                "Reserved=00001234h\nBoot Status=0080h\nDescription=" + other + "\n");
    EXPECT_EQ(Decode(ClStructureBuilder(boot).Byte(0x0A, 8)).Text("Description"),
              "System watchdog timer expired, causing the system to reboot");
    EXPECT_EQ(Decode(ClStructureBuilder(boot).Byte(0x0A, 9)).Text("Description"), other);
}

TEST(Type34, ShowsTheDeviceUnderTheErrorTypeKey) {
    const ClStructureBuilder device =
        ClStructureBuilder(34, 0x0B).Bytes(4, {0, 3}).Dword(6, 0x4C).Byte(0x0A, 5).Strings({"sensor", "second"});
    ExpectItems(device, "Management Device {Type 34}",
                "Description=sensor\nError Type=National Semiconductor LM75\nAddress=0000004Ch\n"
                "Address Type=SM Bus\n");
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

TEST(Type41, ShowsDeviceAndAddress) {
    const ClStructureBuilder device =
        ClStructureBuilder(41, 0x0B).Bytes(4, {1, 0x83, 1}).Word(7, 0x100).Bytes(9, {255, 0x0A}).Strings({"VGA"});
    ExpectItems(device, "Onboard Devices Extended Information {Type 41}",
                "Reference Designation=VGA\nDevice Status=Device Enabled\nDevice Type=Video\n"
                "Device Type Instance=01h\nSegment Group Number=256\nBus Number=255\nDevice Number=1\n"
                "Function Number=2\n");
}

}  // namespace
