// Cooling Device (the SMBIOS standard, type 27).
#include "Sources/Decoders.h"

namespace {

constexpr ItemRow_t kItems[] = {
    {"Temperature Probe Handle", 0x04, Hex16},
    {"Device Type and Status",   0x06, Hex8 },
    {"Cooling Unit Group",       0x07, Hex8 },
    {"OEM Defined",              0x08, Hex32},
};

constexpr ItemRow_t kNominalSpeed[] = {
    {"NominalSpeed", 0x0C, Hex16Digits(2)},
};

constexpr ItemRow_t kDescription[] = {
    {"Description", 0x0E, String},
};

class ClSMBIOSType27 final : public ClSMBIOSType {
  public:
    ClSMBIOSType27() : ClSMBIOSType(27) {}
    void PrintStructure(const uint8_t* pData) override {
        if (!PrintHead(pData)) return;
        const ClStructure structure = View(pData);
        PrintItems(RowsOf<kItems>(), structure);
        if (structure.Length() > 12) PrintItems(RowsOf<kNominalSpeed>(), structure);
        if (structure.Length() >= 15) PrintItems(RowsOf<kDescription>(), structure);
    }
};

}  // namespace

ClSMBIOSType* NewType27(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType27; }

void DescribeType27(ClDescription& description) {
    description.Rows(RowsOf<kItems>());
    description.Rows(RowsOf<kNominalSpeed>(), "Structures of more than 12 bytes");
    description.Rows(RowsOf<kDescription>(), "Structures of 15 bytes or more");
}
