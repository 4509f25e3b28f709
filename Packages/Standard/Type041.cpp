// Onboard Devices Extended Information.
#include "Packages/Standard/Rows.h"
#include "Packages/Standard/SharedRows.h"

namespace {

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Reference Designation", Text, "2.6"},
    {Byte(0x05), "Device Type", Hex(), "2.6"},
    {Bits(6, 0), "Type of Device", Code(kOnboardDeviceType), "2.0"},
    {Bit(7), "Device Status", Code(kDeviceStatus), "2.0"},
    {Byte(0x06), "Device Type Instance", Number(kPlain), "2.6"},
    {Word(0x07), "Segment Group Number",
     Number(kPlain, None(0xFF, "device without a PCI address"), None(0xFFFF, "device without a PCI address")), "2.6"},
    {Byte(0x09), "Bus Number", Number(kPlain, None(0xFF, "device without a PCI address")), "2.6"},
    {Byte(0x0A), "Device/Function Number", Hex(None(0xFF, "device without a PCI address")), "2.6"},
    {Bits(2, 0), "Function Number", Number(kPlain), "2.6"},
    {Bits(7, 3), "Device Number", Number(kPlain), "2.6"},
    {From("Segment Group Number", "Bus Number", "Device/Function Number"), "PCI Address", AsText(kPciAddress), ""},
};

}  // namespace

STANDARD_TYPE(41, "Onboard Devices Extended Information", "2.6", kFields)
