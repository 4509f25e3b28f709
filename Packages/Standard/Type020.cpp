// Memory Device Mapped Address.
#include "Packages/Standard/Rows.h"

namespace {

constexpr FieldRow_t kFields[] = {
    {Dword(0x04), "Starting Address", HexIn(kKB, See(0xFFFFFFFF, "Extended Starting Address")), "2.1"},
    {Dword(0x08), "Ending Address", HexIn(kKB, See(0xFFFFFFFF, "Extended Ending Address")), "2.1"},
    {Word(0x0C), "Memory Device Handle", HandleOf(17), "2.1"},
    {Word(0x0E), "Memory Array Mapped Address Handle", HandleOf(19), "2.1"},
    {Byte(0x10), "Partition Row Position", Number(kPlain, Reserved(0), Unknown(0xFF)), "2.1"},
    {Byte(0x11), "Interleave Position", Number(kPlain, None(0, "not interleaved"), Unknown(0xFF)), "2.1"},
    {Byte(0x12), "Interleaved Data Depth", Number(kPlain, None(0, "not interleaved"), Unknown(0xFF)), "2.1"},
    {Qword(0x13), "Extended Starting Address", HexIn(kByte), "2.7"},
    {Qword(0x1B), "Extended Ending Address", HexIn(kByte), "2.7"},
    {From("Starting Address", "Extended Starting Address"), "Range Start", AsNumber(kFirstUsable, kByte), ""},
    {From("Ending Address", "Extended Ending Address"), "Range End", AsNumber(kRangeEnd, kByte), ""},
    {From("Starting Address", "Extended Starting Address", "Ending Address", "Extended Ending Address"), "Range Size",
     AsNumber(kRangeSize, kByte), ""},
};

}  // namespace

STANDARD_TYPE(20, "Memory Device Mapped Address", "2.1", kFields)
