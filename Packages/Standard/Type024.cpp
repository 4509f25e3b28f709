// Hardware Security.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kHardwareSecurityStatus[] = {
    {0x00, "Disabled", "2.2"},
    {0x01, "Enabled", "2.2"},
    {0x02, "Not Implemented", "2.2"},
    {0x03, "Unknown", "2.2"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Hardware Security Settings", Hex(), "2.2"},
    {Bits(1, 0), "Front Panel Reset Status", Code(kHardwareSecurityStatus), "2.2"},
    {Bits(3, 2), "Administrator Password Status", Code(kHardwareSecurityStatus), "2.2"},
    {Bits(5, 4), "Keyboard Password Status", Code(kHardwareSecurityStatus), "2.2"},
    {Bits(7, 6), "Power-on Password Status", Code(kHardwareSecurityStatus), "2.2"},
};

}  // namespace

STANDARD_TYPE(24, "Hardware Security", "2.2", kFields)
