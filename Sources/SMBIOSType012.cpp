// System Configuration Options (the SMBIOS standard, type 12).
#include "Sources/Decoders.h"

static constexpr ItemRow_t kItems[] = {
    {"Number of System Configuration Options Strings", 0x04, Dec8},
};

void ClSMBIOSType12::PrintStructure(const uint8_t* pData) {
    if (!PrintHead("System Configuration Options {Type 12}", pData)) return;
    const ClStructure structure = ClStructure::WholeRecord(pData);
    PrintItems(kItems, structure);
    PrintStrings("System Configuration Options String", structure.Byte(0x04), structure);
}
