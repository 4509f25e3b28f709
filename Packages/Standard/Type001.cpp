// System Information.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kWakeUpType[] = {
    {0x00, "Reserved", "2.1"},         {0x01, "Other", "<=2.3.1"},      {0x02, "Unknown", "<=2.3.1"},
    {0x03, "APM Timer", "<=2.3.1"},    {0x04, "Modem Ring", "<=2.3.1"}, {0x05, "LAN Remote", "<=2.3.1"},
    {0x06, "Power Switch", "<=2.3.1"}, {0x07, "PCI PME#", "<=2.3.1"},   {0x08, "AC Power Restored", "2.3"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Manufacturer", Text, "2.0"}, {Byte(0x05), "Product Name", Text, "2.0"},
    {Byte(0x06), "Version", Text, "2.0"},      {Byte(0x07), "Serial Number", Text, "2.0"},
    {Bytes(0x08, 16), "UUID", Uuid, "2.1"},    {Byte(0x18), "Wake-up Type", Code(kWakeUpType), "2.1"},
    {Byte(0x19), "SKU Number", Text, "2.4"},   {Byte(0x1A), "Family", Text, "2.4"},
};

}  // namespace

STANDARD_TYPE(1, "System Information", "2.0", kFields)
