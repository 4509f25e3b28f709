// Platform Firmware Information.
#include "Packages/Standard/Rows.h"

namespace {

constexpr BitRow_t kFirmwareCharacteristics[] = {
    {2, "Unknown", "2.0"},
    {3, "Firmware Characteristics are not supported", "2.0"},
    {4, "ISA is supported", "2.0"},
    {5, "MCA is supported", "2.0"},
    {6, "EISA is supported", "2.0"},
    {7, "PCI is supported", "2.0"},
    {8, "PC card (PCMCIA) is supported", "2.0"},
    {9, "Plug and Play is supported", "2.0"},
    {10, "APM is supported", "2.0"},
    {11, "Firmware is upgradeable (Flash)", "2.0"},
    {12, "Firmware shadowing is allowed", "2.0"},
    {13, "VL-VESA is supported", "2.0"},
    {14, "ESCD support is available", "2.0"},
    {15, "Boot from CD is supported", "2.0"},
    {16, "Selectable boot is supported", "2.0"},
    {17, "Firmware ROM is socketed", "2.0"},
    {18, "Boot from PC card (PCMCIA) is supported", "2.0"},
    {19, "EDD specification is supported", "2.0"},
    {20, "Int 13h: Japanese floppy for NEC 9800 1.2 MB (3.5\", 1K bytes/sector, 360 RPM)", "2.0"},
    {21, "Int 13h: Japanese floppy for Toshiba 1.2 MB (3.5\", 360 RPM)", "2.0"},
    {22, "Int 13h: 5.25\" / 360 KB floppy services", "2.0"},
    {23, "Int 13h: 5.25\" / 1.2 MB floppy services", "2.0"},
    {24, "Int 13h: 3.5\" / 720 KB floppy services", "2.0"},
    {25, "Int 13h: 3.5\" / 2.88 MB floppy services", "2.0"},
    {26, "Int 5h: print screen service", "2.0"},
    {27, "Int 9h: 8042 keyboard services", "2.0"},
    {28, "Int 14h: serial services", "2.0"},
    {29, "Int 17h: printer services", "2.0"},
    {30, "Int 10h: CGA/Mono Video Services", "2.0"},
    {31, "NEC PC-98", "2.0"},
};

constexpr BitRow_t kFirmwareCharacteristicsExt1[] = {
    {0, "ACPI is supported", "2.1"},
    {1, "USB Legacy is supported", "2.1"},
    {2, "AGP is supported", "2.1"},
    {3, "I2O boot is supported", "<=2.3.1"},
    {4, "LS-120 SuperDisk boot is supported", "<=2.3.1"},
    {5, "ATAPI ZIP drive boot is supported", "<=2.3.1"},
    {6, "1394 boot is supported", "<=2.3.1"},
    {7, "Smart battery is supported", "<=2.3.1"},
};

constexpr BitRow_t kFirmwareCharacteristicsExt2[] = {
    {0, "BIOS Boot Specification is supported", "2.3"},
    {1, "Function key-initiated network service boot is supported", "2.3.1"},
    {2, "Enable targeted content distribution", "2.4"},
    {3, "UEFI Specification is supported", "2.7"},
    {4, "SMBIOS table describes a virtual machine", "2.7"},
    {5, "Manufacturing mode is supported", "3.5"},
    {6, "Manufacturing mode is enabled", "3.5"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Vendor", Text, "2.0"},
    {Byte(0x05), "Firmware Version", Text, "2.0"},
    {Word(0x06), "BIOS Starting Address Segment", Number(kPlain, None(0, "not applicable")), "2.0"},
    {Byte(0x08), "Firmware Release Date", Text, "2.0"},
    {Byte(0x09), "Firmware ROM Size", Size(Form_t::kRomSize, See(0xFF, "Extended Firmware ROM Size")), "2.0"},
    {Qword(0x0A), "Firmware Characteristics", Flags(kFirmwareCharacteristics), "2.0"},
    {Byte(0x12), "Firmware Characteristics Extension Byte 1", Flags(kFirmwareCharacteristicsExt1), "2.1"},
    {Byte(0x13), "Firmware Characteristics Extension Byte 2", Flags(kFirmwareCharacteristicsExt2), "2.3"},
    {Byte(0x14), "Platform Firmware Major Release", Number(kPlain, None(0xFF, "not supported")), "2.4"},
    {Byte(0x15), "Platform Firmware Minor Release", Number(kPlain, None(0xFF, "not supported")), "2.4"},
    {Byte(0x16), "Embedded Controller Firmware Major Release",
     Number(kPlain, None(0xFF, "no field-upgradeable controller")), "2.4"},
    {Byte(0x17), "Embedded Controller Firmware Minor Release",
     Number(kPlain, None(0xFF, "no field-upgradeable controller")), "2.4"},
    {Word(0x18), "Extended Firmware ROM Size", Size(Form_t::kExtendedRomSize), "3.1"},
    {From("Firmware ROM Size", "Extended Firmware ROM Size"), "ROM Size", AsNumber(kFirstUsable, kByte), ""},
    {From("Firmware Release Date"), "Release Date ISO", AsDate(kIsoDate), ""},
    {From("Platform Firmware Major Release", "Platform Firmware Minor Release"), "Platform Firmware Release",
     AsVersion(kRelease), ""},
    {From("Embedded Controller Firmware Major Release", "Embedded Controller Firmware Minor Release"),
     "Embedded Controller Firmware Release", AsVersion(kRelease), ""},
    {From("BIOS Starting Address Segment"), "Runtime Address", AsNumber(kRealModeAddress), ""},
    {From("BIOS Starting Address Segment"), "Runtime Size", AsNumber(kRealModeSize, kByte), ""},
};

}  // namespace

STANDARD_TYPE(0, "Platform Firmware Information", "2.0", kFields)
