// System Power Controls (the SMBIOS standard, type 25). The bytes are binary-coded decimal, so their hexadecimal digits
// are what they mean.
#include "Sources/Decoders.h"

namespace {

constexpr ItemRow_t kItems[] = {
    {"Next Scheduled Power-on Month",  0x04, Hex8},
    {"Next Scheduled Power-on Day",    0x05, Hex8},
    {"Next Scheduled Power-on Hour",   0x06, Hex8},
    {"Next Scheduled Power-on Minute", 0x07, Hex8},
    {"Next Scheduled Power-on Second", 0x08, Hex8},
};

}  // namespace

ROWS_DECODER(25, kItems)
