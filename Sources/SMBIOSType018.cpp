// 32-bit Memory Error Information (the SMBIOS standard, type 18).
#include "Sources/Decoders.h"
#include "Sources/SharedWords.h"

namespace {

constexpr ItemRow_t kItems[] = {
    {"Error Type",                 0x04, ErrorType       },
    {"Error Granularity",          0x05, ErrorGranularity},
    {"Error Operation",            0x06, ErrorOperation  },
    {"Vendor Syndrome",            0x07, Hex32           },
    {"Memory Array Error Address", 0x0B, Hex32           },
    {"Device Error Address",       0x0F, Hex32           },
    {"Error Resolution",           0x13, Hex32           },
};

}  // namespace

ROWS_DECODER(18, kItems)
