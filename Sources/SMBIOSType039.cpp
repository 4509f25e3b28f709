// System Power Supply (the SMBIOS standard, type 39).
#include "Sources/Decoders.h"

namespace {

// The characteristics word: bits 15 to 10 the supply's type, 9 to 7 its status, 6 to 3 its range switching, then
// three single bits.
constexpr CodeText_t kSupplyTypes[] = {
    {0, "Error: Invalid Power Suppy Type"},
    {1, "Other"                          },
    {2, "Unknown"                        },
    {3, "Linear"                         },
    {4, "Switching"                      },
    {5, "Battery"                        },
    {6, "UPS"                            },
    {7, "Converter"                      },
    {8, "Regulator"                      },
};
static_assert(IsRising(kSupplyTypes));

constexpr CodeText_t kStatuses[] = {
    {1, "Other"                                                         },
    {2, "Unknown"                                                       },
    {3, "OK"                                                            },
    {4, "Non-critical"                                                  },
    {5, "Critical; power supply has failed and has been taken off-line."},
};
static_assert(IsRising(kStatuses));

constexpr CodeText_t kRangeSwitchings[] = {
    {0, "Error: Invalid Switch"},
    {1, "Other"                },
    {2, "Unknown"              },
    {3, "Manual"               },
    {4, "Auto-switch"          },
    {5, "Wide range"           },
    {6, "Not applicable"       },
};
static_assert(IsRising(kRangeSwitchings));

ClText ShowUnitGroup(const Field_t& field) {
    const uint8_t group = field.Byte();
    return ClSMBIOSType::GetHexString(group, 2) +
           (group == 0 ? " Power supply is not a member of a redundant power unit"
                       : " Redundancy. At least one other power supply will be enumerated with the same value");
}

ClText ShowHandle(const Field_t& field) {
    const uint16_t handle = field.Word();
    return handle == 0xFFFF ? ClText(field.Text()) : ClSMBIOSType::GetHexString(handle, 4);
}

constexpr Rendering_t UnitGroup{ShowUnitGroup}, MilliWatts = Dec16WithUnit(" milliWatts");
constexpr Rendering_t SupplyType = EnumOfBits16(10, 6, kSupplyTypes, "Reserved"),
                      Status = EnumOfBits16(7, 3, kStatuses, "Error: Invalid Status"),
                      RangeSwitching = EnumOfBits16(3, 4, kRangeSwitchings, "Reserved");
constexpr Rendering_t VoltageProbe{ShowHandle, {}, "No probe(Type 26) is provided"};
constexpr Rendering_t CoolingDevice{ShowHandle, {}, "No cooling device(Type 27) is provided"};
constexpr Rendering_t CurrentProbe{ShowHandle, {}, "No current probe(Type 29) is provided"};

constexpr ItemRow_t kItems[] = {
    {"Power Unit Group",                        0x04, UnitGroup     },
    {"Location",                                0x05, String        },
    {"Device Name",                             0x06, String        },
    {"Manufacturer",                            0x07, String        },
    {"Serial Number",                           0x08, String        },
    {"Asset Tag Number",                        0x09, String        },
    {"Model Part Number",                       0x0A, String        },
    {"Revision Level",                          0x0B, String        },
    {"Max Power Capacity",                      0x0C, MilliWatts    },
    {"DMTF Power Supply Type",                  0x0E, SupplyType    },
    {"DMTF Power Supply Status",                0x0E, Status        },
    {"DMTF Input Voltage Range Switching",      0x0E, RangeSwitching},
    {"Is power supply unplugged from the wall", 0x0E, YesNo16(2)    },
    {"Is power supply present",                 0x0E, YesNo16(1)    },
    {"Is power supply hot-replaceable",         0x0E, YesNo16(0)    },
    {"Input Voltage Probe Handle",              0x10, VoltageProbe  },
    {"Cooling Device Handle",                   0x12, CoolingDevice },
    {"Input Current Probe Handle",              0x14, CurrentProbe  },
};

}  // namespace

DECODER_OF_ROWS(39, kItems)

void DescribeType39(ClDescription& description) {
    constexpr std::string_view kHandleWords = "hexadecimal, 4 digits; for FFFFh the text";
    description.Explain(
        ShowUnitGroup,
        "hexadecimal, 2 digits, then ` Power supply is not a member of a redundant power unit` for 0, else "
        "` Redundancy. At least one other power supply will be enumerated with the same value`");
    description.Explain(ShowHandle, kHandleWords);
    description.Rows(RowsOf<kItems>());
}
