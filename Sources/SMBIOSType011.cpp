// OEM Strings (the SMBIOS standard, type 11).
#include "Sources/Decoders.h"

static constexpr ItemRow_t kItems[] = {
    {"Number of OEM Strings", 0x04, Dec8},
};

void ClSMBIOSType11::PrintStructure(const uint8_t* pData) {
    if (!PrintHead("OEM Strings {Type 11}", pData)) return;
    const ClStructure structure = ClStructure::WholeRecord(pData);
    PrintItems(kItems, structure);
    PrintStrings("OEM String", structure.Byte(0x04), structure);
}
