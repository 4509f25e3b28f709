// Management Device.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kManagementDeviceType[] = {
    {0x01, "Other", "2.3"},
    {0x02, "Unknown", "2.3"},
    {0x03, "National Semiconductor LM75", "2.3"},
    {0x04, "National Semiconductor LM78", "2.3"},
    {0x05, "National Semiconductor LM79", "2.3"},
    {0x06, "National Semiconductor LM80", "2.3"},
    {0x07, "National Semiconductor LM81", "2.3"},
    {0x08, "Analog Devices ADM9240", "2.3"},
    {0x09, "Dallas Semiconductor DS1780", "2.3"},
    {0x0A, "Maxim 1617", "2.3"},
    {0x0B, "Genesys GL518SM", "2.3"},
    {0x0C, "Winbond W83781D", "2.3"},
    {0x0D, "Holtek HT82H791", "2.3"},
};

constexpr CodeRow_t kManagementDeviceAddressType[] = {
    {0x01, "Other", "2.3"},  {0x02, "Unknown", "2.3"}, {0x03, "I/O Port", "2.3"},
    {0x04, "Memory", "2.3"}, {0x05, "SM Bus", "2.3"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Description", Text, "2.3"},
    {Byte(0x05), "Type", Code(kManagementDeviceType), "2.3"},
    {Dword(0x06), "Address", Hex(), "2.3"},
    {Byte(0x0A), "Address Type", Code(kManagementDeviceAddressType), "2.3"},
};

}  // namespace

STANDARD_TYPE(34, "Management Device", "2.3", kFields)
