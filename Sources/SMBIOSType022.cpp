// Portable Battery (the SMBIOS standard, type 22). The device chemistry byte at 09h isn't shown.
#include "Sources/Decoders.h"

namespace {

ClText ShowDate(const Field_t& field) {
    const uint16_t date = field.Word();
    const int day = date & 0x1F, month = date >> 5 & 0x0F, year = 1980 + (date >> 9);
    return std::to_string(day).append("/").append(std::to_string(month)).append("/").append(std::to_string(year));
}

constexpr Rendering_t Date{ShowDate};

constexpr ItemRow_t kItems[] = {
    {"Location",                      0x04, String},
    {"Manufacturer",                  0x05, String},
    {"Manufacture Date",              0x06, String},
    {"Serial Number",                 0x07, String},
    {"Device Name",                   0x08, String},
    {"Device Capacity",               0x0A, Hex16 },
    {"Design Voltage",                0x0C, Hex16 },
    {"SBDS Version Number",           0x0E, String},
    {"Maximum Error in Battery Data", 0x0F, Hex8  },
    {"SBDS Serial Number",            0x10, Hex16 },
    {"SBDS Manufacture Date",         0x12, Date  },
    {"SBDS Device Chemistry",         0x14, Hex8  }, // the number, not the string
    {"Design Capacity Multiplier",    0x15, Hex8  },
    {"OEM Specific",                  0x16, Hex32 },
};

}  // namespace

DECODER_OF_ROWS(22, kItems)

void DescribeType22(ClDescription& description) {
    description.Explain(
        ShowDate,
        "day (bits 0 to 4), month (bits 5 to 8) and year (bits 9 to 15, from 1980) in decimal, joined by `/`");
    description.Rows(RowsOf<kItems>());
}
