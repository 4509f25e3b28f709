// Memory Device (the SMBIOS standard, type 17). Sizes are shown as they are in the structure.
#include "Sources/SMBIOSType017.h"
#include "Packages/Format/Ascii.h"
#include "Packages/OS/TextConversion.h"

namespace {

// The size that refers to the field of the extended size.
constexpr uint16_t kSizeIsExtended = 0x7FFF;
constexpr size_t kSize = 0x0C;
constexpr size_t kExtendedSizeWidth = 8;

constexpr CodeText_t kFormFactors[] = {
    {1,  "Other"           },
    {2,  "Unknown"         },
    {3,  "SIMM"            },
    {4,  "SIP"             },
    {5,  "Chip"            },
    {6,  "DIP"             },
    {7,  "ZIP"             },
    {8,  "Proprietary Card"},
    {9,  "DIMM"            },
    {10, "TSOP"            },
    {11, "Row of chips"    },
    {12, "RIMM"            },
    {13, "SODIMM"          },
    {14, "SRIMM"           },
    {15, "FB-DIMM"         },
};
static_assert(IsRising(kFormFactors));

constexpr CodeText_t kMemoryTypes[] = {
    {1,  "Other"       },
    {2,  "Unknown"     },
    {3,  "DRAM"        },
    {4,  "EDRAM"       },
    {5,  "VRAM"        },
    {6,  "SRAM"        },
    {7,  "RAM"         },
    {8,  "ROM"         },
    {9,  "FLASH"       },
    {10, "EEPROM"      },
    {11, "FEPROM"      },
    {12, "EPROM"       },
    {13, "CDRAM"       },
    {14, "3DRAM"       },
    {15, "SDRAM"       },
    {16, "SGRAM"       },
    {17, "RDRAM"       },
    {18, "DDR"         },
    {19, "DDR2"        },
    {20, "DDR2 FB-DIMM"},
    {21, "Reserved"    },
    {22, "Reserved"    },
    {23, "Reserved"    },
    {24, "DDR3"        },
    {25, "FBD2"        },
    {26, "DDR4"        },
    {27, "LPDDR"       },
    {28, "LPDDR2"      },
    {29, "LPDDR3"      },
    {30, "LPDDR4"      },
};
static_assert(IsRising(kMemoryTypes));

constexpr CodeText_t kTypeDetails[] = {
    {0,  "Reserved, set to 0"       },
    {1,  "Other"                    },
    {2,  "Unknown"                  },
    {3,  "Fast-paged"               },
    {4,  "Static column"            },
    {5,  "Pseudo-static"            },
    {6,  "RAMBUS"                   },
    {7,  "Synchronous"              },
    {8,  "CMOS"                     },
    {9,  "EDO"                      },
    {10, "Window DRAM"              },
    {11, "Cache DRAM"               },
    {12, "Non-volatile"             },
    {13, "Registered (Buffered)"    },
    {14, "Unbuffered (Unregistered)"},
    {15, "LRDIMM"                   },
};
static_assert(IsRising(kTypeDetails));

constexpr bool IsControl(char byte) { return byte >= 0x01 && byte <= 0x1F; }

ClText ShowPartNumber(const Field_t& field) {
    if (field.Byte() == 0) return "None";
    return ClSMBIOSType17::GetCleanPartNumber(ClSMBIOSType::GetString(field.Byte(), field.structure.Data()));
}

ClText ShowExtendedSize(const Field_t& field) {
    if (field.structure.Word(kSize) != kSizeIsExtended) return "0";
    std::string size = std::to_string(field.Dword());
    if (size.size() < kExtendedSizeWidth) size.insert(0, kExtendedSizeWidth - size.size(), ' ');
    return size.append(" MB");
}

ClText ShowKnown(const Field_t& field) { return field.Word() == 0 ? "Unknown" : ShowDec16WithUnit(field); }

constexpr std::string_view kEnumWords = "a word of the list, else `Unknown, Value read = 0x` and 2 hexadecimal digits",
                           kKnownWords = "decimal, then the text; `Unknown` for 0";
constexpr Rendering_t FormFactor = Text8<ClSMBIOSType17::GetFormFactorString>(kFormFactors),
                      MemoryType = Text8<ClSMBIOSType17::GetMemoryTypeString>(kMemoryTypes),
                      TypeDetail = BitWords16(kTypeDetails, 16), PartNumber{ShowPartNumber},
                      ExtendedSize{ShowExtendedSize}, KnownSpeed{ShowKnown, {}, " MHz"}, KnownVoltage{ShowKnown};

constexpr ItemRow_t kItems[] = {
    {"Memory Array Handle",             0x04, Hex16                },
    {"Memory Error Information Handle", 0x06, Hex16                },
    {"Total Width",                     0x08, Dec16AndHex(4)       },
    {"Data Width",                      0x0A, Dec16AndHex(4)       },
    {"Size",                            0x0C, Dec16AndHex(4)       },
    {"Form Factor",                     0x0E, FormFactor           },
    {"Device Set",                      0x0F, Hex8Digits(4)        },
    {"Device Locator",                  0x10, String               },
    {"Bank Locator",                    0x11, String               },
    {"Memory Type",                     0x12, MemoryType           },
    {"Type Detail",                     0x13, Hex16                },
    {"Type Detail Description",         0x13, TypeDetail           },
    {"Speed",                           0x15, Dec16WithUnit(" MHz")},
    {"Manufacturer",                    0x17, StringOrNone         },
    {"Serial Number",                   0x18, StringOrNone         },
    {"Assert Tag",                      0x19, StringOrNone         },
    {"Part Number",                     0x1A, PartNumber           },
    {"Attributes",                      0x1B, Dec8                 },
    {"Extended Size",                   0x1C, ExtendedSize         },
    {"Configured Memory Clock Speed",   0x20, KnownSpeed           },
    {"Minimum Voltage",                 0x22, KnownVoltage         },
    {"Maximum Voltage",                 0x24, KnownVoltage         },
    {"Configured Voltage",              0x26, KnownVoltage         },
};

}  // namespace

