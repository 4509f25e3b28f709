// Processor Information (the SMBIOS standard, type 4).
#include <bit>

#include "Sources/ProcessorFamilies.h"
#include "Sources/SMBIOSType004.h"

namespace {

constexpr CodeText_t kProcessorTypes[] = {
    {1, "Other"            },
    {2, "Unknown"          },
    {3, "Central Processor"},
    {4, "Math Processor"   },
    {5, "DSP Processor"    },
    {6, "Video Processor"  },
};
static_assert(IsRising(kProcessorTypes));

// On a processor of this signature two families have other names.
constexpr uint32_t kRenamingSignature = 0x000406E0;
constexpr CodeText_t kRenamedFamilies[] = {
    {0x0B, "Lumetra(R) Ostrel(R) CPU"},
    {0x0F, "Lumetra(R) Vantor(R) CPU"},
};
static_assert(IsRising(kRenamedFamilies));

// Codes are the whole byte: bit 6 is set if the socket is populated, bits 0 to 2 are the state of the processor.
constexpr CodeText_t kStatuses[] = {
    {0x00, "CPU Socket Unpopulated, Status Unknown"      },
    {0x01, "CPU Socket Unpopulated, CPU Enabled"         },
    {0x02, "CPU Socket Unpopulated, CPU Disabled by User"},
    {0x03, "CPU Socket Unpopulated, CPU Disabled by BIOS"},
    {0x04, "CPU Socket Unpopulated, CPU Idle"            },
    {0x07, "CPU Socket Unpopulated, Status Other"        },
    {0x40, "CPU Socket Populated, Status Unknown"        },
    {0x41, "CPU Socket Populated, CPU Enabled"           },
    {0x42, "CPU Socket Populated, CPU Disabled by User"  },
    {0x43, "CPU Socket Populated, CPU Disabled by BIOS"  },
    {0x44, "CPU Socket Populated, CPU Idle"              },
    {0x47, "CPU Socket Populated, Status Other"          },
};
static_assert(IsRising(kStatuses));

constexpr CodeText_t kProcessorUpgrades[] = {
    {1,  "Other"                 },
    {2,  "Unknown"               },
    {3,  "Daughter Board"        },
    {4,  "ZIF Socket"            },
    {5,  "Replaceable Piggy Back"},
    {6,  "None"                  },
    {7,  "LIF Socket"            },
    {8,  "Slot 1"                },
    {9,  "Slot 2"                },
    {10, "370-pin socket"        },
    {11, "Slot A"                },
    {12, "Slot M"                },
    {13, "Socket 423"            },
    {14, "Socket A (Socket 462)" },
    {15, "Socket 478"            },
    {16, "Socket 754"            },
    {17, "Socket 940"            },
    {18, "Socket 939"            },
    {19, "Socket mPGA604"        },
    {20, "Socket LGA771"         },
    {21, "Socket LGA775"         },
    {22, "Socket S1"             },
    {23, "Socket AM2"            },
    {24, "Socket F (1207)"       },
    {25, "Socket LGA1366"        },
    {26, "Socket G34"            },
    {27, "Socket AM3"            },
    {28, "Socket C32"            },
    {29, "Socket LGA1156"        },
    {30, "Socket LGA1567"        },
    {31, "Socket PGA988A"        },
    {32, "Socket BGA1288"        },
    {33, "Socket rPGA988B"       },
    {34, "Socket BGA1023"        },
    {35, "Socket BGA1224"        },
    {36, "Socket LGA1155"        },
    {37, "Socket LGA1356"        },
    {38, "Socket LGA2011"        },
    {39, "Socket FS1"            },
    {40, "Socket FS2"            },
    {41, "Socket FM1"            },
    {42, "Socket FM2"            },
    {43, "Socket LGA2011-3"      },
    {44, "Socket LGA1356-3"      },
    {45, "SocketLGA1150"         },
    {46, "SocketBGA1168"         },
    {47, "Socket BGA1234"        },
    {48, "Socket BGA1364"        },
    {49, "Socket AM4"            },
    {50, "Socket LGA1151"        },
    {51, "Socket BGA1356"        },
    {52, "Socket BGA1440"        },
    {53, "Socket BGA1515"        },
    {54, "Socket LGA3647-1"      },
    {55, "Socket SP3"            },
    {56, "Socket SP3r2"          },
    {57, "Socket LGA2066"        },
    {58, "Socket BGA1392"        },
    {59, "Socket BGA1510"        },
    {60, "Socket BGA1528"        },
};
static_assert(IsRising(kProcessorUpgrades));

// Each text ends with its own separator.
constexpr CodeText_t kCharacteristics[] = {
    {2, "64 -bit capable |"          },
    {3, "Multi-Core |"               },
    {4, "Hardware Thread |"          },
    {5, "Execute Protection |"       },
    {6, "Enhanced Virtualization |"  },
    {7, "Power/Performance Control |"},
};
static_assert(IsRising(kCharacteristics));

ClText ShowFamily8(const Field_t& field) {
    return static_cast<const ClSMBIOSType4&>(field.decoder).GetProcessorFamilyString(field.Byte());
}

ClText ShowFamily16(const Field_t& field) {
    return static_cast<const ClSMBIOSType4&>(field.decoder).GetProcessorFamilyString(field.Word());
}

ClText ShowProcessorId(const Field_t& field) {
    const size_t offset = field.offset;
    return ClSMBIOSType::GetHexString(field.structure.Dword(offset + 4), 8) + ' ' +
           ClSMBIOSType::GetHexString(field.structure.Dword(offset), 1);
}

ClText ShowVoltage(const Field_t& field) {
    constexpr uint8_t kTenths = 0x80;
    constexpr uint32_t kVoltages[] = {50, 33, 29};  // tenths, by bit
    const uint8_t voltage = field.Byte();
    uint32_t tenths = 0;
    if ((voltage & kTenths) != 0)
        tenths = voltage & 0x7F;
    else if ((voltage & 7) != 0)
        tenths = kVoltages[std::countr_zero(voltage)];
    if (tenths == 0) return "None";
    return std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10) + 'V';
}

