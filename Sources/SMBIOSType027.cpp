// Cooling Device (the SMBIOS standard, type 27).
#include "Sources/Decoders.h"

namespace {

constexpr ItemRow_t kItems[] = {
    {"Temperature Probe Handle", 0x04, Hex16},
    {"Device Type and Status",   0x06, Hex8 },
    {"Cooling Unit Group",       0x07, Hex8 },
    {"OEM Defined",              0x08, Hex32},
};

// Shown by structures that are longer than 12 bytes.
constexpr ItemRow_t kNominalSpeed[] = {
    {"NominalSpeed", 0x0C, Hex16Digits(2)},
};

// Shown by structures of 15 bytes or more.
constexpr ItemRow_t kDescription[] = {
    {"Description", 0x0E, String},
};

}  // namespace

void ClSMBIOSType27::PrintStructure(const uint8_t* pData) {
    if (!PrintHead("Cooling Device {Type 27}", pData)) return;
    const ClStructure structure = ClStructure::WholeRecord(pData);
    PrintItems(kItems, structure);
    if (structure.Length() > 12) PrintItems(kNominalSpeed, structure);
    if (structure.Length() >= 15) PrintItems(kDescription, structure);
}
