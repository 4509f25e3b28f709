// Cooling Device.
#include "Packages/Standard/Rows.h"
#include "Packages/Standard/SharedRows.h"

namespace {

constexpr CodeRow_t kCoolingDeviceType[] = {
    {0x01, "Other", "2.2"},
    {0x02, "Unknown", "2.2"},
    {0x03, "Fan", "2.2"},
    {0x04, "Centrifugal Blower", "2.2"},
    {0x05, "Chip Fan", "2.2"},
    {0x06, "Cabinet Fan", "2.2"},
    {0x07, "Power Supply Fan", "2.2"},
    {0x08, "Heat Pipe", "2.2"},
    {0x09, "Integrated Refrigeration", "2.2"},
    {0x10, "Active Cooling", "2.2"},
    {0x11, "Passive Cooling", "2.2"},
};

constexpr FieldRow_t kFields[] = {
    {Word(0x04), "Temperature Probe Handle", HandleOf(28).With(None(0xFFFF, "no probe")), "2.2"},
    {Byte(0x06), "Device Type and Status", Hex(), "2.2"},
    {Bits(4, 0), "Device Type", Code(kCoolingDeviceType), "2.2"},
    {Bits(7, 5), "Status", Code(kProbeStatus), "2.2"},
    {Byte(0x07), "Cooling Unit Group", Number(kPlain, None(0, "not in a redundant group")), "2.2"},
    {Dword(0x08), "OEM-defined", Hex(), "2.2"},
    {Word(0x0C), "Nominal Speed", Number(kRpm, Unknown(0x8000, "unknown or not rotating")), "2.2"},
    {Byte(0x0E), "Description", Text, "2.7"},
};

}  // namespace

STANDARD_TYPE(27, "Cooling Device", "2.2", kFields)
