// Memory Array Mapped Address.
#include "Packages/Standard/Rows.h"

namespace {

constexpr FieldRow_t kFields[] = {
    {Dword(0x04), "Starting Address", HexIn(kKB, See(0xFFFFFFFF, "Extended Starting Address")), "2.1"},
    {Dword(0x08), "Ending Address", HexIn(kKB, See(0xFFFFFFFF, "Extended Ending Address")), "2.1"},
    {Word(0x0C), "Memory Array Handle", HandleOf(16), "2.1"},
    {Byte(0x0E), "Partition Width", Number(kPlain), "2.1"},
    {Qword(0x0F), "Extended Starting Address", HexIn(kByte), "2.7"},
    {Qword(0x17), "Extended Ending Address", HexIn(kByte), "2.7"},
    {From("Starting Address", "Extended Starting Address"), "Range Start", AsNumber(kFirstUsable, kByte), ""},
    {From("Ending Address", "Extended Ending Address"), "Range End", AsNumber(kRangeEnd, kByte), ""},
    {From("Starting Address", "Extended Starting Address", "Ending Address", "Extended Ending Address"), "Range Size",
     AsNumber(kRangeSize, kByte), ""},
};

}  // namespace

STANDARD_TYPE(19, "Memory Array Mapped Address", "2.1", kFields)
