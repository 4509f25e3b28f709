// Physical Memory Array (the SMBIOS standard, type 16).
#include "Sources/SMBIOSType016.h"

namespace {

constexpr CodeText_t kLocations[] = {
    {1,   "Other"                      },
    {2,   "Unknown"                    },
    {3,   "System board or motherboard"},
    {4,   "ISA add-on card"            },
    {5,   "EISA add-on card"           },
    {6,   "PCI add-on card"            },
    {7,   "MCA add-on card"            },
    {8,   "PCMCIA add-on card"         },
    {9,   "Proprietary add-on card"    },
    {10,  "NuBus"                      },
    {160, "PC-98/C20 add-on card"      },
    {161, "PC-98/C24 add-on carder"    },
    {162, "PC-98/E add-on card\t"      },
    {163, "PC-98/Local bus add-on card"},
};
static_assert(IsRising(kLocations));

constexpr CodeText_t kUses[] = {
    {1, "Other"           },
    {2, "Unknown"         },
    {3, "System memory"   },
    {4, "Video memory"    },
    {5, "Flash memory"    },
    {6, "Non-volatile RAM"},
    {7, "Cache memory"    },
};
static_assert(IsRising(kUses));

constexpr CodeText_t kErrorCorrections[] = {
    {1, "Other"         },
    {2, "Unknown"       },
    {3, "None"          },
    {4, "Parity"        },
    {5, "Single-bit ECC"},
    {6, "Multi-bit ECC" },
    {7, "CRC"           },
};
static_assert(IsRising(kErrorCorrections));

ClText ShowHalves(const Field_t& field) {
    const uint64_t value = field.Qword();
    return ClSMBIOSType::GetHexString(value >> 32, 4)
        .append(" ")
        .append(ClSMBIOSType::GetHexString(value & 0xFFFFFFFF, 4));
}

constexpr Rendering_t Location = Enum8(kLocations, "Error: Invalid Type");
constexpr Rendering_t Halves{ShowHalves};
constexpr Rendering_t Use = Enum8(kUses, "Error: Invalid Type");
constexpr Rendering_t ErrorCorrection = Enum8(kErrorCorrections, "Error: Invalid Type");

constexpr ItemRow_t kItems[] = {
    {"Location",                        0x04, Location       },
    {"Use",                             0x05, Use            },
    {"Memory Error Correction",         0x06, ErrorCorrection},
    {"Maximum Capacity",                0x07, Dec32          },
    {"Memory Error Information Handle", 0x0B, Hex16          },
    {"Number of Memory Devices",        0x0D, Dec16          },
    {"Extended Maximum Capacity",       0x0F, Halves         },
};

}  // namespace

std::string_view ClSMBIOSType16::GetLocationString(uint8_t location) { return WordOf(Location, location); }

void ClSMBIOSType16::PrintStructure(const uint8_t* pData) { PrintRows(RowsOf<kItems>(), pData); }

ClSMBIOSType* NewType16(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType16; }

void DescribeType16(ClDescription& description) {
    description.Explain(ShowHalves,
                        "the high half, a blank, then the low half, each in hexadecimal of 4 digits or more");
    description.Rows(RowsOf<kItems>());
}
