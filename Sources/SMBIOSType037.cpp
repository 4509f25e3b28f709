// Memory Channel (the SMBIOS standard, type 37), without its list of devices.
#include "Sources/Decoders.h"

namespace {

constexpr CodeText_t kChannelTypes[] = {
    {1, "Other"   },
    {2, "Unknown" },
    {3, "RamBus"  },
    {4, "SyncLink"},
};
static_assert(IsRising(kChannelTypes));

constexpr Rendering_t ChannelType = Enum8(kChannelTypes, "Error: Invalid Channel Type");

constexpr ItemRow_t kItems[] = {
    {"Channel Type",         0x04, ChannelType},
    {"Maximum Channel Load", 0x05, Dec8       },
    {"Memory Device Count",  0x06, Dec8       },
};

}  // namespace

ROWS_DECODER(37, kItems)
