// System Power Controls.
#include "Packages/Standard/Rows.h"

namespace {

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Next Scheduled Power-on Month", Bcd(NoneFrom(0x00, 0x00, "any"), NoneFrom(0x13, 0xFF, "any")), "2.2"},
    {Byte(0x05), "Next Scheduled Power-on Day-of-month", Bcd(NoneFrom(0x00, 0x00, "any"), NoneFrom(0x32, 0xFF, "any")),
     "2.2"},
    {Byte(0x06), "Next Scheduled Power-on Hour", Bcd(NoneFrom(0x24, 0xFF, "any")), "2.2"},
    {Byte(0x07), "Next Scheduled Power-on Minute", Bcd(NoneFrom(0x60, 0xFF, "any")), "2.2"},
    {Byte(0x08), "Next Scheduled Power-on Second", Bcd(NoneFrom(0x60, 0xFF, "any")), "2.2"},
};

}  // namespace

STANDARD_TYPE(25, "System Power Controls", "2.2", kFields)
