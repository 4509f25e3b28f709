// BIOS Information (the SMBIOS standard, type 0), from the parsed record.
#include "Sources/Decoders.h"
#include "Sources/PackageTrace.h"

namespace {

ClText ShowRomSize(const Field_t& field) { return std::to_string((field.Byte() + 1) * 64) + " KB"; }

ClText ShowRelease(const Field_t& field) {
    const uint8_t release = field.Byte();
    if (release == 255) return "255 (Not Supported)";
    return PlainHex(release) + "h (" + std::to_string(release) + ")";
}

constexpr Rendering_t RomSize{ShowRomSize}, Release{ShowRelease};

// Named, because the table would be too wide with it.
constexpr std::string_view kNecFloppy =
    "Int 13h - Japanese Floppy for NEC 9800 1.2mb (3.5inch, 1k Bytes/Sector, 360 RPM) is supported";

constexpr ItemRow_t kVersion[] = {
    {"BIOS Vendor",  0x04, ParsedText},
    {"BIOS Version", 0x05, ParsedText},
};

// A BIOS without a version ends its structure there.
constexpr ItemRow_t kItems[] = {
    {"Starting Address Segment",                                                    0x06, Hex16      },
    {"BIOS Release Date",                                                           0x08, ParsedText },
    {"BIOS ROM Size",                                                               0x09, RomSize    },
    {"BIOS Characteristics",                                                        0x0A, Group      },
    {"BIOS Characteristics Not Supported",                                          0x0A, YesNo32(3) },
    {"ISA is supported",                                                            0x0A, YesNo32(4) },
    {"MCA is supported",                                                            0x0A, YesNo32(5) },
    {"EISA is supported",                                                           0x0A, YesNo32(6) },
    {"PCI is supported",                                                            0x0A, YesNo32(7) },
    {"PC Card (PCMCIA) is supported",                                               0x0A, YesNo32(8) },
    {"Plug and Play is supported",                                                  0x0A, YesNo32(9) },
    {"APM is supported",                                                            0x0A, YesNo32(10)},
    {"BIOS is Upgradeable (Flash)",                                                 0x0A, YesNo32(11)},
    {"BIOS shadowing is allowed",                                                   0x0A, YesNo32(12)},
    {"VL-VESA is supported",                                                        0x0A, YesNo32(13)},
    {"ESCD support is available",                                                   0x0A, YesNo32(14)},
    {"Boot from CD is supported",                                                   0x0A, YesNo32(15)},
    {"Selectable Boot is supported",                                                0x0A, YesNo32(16)},
    {"BIOS ROM is socketed",                                                        0x0A, YesNo32(17)},
    {"Boot From PC Card (PCMCIA) is supported",                                     0x0A, YesNo32(18)},
    {"EDD (Enhanced Disk Drive) Specification is supported",                        0x0A, YesNo32(19)},
    {kNecFloppy,                                                                    0x0A, YesNo32(20)},
    {"Int 13h - Japanese Floppy for Toshiba 1.2mb (3.5inch, 360 RPM) is supported", 0x0A, YesNo32(21)},
    {"Int 13h - 5.25inch / 360 KB Floppy Services are supported",                   0x0A, YesNo32(22)},
    {"Int 13h - 5.25inch /1.2MB Floppy Services are supported",                     0x0A, YesNo32(23)},
    {"Int 13h - 3.5inch / 720 KB Floppy Services are supported",                    0x0A, YesNo32(24)},
    {"Int 13h - 3.5inch / 2.88 MB Floppy Services are supported",                   0x0A, YesNo32(25)},
    {"Int 5h, Print Screen Service is supported",                                   0x0A, YesNo32(26)},
    {"Int 9h, 8042 Keyboard services are supported",                                0x0A, YesNo32(27)},
    {"Int 14h, Serial Services are supported",                                      0x0A, YesNo32(28)},
    {"Int 17h, Printer Services are supported",                                     0x0A, YesNo32(29)},
    {"Int 10h, CGA/Mono Video Services are supported",                              0x0A, YesNo32(30)},
    {"NEC PC-98",                                                                   0x0A, YesNo32(31)},
    {"BIOS Characteristics Ext Byte 1",                                             0x12, Group      },
    {"ACPI Supported",                                                              0x12, YesNo8(0)  },
    {"USB Legacy is Supported",                                                     0x12, YesNo8(1)  },
    {"AGP Supported",                                                               0x12, YesNo8(2)  },
    {"I2O boot is Supported",                                                       0x12, YesNo8(3)  },
    {"LS-120 boot is Supported",                                                    0x12, YesNo8(4)  },
    {"ATAPI ZIP Drive Boot is Supported",                                           0x12, YesNo8(5)  },
    {"1394 Boot is Supported",                                                      0x12, YesNo8(6)  },
    {"Smart Battery Supported",                                                     0x12, YesNo8(7)  },
    {"BIOS Characteristics Ext Byte 2",                                             0x13, Group      },
    {"BIOS Boot Specification supported",                                           0x13, YesNo8(0)  },
    {"Function key-initiated Network Service boot supported",                       0x13, YesNo8(1)  },
    {"Enable Targeted Content Distribution",                                        0x13, YesNo8(2)  },
    {"System BIOS Minor Release",                                                   0x15, Dec8       },
    {"System BIOS Major Release",                                                   0x14, Dec8       },
    {"Embedded Controller Firmware Major Release",                                  0x16, Release    },
    {"Embedded Controller Firmware Minor Release",                                  0x17, Release    },
};

class ClSMBIOSType0 final : public ClSMBIOSType {
  public:
    ClSMBIOSType0() : ClSMBIOSType(0) {}
    void PrintStructure(const uint8_t* pData) override {
        if (!PrintHead(pData)) return;
        const ClStructure structure = View(pData);
        PrintItems(RowsOf<kVersion>(), structure);
        if (structure.Byte(0x05) == 0) {
            PACKAGE_TRACE("Sources\\SMBIOSType000", "ClSMBIOSType0::PrintStructure", kError, "\nBIOS Version is empty");
            return;
        }
        PrintItems(RowsOf<kItems>(), structure);
    }
};

}  // namespace

ClSMBIOSType* NewType0(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType0; }

void DescribeType0(ClDescription& description) {
    description.Explain(ShowRomSize, "decimal, (the byte + 1) * 64, then ` KB`");
    description.Explain(ShowRelease,
                        "lower-case hexadecimal and `h`, then decimal in parentheses, as in "
                        "`1ah (26)`; `255 (Not Supported)` for 255");
    description.Rows(RowsOf<kVersion>());
    description.Rows(RowsOf<kItems>(), "Structures in which the number of the version string isn't 0");
}
