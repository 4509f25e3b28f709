// Out-of-Band Remote Access (the SMBIOS standard, type 30).
#include "Sources/Decoders.h"

namespace {

constexpr ItemRow_t kItems[] = {
    {"Manufacturer Name", 0x04, String},
    {"Connections",       0x05, Hex8  },
};

}  // namespace

void ClSMBIOSType30::PrintStructure(const uint8_t* pData) {
    if (!PrintHead("Out-of-Band Remote Access {Type 30}", pData)) return;
    PrintItems(kItems, ClStructure::FormattedArea(pData));
}
