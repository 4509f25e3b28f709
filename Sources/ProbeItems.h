// The items that the three probe structures share: voltage, temperature and electrical current (the SMBIOS standard,
// types 26, 28 and 29). The nominal value after them isn't shown.
#pragma once

#include "Sources/SMBIOSType.h"

inline constexpr ItemRow_t kProbeItems[] = {
    {"Description",         0x04, String},
    {"Location and Status", 0x05, Hex8  },
    {"Maximum Value",       0x06, Hex16 },
    {"Minimum Value",       0x08, Hex16 },
    {"Resolution",          0x0A, Hex16 },
    {"Tolerance",           0x0C, Hex16 },
    {"Accuracy",            0x0E, Hex16 },
    {"OEM Defined",         0x10, Hex32 },
};
