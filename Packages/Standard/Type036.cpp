// Management Device Threshold Data.
#include "Packages/Standard/Rows.h"

namespace {

constexpr FieldRow_t kFields[] = {
    {Word(0x04), "Lower Threshold - Non-critical", Signed(kPlain, None(0x8000, "unavailable")), "2.3"},
    {Word(0x06), "Upper Threshold - Non-critical", Signed(kPlain, None(0x8000, "unavailable")), "2.3"},
    {Word(0x08), "Lower Threshold - Critical", Signed(kPlain, None(0x8000, "unavailable")), "2.3"},
    {Word(0x0A), "Upper Threshold - Critical", Signed(kPlain, None(0x8000, "unavailable")), "2.3"},
    {Word(0x0C), "Lower Threshold - Non-recoverable", Signed(kPlain, None(0x8000, "unavailable")), "2.3"},
    {Word(0x0E), "Upper Threshold - Non-recoverable", Signed(kPlain, None(0x8000, "unavailable")), "2.3"},
};

}  // namespace

STANDARD_TYPE(36, "Management Device Threshold Data", "2.3", kFields)
