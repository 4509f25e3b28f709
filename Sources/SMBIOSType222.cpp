// Sarvine Technology: a vendor-defined structure (type 222) that reports one boot checkpoint.
#include "Sources/Decoders.h"

namespace {

ClText ShowPort(const Field_t& field) { return "0X" + PlainUpperHex(field.Word()); }

constexpr Rendering_t Port{ShowPort};
constexpr std::string_view kStringKey = "Checkpoint Description";

constexpr ItemRow_t kItems[] = {
    {"Revision",   0x04, Dec8},
    {"IO Port",    0x05, Port},
    {"Count",      0x07, Dec8},
    {"Checkpoint", 0x08, Dec8},
};

class ClSMBIOSType222 final : public ClSMBIOSType {
  public:
    ClSMBIOSType222() : ClSMBIOSType(222) {}
    void PrintStructure(const uint8_t* pData) override {
        if (PrintHead(pData, "\nData is NULL")) GetCheckPointInfo(pData);
    }

  private:
    void GetCheckPointInfo(const uint8_t* pData) {
        const ClStructure structure = View(pData);
        PrintItems(RowsOf<kItems>(), structure);
        PrintStrings(kStringKey, 1, structure);
    }
};

}  // namespace

ClSMBIOSType* NewType222(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType222; }

void DescribeType222(ClDescription& description) {
    description.Explain(ShowPort, "`0X` and hexadecimal digits");
    description.Rows(RowsOf<kItems>());
    description.Item(kStringKey, {}, "the first string");
}
