// Boot Integrity Services (BIS) Entry Point.
#include "Packages/Standard/Rows.h"

namespace {

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Structure Checksum", Hex(), "2.3"}, {Byte(0x05), "Reserved1", ReservedBytes, "2.3"},
    {Word(0x06), "Reserved2", ReservedBytes, "2.3"},  {Dword(0x08), "BisEntry16", Hex(), "2.3"},
    {Dword(0x0C), "BisEntry32", Hex(), "2.3"},        {Qword(0x10), "Reserved3", ReservedBytes, "2.3"},
    {Dword(0x18), "Reserved4", ReservedBytes, "2.3"},
};

}  // namespace

STANDARD_TYPE(31, "Boot Integrity Services (BIS) Entry Point", "2.3", kFields)
