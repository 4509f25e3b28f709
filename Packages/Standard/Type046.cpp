// String Property.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kStringPropertyId[] = {
    {0x00, "Reserved", "3.5"},
    {0x01, "UEFI device path", "3.5"},
    {0x8000, 0xBFFF, "Firmware vendor-specific", "3.5"},
    {0xC000, 0xFFFF, "OEM-specific", "3.5"},
};

constexpr FieldRow_t kFields[] = {
    {Word(0x04), "String Property ID", Code(kStringPropertyId), "3.5"},
    {Byte(0x06), "String Property Value", Text, "3.5"},
    {Word(0x07), "Parent handle", HandleOf(), "3.5"},
};

}  // namespace

STANDARD_TYPE(46, "String Property", "3.5", kFields)
