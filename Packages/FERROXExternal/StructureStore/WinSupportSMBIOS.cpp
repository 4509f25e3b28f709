// The two roads by which this machine's table gets into memory.
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/FERROXExternal/StructureStore/StoreParts.h"
#include "Packages/OS/OS.h"
#include "Packages/Platform/Platform.h"

#define TRACE(function, level, ...) \
    QUORLIN_TRACE(storeTraceHandle, "StructureStore\\WinSupportSMBIOS", function, level, __VA_ARGS__)

namespace {

constexpr DWORD kRawSMBIOSProvider = 0x52534D42;  // "RSMB"
constexpr UINT kAnswerHead = 8;                   // calling method, major, minor, revision, length

}  // namespace

status_t osGetStructuresDataEFI(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
    const UINT size = GetSystemFirmwareTable(kRawSMBIOSProvider, 0, nullptr, 0);
    if (size == 0) {
        TRACE("osGetStructuresDataEFI", kErrorExit, "No SMBIOS Table present ");
        return kFailure;
    }
    auto* answer = static_cast<uint8_t*>(os_malloc(size));
    if (answer == nullptr) {
        TRACE("osGetStructuresDataEFI", kErrorExit, "Error allocating memory ");
        return kNoMemory;
    }
    // An answer without a whole head can't be one.
    if (GetSystemFirmwareTable(kRawSMBIOSProvider, 0, answer, size) != size || size < kAnswerHead) {
        TRACE("osGetStructuresDataEFI", kErrorExit, "Error reading SMBIOS Table ... Exiting ");
        os_free(answer);
        return kFailure;
    }
    // The length in the head is not read: the answer's size alone counts.
    const uint32_t length = size - kAnswerHead;
    auto* table = static_cast<SMBIOSTableImage_t*>(os_malloc(sizeof(SMBIOSTableImage_t) + length));
    if (table == nullptr) {
        TRACE("osGetStructuresDataEFI", kErrorExit, "Error allocating memory ");
        os_free(answer);
        return kNoMemory;
    }
    table->Length = length;
    os_memcpy(table->Data(), length, answer + kAnswerHead, length);
    entry[6] = answer[1];
    entry[7] = answer[2];
    dmiEntry[14] = answer[3];
    os_free(answer);
    TRACE("osGetStructuresDataEFI", kInfo,
          "The SMBIOS Major version = 0x%x SMBIOS Minor Version = 0x%x and DMI Version = 0x%x", entry[6], entry[7],
          dmiEntry[14]);
    TRACE("osGetStructuresDataEFI", kExit, "Read the SMBIOS Table Successfully ");
    *image = table;
    return kSuccess;
}
