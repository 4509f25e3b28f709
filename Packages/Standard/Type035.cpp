// Management Device Component.
#include "Packages/Standard/Rows.h"

namespace {

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Description", Text, "2.3"},
    {Word(0x05), "Management Device Handle", HandleOf(34), "2.3"},
    {Word(0x07), "Component Handle", HandleOf(26, 27, 28, 29), "2.3"},
    {Word(0x09), "Threshold Handle", HandleOf(36).With(None(0xFFFF, "none")), "2.3"},
};

}  // namespace

STANDARD_TYPE(35, "Management Device Component", "2.3", kFields)
