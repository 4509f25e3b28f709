// IPMI Device Information (the SMBIOS standard, type 38).
#include "Sources/Decoders.h"

namespace {

constexpr size_t kModifier = 0x10;  // base address modifier and interrupt info, in one byte

constexpr CodeText_t kInterfaceTypes[] = {
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
    {15, "Reserved"                              },
};
static_assert(IsRising(kInterfaceTypes));

constexpr CodeText_t kRegisterSpacings[] = {
    {0, "Interface registers are on successive byte boundaries"},
    {1, "Interface registers are on 32-bit boundaries"         },
    {2, "Interface registers are on 16-byte boundaries"        },
    {3, "Reserved"                                             },
};
static_assert(IsRising(kRegisterSpacings));

constexpr CodeText_t kAddressBit0[] = {
    {0, "Address bit 0 = 0b"},
    {1, "Address bit 0 = 1b"},
};
static_assert(IsRising(kAddressBit0));

constexpr CodeText_t kInterruptInfo[] = {
    {0, "Interrupt information not specified"},
    {1, "Interrupt information specified"    },
};
static_assert(IsRising(kInterruptInfo));

constexpr CodeText_t kPolarities[] = {
    {0, "active low" },
    {1, "active high"},
};
static_assert(IsRising(kPolarities));

ClText ShowRevision(const Field_t& field) {
    const uint8_t revision = field.Byte();
    const std::string digits = ClSMBIOSType::GetHexString(revision, 2);
    return std::string("Revision ") + digits[0] + "." + digits[1];
}

constexpr Rendering_t InterfaceType = Enum8(kInterfaceTypes, "Error: Invalid Interface Type");
constexpr Rendering_t Revision{ShowRevision}, RegisterSpacing = EnumOfBits8(6, 2, kRegisterSpacings, {}),
                                              Reserved = FixedText("Reserved"), Level = FixedText("level"),
                                              Edge = FixedText("edge");
constexpr Rendering_t AddressBit0 = Bit8(kAddressBit0, 4), InterruptInfo = Bit8(kInterruptInfo, 3),
                      Polarity = Bit8(kPolarities, 1);

constexpr ItemRow_t kInterface[] = {
    {"Interface Type",                         0x04,      InterfaceType},
    {"IPMI Specification Revision",            0x05,      Revision     },
    {"I2C Slave Address",                      0x06,      Hex8         },
    {"NV Storage Device Address",              0x07,      Hex8         },
    {"Base Address",                           0x08,      Hex64        },
    {"Base Address Modifier / Interrupt Info", kModifier, Hex8         },
};

constexpr ItemRow_t kModifierBits[] = {
    {"Base Address Modifier bit 7:6 Register spacing",   kModifier, RegisterSpacing},
    {"Base Address Modifier bit 5",                      kModifier, Reserved       },
    {"Base Address Modifier bit 4 LS-bit for addresses", kModifier, AddressBit0    },
    {"Interrupt Info bit 3",                             kModifier, InterruptInfo  },
    {"Base Address Modifier bit 2",                      kModifier, Reserved       },
    {"Interrupt Info bit 1 Interrupt Polarity",          kModifier, Polarity       },
};

// The keys of the two trigger modes differ by a blank.
constexpr ItemRow_t kLevelTriggered[] = {
    {"Interrupt Info bit 0 Interrupt Trigger Mode", kModifier, Level},
};

constexpr ItemRow_t kEdgeTriggered[] = {
    {"Interrupt Info bit 0  Interrupt Trigger Mode", kModifier, Edge},
};

constexpr ItemRow_t kInterrupt[] = {
    {"Interrupt Number", 0x11, Dec8},
};

class ClSMBIOSType38 final : public ClSMBIOSType {
  public:
    ClSMBIOSType38() : ClSMBIOSType(38) {}
    void PrintStructure(const uint8_t* pData) override {
        if (!PrintHead(pData)) return;
        const ClStructure structure = View(pData);
        PrintItems(RowsOf<kInterface>(), structure);
        const uint8_t modifier = structure.Byte(kModifier);
        if (modifier != 0) {
            PrintItems(RowsOf<kModifierBits>(), structure);
            PrintItems((modifier & 1) != 0 ? RowsOf<kLevelTriggered>() : RowsOf<kEdgeTriggered>(), structure);
        }
        PrintItems(RowsOf<kInterrupt>(), structure);
    }
};

}  // namespace

ClSMBIOSType* NewType38(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType38; }

void DescribeType38(ClDescription& description) {
    description.Explain(ShowRevision, "`Revision `, then the two hexadecimal digits of the byte, joined by a point");
    description.Rows(RowsOf<kInterface>());
    description.Rows(RowsOf<kModifierBits>(), "Structures in which the byte at 10h isn't 0");
    description.Rows(RowsOf<kLevelTriggered>(), "Those of them with bit 0 set");
    description.Rows(RowsOf<kEdgeTriggered>(), "Those of them with bit 0 clear");
    description.Rows(RowsOf<kInterrupt>(), "All structures");
}
