// Lumetra QXM Components Information: a vendor-defined structure (type 130) on the platform's remote management
// feature. A full structure has 19 bytes.
#include "Sources/Decoders.h"

namespace {

constexpr size_t kCapability = 0x08;

// Only the value 1 enables the feature.
constexpr CodeText_t kEnabled[] = {
    {1, "Enabled"},
};
static_assert(IsRising(kEnabled));

constexpr CodeText_t kReflash[] = {
    {0, "Not Supported"},
    {1, "Supported"    },
};
static_assert(IsRising(kReflash));

constexpr CodeText_t kSetup[] = {
    {0, "BIOS boot into setup screen is not supported"},
    {1, "BIOS boot into setup screen is supported"    },
};
static_assert(IsRising(kSetup));

constexpr CodeText_t kPause[] = {
    {0, "BIOS pause before booting operating system is not supported"},
    {1, "BIOS pause before booting operating system is supported"    },
};
static_assert(IsRising(kPause));

// A set bit of these two means that the boot is not supported.
constexpr CodeText_t kFloppyBoot[] = {
    {0, "BIOS supports boot from Floppy device"        },
    {1, "BIOS does not support boot from Floppy device"},
};
static_assert(IsRising(kFloppyBoot));

constexpr CodeText_t kDiscBoot[] = {
    {0, "BIOS supports boot from CD/DVD device"        },
    {1, "BIOS does not support boot from CD/DVD device"},
};
static_assert(IsRising(kDiscBoot));

constexpr CodeText_t kSecureErase[] = {
    {0, "Remote Secure Erase not supported"},
    {1, "Remote Secure Erase supported"    },
};
static_assert(IsRising(kSecureErase));

constexpr CodeText_t kSecureBoot[] = {
    {0, "BIOS Secure Boot not supported"},
    {1, "BIOS Secure Boot supported"    },
};
static_assert(IsRising(kSecureBoot));

constexpr CodeText_t kTerminals[] = {
    {1, "VT52 (Basic monochrome)"            },
    {2, "VT100+ (Added function keys F5~F14)"},
    {3, "VT-UTF8"                            },
    {4, "PC-ANSI"                            },
};
static_assert(IsRising(kTerminals));

ClText ShowSignature(const Field_t& field) { return ClSMBIOSType::GetString(field.Dword(), field.structure.Data()); }

constexpr Rendering_t Signature{ShowSignature}, Capable = FixedText("This platform is QXM capable"),
                                                NotCapable = FixedText("This platform is not QXM capable");
constexpr Rendering_t Enabled = Enum8(kEnabled, "Disabled");
constexpr Rendering_t Reflash = Bit8(kReflash, 5), Setup = Bit8(kSetup, 4), Pause = Bit8(kPause, 3);
constexpr Rendering_t FloppyBoot = Bit8(kFloppyBoot, 2), DiscBoot = Bit8(kDiscBoot, 1);
constexpr Rendering_t Terminal = Enum8(kTerminals, "Error: Invalid Type");
constexpr Rendering_t SecureErase = Bit8(kSecureErase, 6), SecureBoot = Bit8(kSecureBoot, 7);

constexpr ItemRow_t kSignature[] = {
    {"QXM Signature", 0x04, Signature},
};

// The key depends on the value.
constexpr ItemRow_t kCapable[] = {
    {"Lumetra(R) QXM Capability Status", kCapability, Capable},
};

constexpr ItemRow_t kNotCapable[] = {
    {"Lumetra(R) QXM Capability", kCapability, NotCapable},
};

constexpr ItemRow_t kFeatures[] = {
    {"Lumetra QXM Feature Status",                                0x09, Enabled    },
    {"Lumetra SRoU(Storage Redirection over USB) Feature Status", 0x0A, Enabled    },
    {"Lumetra SoL(Serial Over LAN) Feature Status",               0x0B, Enabled    },
    {"Network Interface Status",                                  0x0C, Enabled    },
    {"BIOS Re-flash",                                             0x0E, Reflash    },
    {"BIOS Setup",                                                0x0E, Setup      },
    {"BIOS Pause",                                                0x0E, Pause      },
    {"Floppy Boot",                                               0x0E, FloppyBoot },
    {"CD/DVD Boot",                                               0x0E, DiscBoot   },
    {"Location",                                                  0x0F, Terminal   },
    {"Remote Secure Erase",                                       0x10, SecureErase},
    {"BIOS Secure Boot Capability",                               0x10, SecureBoot },
    {"KVM Redirection Status",                                    0x12, Enabled    },
};

class ClSMBIOSType130 final : public ClSMBIOSType {
  public:
    ClSMBIOSType130() : ClSMBIOSType(130) {}
    void PrintStructure(const uint8_t* pData) override {
        if (!PrintHead(pData)) return;
        const ClStructure structure = View(pData);
        PrintItems(RowsOf<kSignature>(), structure);
        PrintItems(structure.Byte(kCapability) == 1 ? RowsOf<kCapable>() : RowsOf<kNotCapable>(), structure);
        PrintItems(RowsOf<kFeatures>(), structure);
    }
};

}  // namespace

ClSMBIOSType* NewType130(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType130; }

void DescribeType130(ClDescription& description) {
    description.Explain(ShowSignature, "string, numbered by all 32 bits; number 0 is the first one");
    description.Rows(RowsOf<kSignature>());
    description.Rows(RowsOf<kCapable>(), "Structures with 1 at 08h");
    description.Rows(RowsOf<kNotCapable>(), "Structures with another value there");
    description.Rows(RowsOf<kFeatures>(), "All structures");
}
