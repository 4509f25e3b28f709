// Memory Array Mapped Address (the SMBIOS standard, type 19). Addresses are in kilobytes, as the structure holds them.
#include "Sources/Decoders.h"

namespace {

// The high half without an "h" of its own, then the low half, each in hexadecimal of 4 digits or more.
ClText ShowExtendedAddress(const Field_t& field) {
    const uint64_t address = field.Qword();
    std::string text = ClSMBIOSType::GetHexString(address >> 32, 4);
    text.back() = ' ';
    return text.append(ClSMBIOSType::GetHexString(address & 0xFFFFFFFF, 4));
}

constexpr Rendering_t ExtendedAddress{ShowExtendedAddress};

constexpr ItemRow_t kItems[] = {
    {"Starting Address",          0x04, Hex32          },
    {"Ending Address",            0x08, Hex32          },
    {"Memory Array Handle",       0x0C, Hex16          },
    {"Partition Width",           0x0E, Hex8           },
    {"Extended Starting Address", 0x0F, ExtendedAddress},
    {"Extended Ending Address",   0x17, ExtendedAddress},
};

}  // namespace

void ClSMBIOSType19::PrintStructure(const uint8_t* pData) {
    if (!PrintHead("Memory Array Mapped Address {Type 19}", pData)) return;
    PrintItems(kItems, ClStructure::FormattedArea(pData));
}
