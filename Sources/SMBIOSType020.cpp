// Memory Device Mapped Address (the SMBIOS standard, type 20). Addresses are in kilobytes, as they are in the
// structure. The extended addresses aren't shown.
#include "Sources/Decoders.h"

namespace {

constexpr ItemRow_t kItems[] = {
    {"Starting Address",                   0x04, Hex32},
    {"Ending Address",                     0x08, Hex32},
    {"Memory Device Handle",               0x0C, Hex16},
    {"Memory Array Mapped Address Handle", 0x0E, Hex16},
    {"Partition Row Position",             0x10, Hex8 },
    {"Interleave Position",                0x11, Hex8 },
    {"Interleaved Data Depth",             0x12, Hex8 },
};

}  // namespace

ROWS_DECODER(20, kItems)
