// Management Device Component (the SMBIOS standard, type 35). Of its three handles only the threshold handle is
// shown, and only when it says that there are no thresholds.
#include "Sources/Decoders.h"

namespace {

constexpr size_t kThresholdHandle = 0x09;
constexpr uint16_t kNoThreshold = 0xFFFF;

constexpr Rendering_t NoThreshold = FixedText("No Threshold Data structure is associated with this component");

constexpr ItemRow_t kDescription[] = {
    {"Description", 0x04, String},
};

constexpr ItemRow_t kThreshold[] = {
    {"Threshold Handle", kThresholdHandle, NoThreshold},
};

class ClSMBIOSType35 final : public ClSMBIOSType {
  public:
    ClSMBIOSType35() : ClSMBIOSType(35) {}
    void PrintStructure(const uint8_t* pData) override {
        if (!PrintHead(pData)) return;
        const ClStructure structure = View(pData);
        PrintItems(RowsOf<kDescription>(), structure);
        if (structure.Word(kThresholdHandle) == kNoThreshold) PrintItems(RowsOf<kThreshold>(), structure);
    }
};

}  // namespace

ClSMBIOSType* NewType35(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType35; }

void DescribeType35(ClDescription& description) {
    description.Rows(RowsOf<kDescription>());
    description.Rows(RowsOf<kThreshold>(), "Structures with the handle FFFFh");
}
