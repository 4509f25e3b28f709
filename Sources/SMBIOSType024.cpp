// Hardware Security (the SMBIOS standard, type 24).
#include "Sources/Decoders.h"

namespace {

constexpr ItemRow_t kItems[] = {
    {"Hardware Security Settings", 0x04, Hex8},
};

}  // namespace

void ClSMBIOSType24::PrintStructure(const uint8_t* pData) {
    if (!PrintHead("Hardware Security {Type 24}", pData)) return;
    PrintItems(kItems, ClStructure::WholeRecord(pData));
}
