// System Configuration Options (the SMBIOS standard, type 12).
#include "Sources/Decoders.h"

namespace {

constexpr std::string_view kStringKey = "System Configuration Options String";

constexpr ItemRow_t kItems[] = {
    {"Number of System Configuration Options Strings", 0x04, Dec8},
};

class ClSMBIOSType12 final : public ClSMBIOSType {
  public:
    ClSMBIOSType12() : ClSMBIOSType(12) {}
    void PrintStructure(const uint8_t* pData) override {
        if (!PrintHead(pData)) return;
        const ClStructure structure = View(pData);
        PrintItems(RowsOf<kItems>(), structure);
        PrintStrings(kStringKey, structure.Byte(0x04), structure);
    }
};

}  // namespace

ClSMBIOSType* NewType12(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType12; }

void DescribeType12(ClDescription& description) {
    description.Rows(RowsOf<kItems>());
    description.Item(kStringKey, {}, "string; one item for each");
}
