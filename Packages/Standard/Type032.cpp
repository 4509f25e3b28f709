// System Boot Information.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kBootStatus[] = {
    {0x00, "No errors detected", "2.3"},
    {0x01, "No bootable media", "2.3"},
    {0x02, "\"normal\" operating system failed to load", "2.3"},
    {0x03, "Firmware-detected hardware failure", "2.3"},
    {0x04, "Operating system-detected hardware failure", "2.3"},
    {0x05, "User-requested boot", "2.3"},
    {0x06, "System security violation", "2.3"},
    {0x07, "Previously requested image", "2.3"},
    {0x08, "System watchdog timer expired", "2.3"},
    {0x09, 0x7F, "Reserved for future assignment", "2.3"},
    {0x80, 0xBF, "Vendor/OEM-specific implementations", "2.3"},
    {0xC0, 0xFF, "Product-specific implementations", "2.3"},
};

constexpr FieldRow_t kBootStatusFields[] = {
    {Byte(0x00), "Status", Code(kBootStatus), "2.3"},
    {Rest(0x01), "Additional Data", Raw, "2.3"},
};

constexpr FieldRow_t kFields[] = {
    {Bytes(0x04, 6), "Reserved", ReservedBytes, "2.3"},
    {List(0x0A), "Boot Status", Records(kBootStatusFields, kWholeRest, Counted_t::kOne), "2.3"},
};

}  // namespace

STANDARD_TYPE(32, "System Boot Information", "2.3", kFields)
