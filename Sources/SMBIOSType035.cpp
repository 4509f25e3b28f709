// Management Device Component (the SMBIOS standard, type 35). Of its three handles the threshold handle alone shows,
// and only when it says that there are no thresholds.
#include "Sources/Decoders.h"

namespace {

constexpr size_t kThresholdHandle = 0x09;
constexpr uint16_t kNoThreshold = 0xFFFF;

// The one text for the handle FFFFh; other handles give no item.
ClText ShowNoThreshold(const Field_t&) { return "No Threshold Data structure is associated with this component"; }

constexpr Rendering_t NoThreshold{ShowNoThreshold};

constexpr ItemRow_t kDescription[] = {
    {"Description", 0x04, String},
};

constexpr ItemRow_t kThreshold[] = {
    {"Threshold Handle", kThresholdHandle, NoThreshold},
};

}  // namespace

void ClSMBIOSType35::PrintStructure(const uint8_t* pData) {
    if (!PrintHead("Management Device Component {Type 35}", pData)) return;
    const ClStructure structure = ClStructure::WholeRecord(pData);
    PrintItems(kDescription, structure);
    if (structure.Word(kThresholdHandle) == kNoThreshold) PrintItems(kThreshold, structure);
}
