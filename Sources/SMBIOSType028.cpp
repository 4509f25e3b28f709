// Temperature Probe (the SMBIOS standard, type 28).
#include "Sources/Decoders.h"
#include "Sources/ProbeItems.h"

void ClSMBIOSType28::PrintStructure(const uint8_t* pData) {
    if (!PrintHead("Temperature Probe {Type 28}", pData)) return;
    PrintItems(kProbeItems, ClStructure::FormattedArea(pData));
}
