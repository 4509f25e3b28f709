// Sarvine Technology: a vendor-defined structure (type 222) that reports one boot checkpoint.
#include "Sources/Decoders.h"

namespace {

// 0X and upper-case hexadecimal digits.
ClText ShowPort(const Field_t& field) {
    std::string text = "0X" + HexText(field.Word(), 0);
    text.pop_back();  // the "h"
    return text;
}

// Always the first string: no field holds its number.
ClText ShowFirstString(const Field_t& field) { return StringOf(field.structure.Data(), 1); }

constexpr Rendering_t Port{ShowPort}, FirstString{ShowFirstString};

constexpr ItemRow_t kItems[] = {
    {"Revision",               0x04, Dec8       },
    {"IO Port",                0x05, Port       },
    {"Count",                  0x07, Dec8       },
    {"Checkpoint",             0x08, Dec8       },
    {"Checkpoint Description", 0x00, FirstString},
};

}  // namespace

void ClSMBIOSType222::PrintStructure(const uint8_t* pData) {
    if (!PrintTitle("Sarvine Technology {Type 222}", pData, "\nData is NULL")) return;
    GetCheckPointInfo(pData);
}

void ClSMBIOSType222::GetCheckPointInfo(const uint8_t* pData) { PrintItems(kItems, ClStructure::FormattedArea(pData)); }
