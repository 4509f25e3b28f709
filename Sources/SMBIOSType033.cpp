// 64-Bit Memory Error Information (the SMBIOS standard, type 33).
#include "Sources/Decoders.h"
#include "Sources/SharedWords.h"

namespace {

constexpr ItemRow_t kItems[] = {
    {"Error Type",                 0x04, ErrorType       },
    {"Error Granularity",          0x05, ErrorGranularity},
    {"Error Operation",            0x06, ErrorOperation  },
    {"Vendor Syndrome",            0x07, Hex32           },
    {"Memory Array Error Address", 0x0B, Hex64           },
    {"Device Error Address",       0x13, Hex64           },
    {"Error Resolution",           0x1B, Hex32           },
};

}  // namespace

ROWS_DECODER(33, kItems)
