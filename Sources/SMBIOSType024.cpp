// Hardware Security (the SMBIOS standard, type 24).
#include "Sources/Decoders.h"

namespace {

constexpr ItemRow_t kItems[] = {
    {"Hardware Security Settings", 0x04, Hex8},
};

}  // namespace

ROWS_DECODER(24, kItems)
