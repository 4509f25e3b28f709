// Out-of-Band Remote Access (the SMBIOS standard, type 30).
#include "Sources/Decoders.h"

namespace {

constexpr ItemRow_t kItems[] = {
    {"Manufacturer Name", 0x04, String},
    {"Connections",       0x05, Hex8  },
};

}  // namespace

ROWS_DECODER(30, kItems)
