// Baseboard Information (the SMBIOS standard, type 2), from the parsed record.
#include "Sources/Decoders.h"

namespace {

constexpr CodeText_t kFeatures[] = {
    {0, "Hosting Board"                             },
    {1, "Requires Daughter Board or Auxiliary card "},
    {2, "removable"                                 },
    {3, "replaceable"                               },
    {4, "hot swappable"                             },
};
static_assert(IsRising(kFeatures));

constexpr CodeText_t kBoardTypes[] = {
    {1,  "Unknown"                                          },
    {2,  "Other"                                            },
    {3,  "Server Blade"                                     },
    {4,  "Convectivity Switch"                              },
    {5,  "System Management Module"                         },
    {6,  "Processor Module"                                 },
    {7,  "I/O Module"                                       },
    {8,  "Memory Module"                                    },
    {9,  "Daughter Board"                                   },
    {10, "Mother Board (includes processor, memory and I/O)"},
    {11, "Processor/Memory Module"                          },
    {12, "Processor/IO Module"                              },
    {13, "InterConnect Board"                               },
};
static_assert(IsRising(kBoardTypes));

constexpr Rendering_t Features = BitWords8(kFeatures), BoardType = Enum8(kBoardTypes, "Error: Invalid Type");

constexpr ItemRow_t kItems[] = {
    {"Manufacturer",         0x04, ParsedText    },
    {"Board Name/ ID",       0x05, ParsedText    },
    {"Fab ID",               0x06, ParsedText    },
    {"Serial Number",        0x07, ParsedText    },
    {"Assert Tag",           0x08, ParsedText    },
    {"Feature Flag",         0x09, Features      },
    {"Board Type",           0x0D, BoardType     },
    {"Location In Chassis ", 0x0A, ParsedText    },
    {"Chassis Handle",       0x0B, Hex16Digits(8)},
};

}  // namespace

ROWS_DECODER(2, kItems)
