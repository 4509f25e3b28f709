// System Boot Information (the SMBIOS standard, type 32).
#include "Sources/Decoders.h"

namespace {

constexpr CodeText_t kBootStatuses[] = {
    {0, "No errors detected"                                         },
    {1, "No bootable media"                                          },
    {2, "normal operating system failed to load"                     },
    {3, "Firmware-detected hardware failure"                         },
    {4, "Operating system-detected hardware failure"                 },
    {5, "User-requested boot, usually through a keystroke"           },
    {6, "System security violation"                                  },
    {7, "Previously-requested image"                                 },
    {8, "System watchdog timer expired, causing the system to reboot"},
};
static_assert(IsRising(kBootStatuses));

constexpr Rendering_t BootStatus = Enum8(kBootStatuses, "Reserved or Vendor/OEM/Product-specific implementations");

// Two of the six reserved bytes show, and the first byte of the boot status.
constexpr Rendering_t ReservedWord = Hex16Digits(8), StatusCode = Hex8Digits(4);

constexpr ItemRow_t kItems[] = {
    {"Reserved",    0x04, ReservedWord},
    {"Boot Status", 0x0A, StatusCode  },
    {"Description", 0x0A, BootStatus  },
};

}  // namespace

ROWS_DECODER(32, kItems)
