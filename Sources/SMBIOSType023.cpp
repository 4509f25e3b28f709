// System Reset (the SMBIOS standard, type 23).
#include "Sources/Decoders.h"

namespace {

constexpr ItemRow_t kItems[] = {
    {"Capabilities",   0x04, Hex8 },
    {"Reset Count",    0x05, Hex16},
    {"Reset Limit",    0x07, Hex16},
    {"Timer Interval", 0x09, Hex16},
    {"Timeout",        0x0B, Hex16},
};

}  // namespace

ROWS_DECODER(23, kItems)
