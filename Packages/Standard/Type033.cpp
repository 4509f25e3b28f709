// 64-Bit Memory Error Information.
#include "Packages/Standard/Rows.h"
#include "Packages/Standard/SharedRows.h"

namespace {

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Error Type", Code(kMemoryErrorType), "2.3"},
    {Byte(0x05), "Error Granularity", Code(kMemoryErrorGranularity), "2.3"},
    {Byte(0x06), "Error Operation", Code(kMemoryErrorOperation), "2.3"},
    {Dword(0x07), "Vendor Syndrome", Hex(Unknown(0)), "2.3"},
    {Qword(0x0B), "Memory Array Error Address", HexIn(kByte, Unknown(0x8000000000000000)), "2.3"},
    {Qword(0x13), "Device Error Address", HexIn(kByte, Unknown(0x8000000000000000)), "2.3"},
    {Dword(0x1B), "Error Resolution", Number(kByte, Unknown(0x80000000)), "2.3"},
};

}  // namespace

STANDARD_TYPE(33, "64-Bit Memory Error Information", "2.3", kFields)
