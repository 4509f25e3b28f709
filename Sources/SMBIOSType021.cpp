// Built-in Pointing Device (the SMBIOS standard, type 21).
#include "Sources/Decoders.h"

namespace {

constexpr CodeText_t kTypes[] = {
    {1, "Other"         },
    {2, "Unknown"       },
    {3, "Mouse"         },
    {4, "Track Ball"    },
    {5, "Track Point"   },
    {6, "Glide Point"   },
    {7, "Touch Pad"     },
    {8, "Touch Screen"  },
    {9, "Optical Sensor"},
};
static_assert(IsRising(kTypes));

constexpr CodeText_t kInterfaces[] = {
    {1,   "Other"                  },
    {2,   "Unknown"                },
    {3,   "Serial"                 },
    {4,   "PS/2"                   },
    {5,   "Infrared"               },
    {6,   "HP-HIL"                 },
    {7,   "Bus Mouse"              },
    {8,   "ADB (Apple Desktop Bus)"},
    {160, "Bus mouse DB-9"         },
    {161, "Bus mouse micro-DIN"    },
    {162, "USB"                    },
};
static_assert(IsRising(kInterfaces));

constexpr Rendering_t Type = Enum8(kTypes, "Error: Invalid Type");
constexpr Rendering_t Interface = Enum8(kInterfaces, "Error: Invalid Type");

constexpr ItemRow_t kItems[] = {
    {"Pointing Device Type",      0x04, Type     },
    {"Pointing Device Interface", 0x05, Interface},
    {"Number of Buttons",         0x06, Hex8     },
};

}  // namespace

ROWS_DECODER(21, kItems)
