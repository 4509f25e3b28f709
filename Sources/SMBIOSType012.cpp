// System Configuration Options (the SMBIOS standard, type 12).
#include "Sources/Decoders.h"

static constexpr ItemRow_t kItems[] = {
    {"Number of System Configuration Options Strings", 0x04, Dec8},
};

void ClSMBIOSType12::PrintStructure(const uint8_t* pData) {
    if (!PrintHead("System Configuration Options {Type 12}", pData)) return;
    const ClStructure structure = ClStructure::WholeRecord(pData);
    PrintItems(kItems, structure);
    const uint8_t count = structure.Byte(0x04);
    for (uint32_t number = 1; number <= count; number++) {
        const ItemRow_t string[] = {
            {"System Configuration Options String", 0, NumberedString(number)},
        };
        PrintItems(string, structure);
    }
}
