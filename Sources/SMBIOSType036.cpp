// Management Device Threshold Data (the SMBIOS standard, type 36). 8000h, which the standard uses for a threshold
// that isn't available, is shown like any other number.
#include "Sources/Decoders.h"

namespace {

constexpr Rendering_t Threshold = Hex16Digits(0);

constexpr ItemRow_t kItems[] = {
    {"Lower Threshold - Non-critical",    0x04, Threshold},
    {"Upper Threshold - Non-critical",    0x06, Threshold},
    {"Lower Threshold - Critical",        0x08, Threshold},
    {"Upper Threshold - Critical",        0x0A, Threshold},
    {"Lower Threshold - Non-recoverable", 0x0C, Threshold},
    {"Upper Threshold - Non-recoverable", 0x0E, Threshold},
};

}  // namespace

ROWS_DECODER(36, kItems)
