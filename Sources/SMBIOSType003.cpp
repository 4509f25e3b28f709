// System Enclosure or Chassis (the SMBIOS standard, type 3).
#include "Sources/Decoders.h"

namespace {

// The two parts of the chassis type byte.
constexpr uint8_t kTypeMask = 0x7F, kLockPresent = 0x80;

constexpr CodeText_t kChassisTypes[] = {
    {1,  "Other"                },
    {2,  "Unknown"              },
    {3,  "Desktop"              },
    {4,  "Low Profile Desktop"  },
    {5,  "Pizza Box"            },
    {6,  "Mini Tower"           },
    {7,  "Tower"                },
    {8,  "Portable"             },
    {9,  "Laptop"               },
    {10, "Notebook"             },
    {11, "HandHeld"             },
    {12, "Docking Station"      },
    {13, "All In One"           },
    {14, "SubNotebook"          },
    {15, "Space Saving"         },
    {16, "Lunch Box"            },
    {17, "Main Server Chassis"  },
    {18, "Expansion Chassis"    },
    {19, "Sub Chassis"          },
    {20, "Bus Expansion Chassis"},
    {21, "Peripheral Chassis"   },
    {22, "RAID Chassis"         },
    {23, "Rack Mount Chassis"   },
    {24, "Sealed Case PC"       },
    {25, "Multi-system chassis" },
    {26, "Compact PCI"          },
    {27, "Advanced TCA"         },
    {28, "Blade"                },
    {29, "Blade Enclosure"      },
    {30, "Tablet"               },
    {31, "Convertible"          },
    {32, "Detachable"           },
    {33, "IoT Gateway"          },
    {34, "Embedded PC"          },
    {35, "Mini PC"              },
    {36, "Stick PC"             },
};
static_assert(IsRising(kChassisTypes));

constexpr CodeText_t kStates[] = {
    {1, "Other"          },
    {2, "Unknown"        },
    {3, "Safe"           },
    {4, "Warning"        },
    {5, "Critical"       },
    {6, "Non-recoverable"},
};
static_assert(IsRising(kStates));

constexpr CodeText_t kSecurityStatuses[] = {
    {1, "Other"                        },
    {2, "Unknown"                      },
    {3, "None"                         },
    {4, "External Interface Locked Out"},
    {5, "External Interface Enabled"   },
};
static_assert(IsRising(kSecurityStatuses));

ClText ShowChassisType(const Field_t& field) {
    const uint8_t type = field.Byte();
    if (type == 0) return "None";
    return TextOf(kChassisTypes, type & kTypeMask, "Error: Invalid Type");
}

ClText ShowLock(const Field_t& field) {
    const uint8_t type = field.Byte();
    if (type == 0) return "None";
    return (type & kLockPresent) != 0 ? "Present" : "Not Present or Unknown";
}

// The field is in rack units of 1.75 inches.
ClText ShowHeight(const Field_t& field) {
    const uint8_t units = field.Byte();
    return units == 0 ? "Unspecified" : std::to_string(static_cast<int>(units * 4.445)) + " cm";
}

ClText ShowCount(const Field_t& field) { return field.Byte() == 0 ? "Unspecified" : std::to_string(field.Byte()); }

constexpr Rendering_t ChassisType{ShowChassisType, kChassisTypes}, Lock{ShowLock}, Height{ShowHeight}, Count{ShowCount},
    State = Enum8(kStates, "Error: Invalid State"), Security = Enum8(kSecurityStatuses, "Error: Invalid Status");

constexpr ItemRow_t kItems[] = {
    {"Manufacturer",          0x04, StringOrNone},
    {"Chassis Type",          0x05, ChassisType },
    {"Chassis Lock",          0x05, Lock        },
    {"Version",               0x06, StringOrNone},
    {"Serial Number",         0x07, StringOrNone},
    {"Asset Tag Number",      0x08, StringOrNone},
    {"Bootup State",          0x09, State       },
    {"Power Supply State",    0x0A, State       },
    {"Thermal State",         0x0B, State       },
    {"Security Status",       0x0C, Security    },
    {"OEM Defined",           0x0D, Hex32       },
    {"Height",                0x11, Height      },
    {"Number Of Power Cords", 0x12, Count       },
};

}  // namespace

DECODER_OF_ROWS(3, kItems)

void DescribeType3(ClDescription& description) {
    description.Explain(ShowChassisType,
                        "bits 0 to 6: a word of the list, else `Error: Invalid Type`; `None` if the whole byte is 0");
    description.Explain(ShowLock,
                        "bit 7: set `Present`, clear `Not Present or Unknown`; `None` if the whole byte is 0");
    description.Explain(ShowHeight, "whole centimetres in decimal, then ` cm`; `Unspecified` for 0");
    description.Explain(ShowCount, "decimal; `Unspecified` for 0");
    description.Rows(RowsOf<kItems>());
}
