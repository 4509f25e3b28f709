// Management Device Threshold Data (the SMBIOS standard, type 36). 8000h, the standard's mark for a threshold that
// isn't there, shows like any other number.
#include "Sources/Decoders.h"

namespace {

constexpr Rendering_t Threshold = Hex16Digits(0);

constexpr ItemRow_t kItems[] = {
    {"Lower Threshold - Non-critical",    0x04, Threshold},
    {"Upper Threshold - Non-critical",    0x06, Threshold},
    {"Lower Threshold - Critical",        0x08, Threshold},
    {"Upper Threshold - Critical",        0x0A, Threshold},
    {"Lower Threshold - Non-recoverable", 0x0C, Threshold},
    {"Upper Threshold - Non-recoverable", 0x0E, Threshold},
};

}  // namespace

void ClSMBIOSType36::PrintStructure(const uint8_t* pData) {
    if (!PrintHead("Management Device Threshold Data {Type 36}", pData)) return;
    PrintItems(kItems, ClStructure::WholeRecord(pData));
}
