// Lumetra Corvex Information: a vendor-defined structure (type 131) on the firmware engine of the remote
// management feature. A full structure has 53 bytes.
#include "Sources/Decoders.h"

namespace {

constexpr CodeText_t kEnabled[] = {
    {0, "Disabled"},
    {1, "Enabled" },
};
static_assert(IsRising(kEnabled));

constexpr CodeText_t kSupported[] = {
    {0, "Not Supported"},
    {1, "Supported"    },
};
static_assert(IsRising(kSupported));

ClText ShowVersion(const Field_t& field) {
    std::string text;
    for (size_t part = 0; part < 4; part++) {
        if (part != 0) text += '.';
        text += std::to_string(field.structure.Word(field.offset + part * sizeof(uint16_t)));
    }
    return text;
}

ClText ShowMasked(const Field_t& field) { return "0x" + PlainUpperHex(field.Dword() & field.Number()); }

ClText ShowDevice(const Field_t& field) { return "0x" + PlainUpperHex(field.Dword() >> 3 & 0x1F); }

constexpr Rendering_t Masked(uint32_t mask) { return {ShowMasked, {}, {}, mask}; }
constexpr Rendering_t Enabled8(uint32_t bit) { return Bit8(kEnabled, bit); }
constexpr Rendering_t Enabled32(uint32_t bit) { return Bit32(kEnabled, bit); }
constexpr Rendering_t Supported8(uint32_t bit) { return Bit8(kSupported, bit); }
constexpr Rendering_t Supported32(uint32_t bit) { return Bit32(kSupported, bit); }

// A PCI device: bits 0 to 2 its function, 3 to 7 its number, 8 to 15 its bus, and from 16 on its identification.
// Only the number is shifted, and not for the wireless device.
constexpr Rendering_t Version{ShowVersion}, Device{ShowDevice};
constexpr Rendering_t Function = Masked(0x7), DeviceInPlace = Masked(0xF8), Bus = Masked(0xFF00),
                      Identification = Masked(0xFFFF0000);

constexpr ItemRow_t kItems[] = {
    {"PVE Enabled State",                              0x04, Enabled8(0)    },
    {"TSE Enabled State",                              0x04, Enabled8(1)    },
    {"NRT Capability",                                 0x04, Enabled8(2)    },
    {"PVE Capability",                                 0x04, Enabled8(4)    },
    {"CVXBX Version",                                  0x08, Version        },
    {"PCI Device Function Number",                     0x10, Function       },
    {"PCI Device Number",                              0x10, Device         },
    {"PCI Device Bus Number",                          0x10, Bus            },
    {"Device Identification Number(DID)",              0x10, Identification },
    {"Lumetra(R) Corvex Enable Status",                0x18, Enabled32(0)   },
    {"Lumetra(R) QXM Enable Status",                   0x18, Enabled32(3)   },
    {"Lumetra(R) Tessary Enable Status",               0x18, Enabled32(4)   },
    {"KVM Supported Status",                           0x18, Supported32(14)},
    {"Local Wakeup Timer Supported Status",            0x18, Supported32(15)},
    {"Lumetra (R) Corvex FW Version",                  0x1C, Version        },
    {"Wired NIC PCI Device Function Number",           0x28, Function       },
    {"Wired NIC PCI Device Number",                    0x28, Device         },
    {"Wired NIC PCI Device Bus Number",                0x28, Bus            },
    {"Wired NIC Device Identification Number(DID)",    0x28, Identification },
    {"Wireless NIC PCI Device Function Number",        0x2E, Function       },
    {"Wireless NIC PCI Device Number",                 0x2E, DeviceInPlace  },
    {"Wireless NIC PCI Device Bus Number",             0x2E, Bus            },
    {"Wireless NIC Device Identification Number(DID)", 0x2E, Identification },
    {"PV-b support status in BIOS setup screen",       0x34, Supported8(1)  },
    {"NRT support status in BIOS setup screen",        0x34, Supported8(2)  },
    {"PV-a support status in BIOS setup screen",       0x34, Supported8(5)  },
};

}  // namespace

DECODER_OF_ROWS(131, kItems)

void DescribeType131(ClDescription& description) {
    description.Explain(ShowVersion, "four words in decimal, joined by points");
    description.Explain(ShowDevice, "bits 3 to 7, shifted down, as `0x` and hexadecimal digits");
    description.Explain(ShowMasked, "the bits of the mask, not shifted, as `0x` and hexadecimal digits");
    description.Rows(RowsOf<kItems>());
}
