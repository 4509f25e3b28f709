// Portable Battery.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kBatteryChemistry[] = {
    {0x01, "Other", "2.1"},
    {0x02, "Unknown", "2.1"},
    {0x03, "Lead Acid", "2.1"},
    {0x04, "Nickel Cadmium", "2.1"},
    {0x05, "Nickel metal hydride", "2.1"},
    {0x06, "Lithium-ion", "2.1"},
    {0x07, "Zinc air", "2.1"},
    {0x08, "Lithium Polymer", "2.1"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Location", Text, "2.1"},
    {Byte(0x05), "Manufacturer", Text, "2.1"},
    {Byte(0x06), "Manufacture Date", Text, "2.1"},
    {Byte(0x07), "Serial Number", Text, "2.1"},
    {Byte(0x08), "Device Name", Text, "2.1"},
    {Byte(0x09), "Device Chemistry", Code(kBatteryChemistry, See(0x2, "SBDS Device Chemistry")), "2.1"},
    {Word(0x0A), "Design Capacity", Number(kPlain, Unknown(0)), "2.1"},
    {Word(0x0C), "Design Voltage", Number(kMillivolt, Unknown(0)), "2.1"},
    {Byte(0x0E), "SBDS Version Number", Text, "2.1"},
    {Byte(0x0F), "Maximum Error in Battery Data", Number(kPercent, Unknown(0xFF)), "2.1"},
    {Word(0x10), "SBDS Serial Number", Hex(), "2.2"},
    {Word(0x12), "SBDS Manufacture Date", SbdsDate, "2.2"},
    {Byte(0x14), "SBDS Device Chemistry", Text, "2.2"},
    {Byte(0x15), "Design Capacity Multiplier", Number(kPlain), "2.2"},
    {Dword(0x16), "OEM-specific", Hex(), "2.2"},
    {From("Manufacture Date", "SBDS Manufacture Date"), "Manufacture Date ISO", AsDate(kIsoDate), ""},
    {From("Design Capacity", "Design Capacity Multiplier"), "Battery Capacity",
     AsNumber(kBatteryCapacity, kMilliwattHour), ""},
};

}  // namespace

STANDARD_TYPE(22, "Portable Battery", "2.1", kFields)
