// Electrical Current Probe (the SMBIOS standard, type 29).
#include "Sources/Decoders.h"
#include "Sources/ProbeItems.h"

void ClSMBIOSType29::PrintStructure(const uint8_t* pData) {
    if (!PrintHead("Electrical Current Probe {Type 29}", pData)) return;
    PrintItems(kProbeItems, ClStructure::FormattedArea(pData));
}
