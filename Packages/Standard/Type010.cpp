// On Board Devices Information.
#include "Packages/Standard/Rows.h"
#include "Packages/Standard/SharedRows.h"

namespace {

constexpr FieldRow_t kDevices[] = {
    {Byte(0x00), "Device Type", Hex(), "2.0"},
    {Bits(6, 0), "Type of Device", Code(kOnboardDeviceType), "2.0"},
    {Bit(7), "Device Status", Code(kDeviceStatus), "2.0"},
    {Byte(0x01), "Description String", Text, "2.0"},
};

constexpr FieldRow_t kFields[] = {
    {List(0x04), "Devices", Records(kDevices, 2, Counted_t::kToEnd), "2.0"},
};

}  // namespace

STANDARD_TYPE(10, "On Board Devices Information", "2.0", kFields)
