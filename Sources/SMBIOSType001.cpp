// System Information (the SMBIOS standard, type 1), from the parsed record.
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

ClText ShowUuid(const Field_t& field) {
    std::string text;
    for (size_t place = 0; place < 16; place++) {
        if (place != 0) text += ' ';
        text += PlainHex(field.structure.Byte(field.offset + place));
    }
    return text;
}

constexpr Rendering_t Uuid{ShowUuid}, WakeUpType = Enum8(kWakeUpTypes, "Error: Invalid Type");

constexpr ItemRow_t kItems[] = {
    {"Manufacturer",  0x04, ParsedText},
    {"Product Name",  0x05, ParsedText},
    {"Version",       0x06, ParsedText},
    {"Serial Number", 0x07, ParsedText},
    {"UUID",          0x08, Uuid      },
    {"Wake-up Type",  0x18, WakeUpType},
    {"SKU Number",    0x19, ParsedText},
    {"Family",        0x1A, ParsedText},
};

}  // namespace

DECODER_OF_ROWS(1, kItems)

void DescribeType1(ClDescription& description) {
    description.Explain(ShowUuid,
                        "the 16 bytes in the order of the structure, each in lower-case hexadecimal without a "
                        "leading zero, joined by blanks");
    description.Rows(RowsOf<kItems>());
}
