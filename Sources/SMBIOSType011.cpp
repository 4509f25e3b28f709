// OEM Strings (the SMBIOS standard, type 11).
#include "Sources/Decoders.h"

namespace {

constexpr std::string_view kStringKey = "OEM String";

constexpr ItemRow_t kItems[] = {
    {"Number of OEM Strings", 0x04, Dec8},
};

class ClSMBIOSType11 final : public ClSMBIOSType {
  public:
    ClSMBIOSType11() : ClSMBIOSType(11) {}
    void PrintStructure(const uint8_t* pData) override {
        if (!PrintHead(pData)) return;
        const ClStructure structure = View(pData);
        PrintItems(RowsOf<kItems>(), structure);
        PrintStrings(kStringKey, structure.Byte(0x04), structure);
    }
};

}  // namespace

ClSMBIOSType* NewType11(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType11; }

void DescribeType11(ClDescription& description) {
    description.Rows(RowsOf<kItems>());
    description.Item(kStringKey, {}, "string; one item for each");
}
