// Sarvine Technology: a vendor-defined structure (type 222) that reports one boot checkpoint.
#include "Sources/Decoders.h"

namespace {

// 0X and upper-case hexadecimal digits without an "h".
ClText ShowPort(const Field_t& field) { return "0X" + PlainUpperHex(field.Word()); }

constexpr Rendering_t Port{ShowPort};

constexpr ItemRow_t kItems[] = {
    {"Revision",   0x04, Dec8},
    {"IO Port",    0x05, Port},
    {"Count",      0x07, Dec8},
    {"Checkpoint", 0x08, Dec8},
};

}  // namespace

void ClSMBIOSType222::PrintStructure(const uint8_t* pData) {
    if (!PrintTitle("Sarvine Technology {Type 222}", pData, "\nData is NULL")) return;
    GetCheckPointInfo(pData);
}

void ClSMBIOSType222::GetCheckPointInfo(const uint8_t* pData) {
    const ClStructure structure = ClStructure::FormattedArea(pData);
    PrintItems(kItems, structure);
    PrintStrings("Checkpoint Description", 1, structure);
}
