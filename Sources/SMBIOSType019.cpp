// Memory Array Mapped Address (the SMBIOS standard, type 19). Addresses are in kilobytes, as they are in the structure.
#include "Sources/Decoders.h"

namespace {

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

DECODER_OF_ROWS(19, kItems)

void DescribeType19(ClDescription& description) {
    description.Explain(
        ShowExtendedAddress,
        "the high half without an `h`, a blank, then the low half, each in hexadecimal of 4 digits or more");
    description.Rows(RowsOf<kItems>());
}
