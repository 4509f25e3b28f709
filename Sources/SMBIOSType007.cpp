// Cache Information (the SMBIOS standard, type 7).
#include "Sources/SMBIOSType007.h"

namespace {

// The parts of the configuration word. Bits 0 to 2 are the level, 0 for L1.
constexpr uint16_t kLevelMask = 7, kSocketed = 8;
constexpr uint32_t kLocationShift = 5, kModeShift = 8;

constexpr CodeText_t kLocations[] = {
    {0, "Internal"},
    {1, "External"},
    {2, "Reserved"},
    {3, "Unknown" },
};
static_assert(IsRising(kLocations));

constexpr CodeText_t kModes[] = {
    {0, "Write Through"             },
    {1, "Write Back"                },
    {2, "Varies with Memory address"},
    {3, "Unknown"                   },
};
static_assert(IsRising(kModes));

constexpr CodeText_t kMemoryTypes[] = {
    {0, "Other"         },
    {1, "Unknown"       },
    {2, "Non-Burst"     },
    {3, "Burst"         },
    {4, "Pipeline Burst"},
    {5, "Synchronous"   },
    {6, "Asynchronous"  },
};
static_assert(IsRising(kMemoryTypes));

constexpr CodeText_t kErrorCorrectionTypes[] = {
    {1, "Other"         },
    {2, "Unknown"       },
    {3, "None"          },
    {4, "Parity"        },
    {5, "Single-bit ECC"},
    {6, "Multi-bit ECC" },
};
static_assert(IsRising(kErrorCorrectionTypes));

constexpr CodeText_t kSystemCacheTypes[] = {
    {1, "Other"      },
    {2, "Unknown"    },
    {3, "Instruction"},
    {4, "Data"       },
    {5, "Unified"    },
};
static_assert(IsRising(kSystemCacheTypes));

constexpr CodeText_t kAssociativities[] = {
    {1,  "Other"                 },
    {2,  "Unknown"               },
    {3,  "Direct Mapped"         },
    {4,  "2-way Set-Associative" },
    {5,  "4-way Set-Associative" },
    {6,  "Fully Associative"     },
    {7,  "8-way Set-Associative" },
    {8,  "16-way Set-Associative"},
    {9,  "12-way Set-Associative"},
    {10, "24-way Set-Associative"},
    {11, "32-way Set-Associative"},
    {12, "48-way Set-Associative"},
    {13, "64-way Set-Associative"},
    {14, "20-way Set-Associative"},
};
static_assert(IsRising(kAssociativities));

ClText ShowConfiguration(const Field_t& field) {
    const uint16_t configuration = field.Word();
    std::string text{'L', static_cast<char>('1' + (configuration & kLevelMask))};
    text += (configuration & kSocketed) != 0 ? "; Socketed; " : "; Not Socketed; ";
    text += TextOf(kLocations, configuration >> kLocationShift & 3, {});
    return text.append("; ").append(TextOf(kModes, configuration >> kModeShift & 3, {}));
}

ClText ShowSpeed(const Field_t& field) {
    const uint8_t speed = field.Byte();
    return std::to_string(speed) + (speed == 0 ? " Ns (unknown)" : " Ns ");
}

constexpr Rendering_t Configuration{ShowConfiguration}, Speed{ShowSpeed},
    CacheSize = Text16<ClSMBIOSType7::GetCacheSizeString>(), MemoryTypes = BitWords16(kMemoryTypes, 7),
    ErrorCorrection = Enum8(kErrorCorrectionTypes, "Error: Invalid Type"),
    SystemCacheType = Enum8(kSystemCacheTypes, "Error: Invalid Type"),
    Associativity = Enum8(kAssociativities, "Error: Invalid Type");

constexpr ItemRow_t kItems[] = {
    {"Socket Designation",    0x04, StringOrNone   },
    {"Cache Configuration",   0x05, Configuration  },
    {"Maximum Cache Size",    0x07, CacheSize      },
    {"Installed Size",        0x09, CacheSize      },
    {"Supported SRAM Type",   0x0B, MemoryTypes    },
    {"Current SRAM Type",     0x0D, MemoryTypes    },
    {"Cache Speed",           0x0F, Speed          },
    {"Error Correction Type", 0x10, ErrorCorrection},
    {"System Cache Type",     0x11, SystemCacheType},
    {"Associativity",         0x12, Associativity  },
};

}  // namespace

std::string ClSMBIOSType7::GetCacheSizeString(uint16_t size) {
    constexpr uint16_t kIn64Kilobytes = 0x8000;
    uint32_t kilobytes = size & 0x7FFF;
    if ((size & kIn64Kilobytes) != 0) kilobytes <<= 6;
    return kilobytes > 1024 ? std::to_string(kilobytes >> 10) + " M" : std::to_string(kilobytes) + " K";
}

std::string ClSMBIOSType7::GetCacheMemoryTypeString(uint16_t types) { return BitsOrNone(kMemoryTypes, types, 7); }

std::string_view ClSMBIOSType7::GetAssociativityString(uint8_t associativity) {
    return WordOf(Associativity, associativity);
}

void ClSMBIOSType7::PrintStructure(const uint8_t* pData) { PrintRows(RowsOf<kItems>(), pData); }

ClSMBIOSType* NewType7(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType7; }

void DescribeType7(ClDescription& description) {
    description.Explain(ShowConfiguration,
                        "`L` and the level (bits 0 to 2, plus 1), `Socketed` or `Not Socketed` (bit 3), location "
                        "(bits 5 and 6) and operational mode (bits 8 and 9), joined by `; `");
    description.Explain(ShowSpeed, "decimal, then ` Ns `; `0 Ns (unknown)` for 0");
    description.Explain(CacheSize.render,
                        "bits 0 to 14 are the size in KB, or in 64 KB with bit 15 set: decimal and ` K` up to 1024 "
                        "KB, else in MB with ` M`");
    description.Rows(RowsOf<kItems>());
    description.Words("Cache Configuration: location", kLocations);
    description.Words("Cache Configuration: operational mode", kModes);
}