ClText ClSMBIOSType17::GetFormFactorString(uint8_t formFactor) {
    const std::string_view text = TextOf(kFormFactors, formFactor, {});
    return text.empty() ? ClText(GetUnknownValueString(formFactor)) : ClText(text);
}

ClText ClSMBIOSType17::GetMemoryTypeString(uint8_t memoryType) {
    const std::string_view text = TextOf(kMemoryTypes, memoryType, {});
    return text.empty() ? ClText(GetUnknownValueString(memoryType)) : ClText(text);
}

ClText ClSMBIOSType17::GetTypeDetailString(uint16_t typeDetail) { return BitsOrNone(kTypeDetails, typeDetail, 16); }

std::string ClSMBIOSType17::GetUnknownValueString(uint8_t value) {
    return std::string("Unknown, Value read = 0x") + (value < 0x10 ? "0" : "") + PlainUpperHex(value);
}

ClText ClSMBIOSType17::GetCleanPartNumber(std::string_view partNumber) {
    // The conversion is slow and wouldn't change plain text.
    if (std::ranges::all_of(partNumber, IsPrintableAscii)) return partNumber;
    std::string text(partNumber);
    os_RevalidateUtf8(partNumber, &text);
    std::ranges::replace_if(text, IsControl, '.');
    return text;
}

void ClSMBIOSType17::PrintStructure(const uint8_t* pData) { PrintRows(RowsOf<kItems>(), pData); }

ClSMBIOSType* NewType17(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType17; }

void DescribeType17(ClDescription& description) {
    description.Explain(FormFactor.render, kEnumWords);
    description.Explain(MemoryType.render, kEnumWords);
    description.Explain(ShowPartNumber,
                        "string in valid UTF-8, with `.` for each control character; `None` for number 0");
    description.Explain(ShowExtendedSize,
                        "decimal, right-aligned in 8 characters, then ` MB`, if the size is 7FFFh; else `0`");
    description.Explain(ShowKnown, kKnownWords);
    description.Rows(RowsOf<kItems>());
}
