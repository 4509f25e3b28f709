// Management Device (the SMBIOS standard, type 34).
#include "Sources/Decoders.h"

namespace {

constexpr CodeText_t kDeviceTypes[] = {
    {1,  "Other"                      },
    {2,  "Unknown"                    },
    {3,  "National Semiconductor LM75"},
    {4,  "National Semiconductor LM78"},
    {5,  "National Semiconductor LM79"},
    {6,  "National Semiconductor LM80"},
    {7,  "National Semiconductor LM81"},
    {8,  "Analog Devices ADM9240"     },
    {9,  "Dallas Semiconductor DS1780"},
    {10, "Maxim 1617"                 },
    {11, "Genesys GL518SM"            },
    {12, "Winbond W83781D"            },
    {13, "Holtek HT82H791"            },
};
static_assert(IsRising(kDeviceTypes));

constexpr CodeText_t kAddressTypes[] = {
    {1, "Other"   },
    {2, "Unknown" },
    {3, "I/O Port"},
    {4, "Memory"  },
    {5, "SM Bus"  },
};
static_assert(IsRising(kAddressTypes));

constexpr Rendering_t DeviceType = Enum8(kDeviceTypes, "Error: Invalid Type");
constexpr Rendering_t AddressType = Enum8(kAddressTypes, "Error: Invalid Address Type");

// "Error Type" is the key of the device type.
constexpr ItemRow_t kItems[] = {
    {"Description",  0x04, String     },
    {"Error Type",   0x05, DeviceType },
    {"Address",      0x06, Hex32      },
    {"Address Type", 0x0A, AddressType},
};

}  // namespace

ROWS_DECODER(34, kItems)
