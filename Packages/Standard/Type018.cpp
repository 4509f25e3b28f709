// 32-Bit Memory Error Information.
#include "Packages/Standard/Rows.h"
#include "Packages/Standard/SharedRows.h"

namespace {

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Error Type", Code(kMemoryErrorType), "2.1"},
    {Byte(0x05), "Error Granularity", Code(kMemoryErrorGranularity), "2.1"},
    {Byte(0x06), "Error Operation", Code(kMemoryErrorOperation), "2.1"},
    {Dword(0x07), "Vendor Syndrome", Hex(Unknown(0)), "2.1"},
    {Dword(0x0B), "Memory Array Error Address", HexIn(kByte, Unknown(0x80000000)), "2.1"},
    {Dword(0x0F), "Device Error Address", HexIn(kByte, Unknown(0x80000000)), "2.1"},
    {Dword(0x13), "Error Resolution", Number(kByte, Unknown(0x80000000)), "2.1"},
};

}  // namespace

STANDARD_TYPE(18, "32-Bit Memory Error Information", "2.1", kFields)
