// System Information (the SMBIOS standard, type 1), from the parsed record.
#include "Packages/FERROXExternal/StructureStore/ParsedRecords.h"
#include "Sources/Decoders.h"

namespace {

constexpr CodeText_t kWakeUpTypes[] = {
    {0, "None"             },
    {1, "Other"            },
    {2, "Unknown"          },
    {3, "APM Timer"        },
    {4, "Modem Ring"       },
    {5, "LAN Remote"       },
    {6, "Power Switch"     },
    {7, "PCI PME#"         },
    {8, "AC Power Restored"},
};
static_assert(IsRising(kWakeUpTypes));

// A string of the parsed record; "None" for number 0 or one that names no string.
ClText ShowSystemString(const Field_t& field) {
    const char* text = ParsedString(field.structure.Data(), kSystemBytes, kSystemStrings, field.row.offset);
    return field.Byte() == 0 || text == nullptr ? "None" : text;
}

// The bytes in the structure's order, none swapped.
ClText ShowUuid(const Field_t& field) {
    std::string text;
    for (size_t place = 0; place < 16; place++) {
        if (place != 0) text += ' ';
        text += PlainHex(field.structure.Byte(field.row.offset + place));
    }
    return text;
}

constexpr Rendering_t SystemText{ShowSystemString}, Uuid{ShowUuid},
    WakeUpType = Enum8(kWakeUpTypes, "Error: Invalid Type");

constexpr ItemRow_t kItems[] = {
    {"Manufacturer",  0x04, SystemText},
    {"Product Name",  0x05, SystemText},
    {"Version",       0x06, SystemText},
    {"Serial Number", 0x07, SystemText},
    {"UUID",          0x08, Uuid      },
    {"Wake-up Type",  0x18, WakeUpType},
    {"SKU Number",    0x19, SystemText},
    {"Family",        0x1A, SystemText},
};

}  // namespace

void ClSMBIOSType1::PrintStructure(const uint8_t* pData) {
    if (!PrintHead("System Information {Type 1}", pData)) return;
    PrintItems(kItems, ClStructure::FixedBytes(pData, kSystemBytes));
}
