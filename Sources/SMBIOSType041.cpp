// Onboard Devices Extended Information (the SMBIOS standard, type 41).
#include "Sources/Decoders.h"
#include "Sources/SharedWords.h"

namespace {

constexpr CodeText_t kDeviceStatuses[] = {
    {0, "Device Disabled"},
    {1, "Device Enabled" },
};
static_assert(IsRising(kDeviceStatuses));

constexpr Rendering_t DeviceStatus = Bit8(kDeviceStatuses, 7);

constexpr ItemRow_t kItems[] = {
    {"Reference Designation", 0x04, String           },
    {"Device Status",         0x05, DeviceStatus     },
    {"Device Type",           0x05, OnboardDeviceType},
    {"Device Type Instance",  0x06, Hex8             },
    {"Segment Group Number",  0x07, Dec16            },
    {"Bus Number",            0x09, Dec8             },
    {"Device Number",         0x0A, DeviceNumber     },
    {"Function Number",       0x0A, FunctionNumber   },
};

}  // namespace

ROWS_DECODER(41, kItems)
