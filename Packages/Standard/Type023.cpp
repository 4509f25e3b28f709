// System Reset.
#include "Packages/Standard/Rows.h"

namespace {

constexpr BitRow_t kSystemResetCapabilities[] = {
    {0, "Status: system reset is enabled by the user", "2.2"},
    {5, "System contains a watchdog timer", "2.2"},
};

constexpr CodeRow_t kBootOption[] = {
    {0x00, "Reserved", "2.2"},
    {0x01, "Operating system", "2.2"},
    {0x02, "System utilities", "2.2"},
    {0x03, "Do not reboot", "2.2"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Capabilities", Flags(kSystemResetCapabilities), "2.2"},
    {Bits(2, 1), "Boot Option", Code(kBootOption), "2.2"},
    {Bits(4, 3), "Boot Option on Limit", Code(kBootOption), "2.2"},
    {Word(0x05), "Reset Count", Number(kPlain, Unknown(0xFFFF)), "2.2"},
    {Word(0x07), "Reset Limit", Number(kPlain, Unknown(0xFFFF)), "2.2"},
    {Word(0x09), "Timer Interval", Number(kMinute, Unknown(0xFFFF)), "2.2"},
    {Word(0x0B), "Timeout", Number(kMinute, Unknown(0xFFFF)), "2.2"},
};

}  // namespace

STANDARD_TYPE(23, "System Reset", "2.2", kFields)
