// The words that several decoders share: those of memory errors and of onboard devices.
#pragma once

#include "Sources/Rows.h"

inline constexpr CodeText_t kErrorGranularities[] = {
    {1, "Other"                 },
    {2, "Unknown"               },
    {3, "Device level"          },
    {4, "Memory partition level"},
};
static_assert(IsRising(kErrorGranularities));

inline constexpr CodeText_t kErrorOperations[] = {
    {1, "Other"        },
    {2, "Unknown"      },
    {3, "Read"         },
    {4, "Write"        },
    {5, "Partial write"},
};
static_assert(IsRising(kErrorOperations));

inline constexpr CodeText_t kErrorTypes[] = {
    {1,  "Other"                     },
    {2,  "Unknown"                   },
    {3,  "OK"                        },
    {4,  "Bad read"                  },
    {5,  "Parity error"              },
    {6,  "Single-bit error"          },
    {7,  "Double-bit error"          },
    {8,  "Multi-bit error"           },
    {9,  "Nibble error"              },
    {10, "Checksum error"            },
    {11, "CRC error"                 },
    {12, "Corrected single-bit error"},
    {13, "Corrected error"           },
    {14, "Uncorrectable error"       },
};
static_assert(IsRising(kErrorTypes));

inline constexpr CodeText_t kOnboardDeviceTypes[] = {
    {1,  "Other"          },
    {2,  "Unknown"        },
    {3,  "Video"          },
    {4,  "SCSI Controller"},
    {5,  "Ethernet"       },
    {6,  "Token Ring"     },
    {7,  "Sound"          },
    {8,  "PATA Controller"},
    {9,  "SATA Controller"},
    {10, "SAS Controller" },
};
static_assert(IsRising(kOnboardDeviceTypes));

inline constexpr Rendering_t ErrorType = Enum8(kErrorTypes, "Error: Invalid Type"),
                             ErrorGranularity = Enum8(kErrorGranularities, "Error: Invalid Granularity"),
                             ErrorOperation = Enum8(kErrorOperations, "Error: Invalid Operation");
// Bit 7 of the byte has a meaning of its own.
inline constexpr Rendering_t OnboardDeviceType = EnumOfBits8(0, 7, kOnboardDeviceTypes, "Error: Invalid Type");
