// System Power Supply.
#include "Packages/Standard/Rows.h"

namespace {

constexpr BitRow_t kPowerSupplyCharacteristics[] = {
    {0, "power supply is hot-replaceable", "2.3.1"},
    {1, "power supply is present", "2.3.1"},
    {2, "power supply is unplugged from the wall", "2.3.1"},
};

constexpr CodeRow_t kPowerSupplyRangeSwitching[] = {
    {0x01, "Other", "2.3.1"},       {0x02, "Unknown", "2.3.1"},    {0x03, "Manual", "2.3.1"},
    {0x04, "Auto-switch", "2.3.1"}, {0x05, "Wide range", "2.3.1"}, {0x06, "Not applicable", "2.3.1"},
};

constexpr CodeRow_t kPowerSupplyStatus[] = {
    {0x01, "Other", "2.3.1"},
    {0x02, "Unknown", "2.3.1"},
    {0x03, "OK", "2.3.1"},
    {0x04, "Non-critical", "2.3.1"},
    {0x05, "Critical; power supply has failed and has been taken off-line", "2.3.1"},
};

constexpr CodeRow_t kPowerSupplyType[] = {
    {0x01, "Other", "2.3.1"},   {0x02, "Unknown", "2.3.1"}, {0x03, "Linear", "2.3.1"},    {0x04, "Switching", "2.3.1"},
    {0x05, "Battery", "2.3.1"}, {0x06, "UPS", "2.3.1"},     {0x07, "Converter", "2.3.1"}, {0x08, "Regulator", "2.3.1"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Power Unit Group", Number(kPlain, None(0, "not in a redundant unit")), "2.3.1"},
    {Byte(0x05), "Location", Text, "2.3.1"},
    {Byte(0x06), "Device Name", Text, "2.3.1"},
    {Byte(0x07), "Manufacturer", Text, "2.3.1"},
    {Byte(0x08), "Serial Number", Text, "2.3.1"},
    {Byte(0x09), "Asset Tag Number", Text, "2.3.1"},
    {Byte(0x0A), "Model Part Number", Text, "2.3.1"},
    {Byte(0x0B), "Revision Level", Text, "2.3.1"},
    {Word(0x0C), "Max Power Capacity", Number(kWatt, Unknown(0x8000)), "2.3.1"},
    {Word(0x0E), "Power Supply Characteristics", Flags(kPowerSupplyCharacteristics), "2.3.1"},
    {Bits(6, 3), "DMTF Input Voltage Range Switching", Code(kPowerSupplyRangeSwitching), "2.3.1"},
    {Bits(9, 7), "Status", Code(kPowerSupplyStatus), "2.3.1"},
    {Bits(13, 10), "DMTF Power Supply Type", Code(kPowerSupplyType), "2.3.1"},
    {Word(0x10), "Input Voltage Probe Handle", HandleOf(26).With(None(0xFFFF, "none")), "2.3.1"},
    {Word(0x12), "Cooling Device Handle", HandleOf(27).With(None(0xFFFF, "none")), "2.3.1"},
    {Word(0x14), "Input Current Probe Handle", HandleOf(29).With(None(0xFFFF, "none")), "2.3.1"},
};

}  // namespace

STANDARD_TYPE(39, "System Power Supply", "2.3.1", kFields)