ClText ShowCacheHandle(const Field_t& field) {
    const uint16_t handle = field.Word();
    std::string text = std::to_string(handle);
    if (text.size() < 2) text.insert(0, 1, '0');
    return text.append(handle == 0xFFFF ? field.Text() : " ");
}

ClText ShowCharacteristics(const Field_t& field) {
    const uint16_t characteristics = field.Word();
    return characteristics == 0 ? "None" : ClSMBIOSType4::GetProcessorCharacteristicsString(characteristics);
}

constexpr Rendering_t Family8{ShowFamily8, kProcessorFamilies}, Family16{ShowFamily16, kProcessorFamilies},
    ProcessorId{ShowProcessorId}, Voltage{ShowVoltage}, Characteristics{ShowCharacteristics},
    MHz = Dec16WithUnit(" MHz"), ProcessorType = Enum8(kProcessorTypes, "Unknown"),
    Status = Enum8(kStatuses, "Unknown"), Upgrade = Enum8(kProcessorUpgrades, "Unknown"),
    L1Handle{ShowCacheHandle, {}, " (No L1 handle or No cache information structure)"},
    L2Handle{ShowCacheHandle, {}, " (No L2 handle or No cache information structure)"},
    L3Handle{ShowCacheHandle, {}, " (No L3 handle or No cache information structure)"};

constexpr ItemRow_t kItems[] = {
    {"Socket Designation",        0x04, StringOrNone   },
    {"Processor Type",            0x05, ProcessorType  },
    {"Processor Family",          0x06, Family8        },
    {"Processor Manufacturer",    0x07, StringOrNone   },
    {"Processor ID",              0x08, ProcessorId    },
    {"Processor Version",         0x10, StringOrNone   },
    {"Voltage",                   0x11, Voltage        },
    {"External Clock",            0x12, MHz            },
    {"Max Speed",                 0x14, MHz            },
    {"Current Speed",             0x16, MHz            },
    {"Status",                    0x18, Status         },
    {"Processor Upgrade",         0x19, Upgrade        },
    {"L1 Cache Handle",           0x1A, L1Handle       },
    {"L2 Cache Handle",           0x1C, L2Handle       },
    {"L3 Cache Handle",           0x1E, L3Handle       },
    {"Serial Number",             0x20, StringOrNone   },
    {"Assert Tag",                0x21, StringOrNone   },
    {"Part Number",               0x22, StringOrNone   },
    {"Core Count",                0x23, Dec8           },
    {"Core Enabled",              0x24, Dec8           },
    {"Thread Count",              0x25, Dec8           },
    {"Processor Characteristics", 0x26, Characteristics},
    {"Processor Family 2",        0x28, Family16       },
    {"Core Count 2",              0x2A, Dec16          },
    {"Core Enabled 2",            0x2C, Dec16          },
    {"Thread Count 2",            0x2E, Dec16          },
};

}  // namespace

std::string_view ClSMBIOSType4::GetProcessorFamilyString(uint16_t family) const {
    const std::string_view text = TextOf(kProcessorFamilies, family, "Unknown");
    if (m_processorSignature != kRenamingSignature) return text;
    return TextOf(kRenamedFamilies, family, text);
}

std::string_view ClSMBIOSType4::GetProcessorStatusString(uint16_t status) { return WordOf(Status, status); }

std::string_view ClSMBIOSType4::GetProcessorUpgradeString(uint16_t upgrade) { return WordOf(Upgrade, upgrade); }

std::string ClSMBIOSType4::GetProcessorCharacteristicsString(uint16_t characteristics) {
    std::string text;
    for (const CodeText_t& characteristic : kCharacteristics)
        if ((characteristics >> characteristic.code & 1) != 0) text += characteristic.Text();
    return text;
}

void ClSMBIOSType4::PrintStructure(const uint8_t* pData) { PrintRows(RowsOf<kItems>(), pData); }

ClSMBIOSType* NewType4(const DecoderInput_t& input) {
    return new (std::nothrow) ClSMBIOSType4(input.processorSignature);
}

void DescribeType4(ClDescription& description) {
    constexpr std::string_view kHandleWords = "decimal, 2 digits or more, then a blank, or for 65535 the text";
    constexpr std::string_view kFamilyWords =
        "a word of the list, else `Unknown`; with the processor signature 000406E0h 0Bh reads `Lumetra(R) Ostrel(R) "
        "CPU` "
        "and 0Fh `Lumetra(R) Vantor(R) CPU`";
    description.Explain(ShowFamily8, kFamilyWords);
    description.Explain(ShowFamily16, kFamilyWords);
    description.Explain(
        ShowProcessorId,
        "hexadecimal: the upper half with 8 digits, a blank, then the lower half with as many as it needs");
    description.Explain(
        ShowVoltage,
        "volts with one decimal, then `V`: with bit 7 set, bits 0 to 6 are tenths; else the lowest set bit "
        "of 0, 1 and 2 counts: 5.0, 3.3, 2.9; else `None`");
    description.Explain(ShowCharacteristics, "the words of the set bits without a separator; `None` for 0");
    description.Explain(ShowCacheHandle, kHandleWords);
    description.Rows(RowsOf<kItems>());
    description.Words("Processor Characteristics", kCharacteristics, true);
}
