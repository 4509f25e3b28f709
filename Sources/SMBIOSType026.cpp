// Voltage Probe (the SMBIOS standard, type 26).
#include "Sources/Decoders.h"
#include "Sources/ProbeItems.h"

void ClSMBIOSType26::PrintStructure(const uint8_t* pData) {
    if (!PrintHead("Voltage Probe {Type 26}", pData)) return;
    PrintItems(kProbeItems, ClStructure::FormattedArea(pData));
}
