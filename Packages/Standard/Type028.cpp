// Temperature Probe.
#include "Packages/Standard/Rows.h"
#include "Packages/Standard/SharedRows.h"

namespace {

constexpr CodeRow_t kTemperatureProbeLocation[] = {
    {0x01, "Other", "2.2"},
    {0x02, "Unknown", "2.2"},
    {0x03, "Processor", "2.2"},
    {0x04, "Disk", "2.2"},
    {0x05, "Peripheral Bay", "2.2"},
    {0x06, "System Management Module", "2.2"},
    {0x07, "Motherboard", "2.2"},
    {0x08, "Memory Module", "2.2"},
    {0x09, "Processor Module", "2.2"},
    {0x0A, "Power Unit", "2.2"},
    {0x0B, "Add-in Card", "2.2"},
    {0x0C, "Front Panel Board", "2.2"},
    {0x0D, "Back Panel Board", "2.2"},
    {0x0E, "Power System Board", "2.2"},
    {0x0F, "Drive Back Plane", "2.2"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Description", Text, "2.2"},
    {Byte(0x05), "Location and Status", Hex(), "2.2"},
    {Bits(4, 0), "Location", Code(kTemperatureProbeLocation), "2.2"},
    {Bits(7, 5), "Status", Code(kProbeStatus), "2.2"},
    {Word(0x06), "Maximum Value", Signed(kTenthOfDegree, Unknown(0x8000)), "2.2"},
    {Word(0x08), "Minimum Value", Signed(kTenthOfDegree, Unknown(0x8000)), "2.2"},
    {Word(0x0A), "Resolution", Number(kThousandthOfDegree, Unknown(0x8000)), "2.2"},
    {Word(0x0C), "Tolerance", Signed(kTenthOfDegree, Unknown(0x8000)), "2.2"},
    {Word(0x0E), "Accuracy", Number(kHundredthOfPercent, Unknown(0x8000)), "2.2"},
    {Dword(0x10), "OEM-defined", Hex(), "2.2"},
    {Word(0x14), "Nominal Value", Signed(kTenthOfDegree, Unknown(0x8000)), "2.3"},
};

}  // namespace

STANDARD_TYPE(28, "Temperature Probe", "2.2", kFields)
