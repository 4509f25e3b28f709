// The two access methods of this machine.
#include <cstring>

#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"
#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/FERROXExternal/StructureStore/StoreParts.h"
#include "Packages/Format/EntryPoint.h"
#include "Packages/Format/FirmwareAnswer.h"
#include "Packages/OS/FirmwareTables.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"

#define TRACE(function, level, ...) \
    QUORLIN_TRACE(storeTraceHandle, "StructureStore\\WinSupportSMBIOS", function, level, __VA_ARGS__)

namespace {

// Entry points are in the BIOS area, on 16-byte boundaries. Source: the SMBIOS standard, "accessing SMBIOS
// information".
constexpr uint32_t kScanBase = 0xF0000;
constexpr uint32_t kScanSize = 0x10000;
constexpr uint32_t kBlockSize = 0x1000;  // size of one read
constexpr uint32_t kBoundary = 16;

uint32_t Number(const uint8_t* bytes, uint32_t width) {
    uint32_t number = 0;
    for (uint32_t index = width; index > 0; --index) number = number << 8 | bytes[index - 1];
    return number;
}

// Looks for entry points in a block read from `address`, until both are found.
void ScanBlock(const uint8_t* block, uint32_t address, uint8_t* entry, bool* entryFound, uint8_t* dmiEntry,
               bool* dmiFound) {
    for (uint32_t place = 0; place < kBlockSize && !(*entryFound && *dmiFound); place += kBoundary) {
        if (BeginsWith({block + place, kBoundary}, kAnchor32)) {
            os_memcpy(entry, kEntryBufferSize, block + place, kEntryBufferSize);
            *entryFound = true;
            TRACE("osGetStructuresDataNonEFI", kInfo, "SMBIOS Entry point found  at 0x%lx",
                  static_cast<unsigned long>(address + place));
        }
        if (BeginsWith({block + place, kBoundary}, kAnchorDMI)) {
            os_memcpy(dmiEntry, kDMIEntryBufferSize, block + place, kDMIEntryBufferSize);
            *dmiFound = true;
            TRACE("osGetStructuresDataNonEFI", kInfo, "DMI  Entry point foundat 0x%lx",
                  static_cast<unsigned long>(address + place));
        }
    }
}

// Reads the BIOS area in blocks, until both entry points are found.
ScanEnd_t FindEntryPoints(uint8_t* entry, uint8_t* dmiEntry) {
    if (const auto hasBIOSArea = CurrentHardware().HasBIOSArea; hasBIOSArea != nullptr && !hasBIOSArea()) {
        TRACE("osGetStructuresDataNonEFI", kErrorExit, "This machine has no BIOS area, and none is read");
        return ScanEnd_t::kNoArea;
    }
    auto* block = static_cast<DataBuffer_t*>(os_malloc(sizeof(DataBuffer_t) + kBlockSize));
    if (block == nullptr) {
        TRACE("osGetStructuresDataNonEFI", kErrorExit, "Error Allocating memory");
        return ScanEnd_t::kNoRoom;
    }
    bool entryFound = false;
    bool dmiFound = false;
    for (uint32_t offset = 0; offset < kScanSize && !(entryFound && dmiFound); offset += kBlockSize) {
        block->Size = kBlockSize;
        const status_t status = GetSystemTables(kScanBase, offset, block);
        if (status != kSuccess) {
            TRACE("osGetStructuresDataNonEFI", kErrorExit, "Error doing GetSystemTables ret = %d",
                  static_cast<int>(status));
            os_free(block);
            return ScanEnd_t::kUnreadable;
        }
        ScanBlock(block->Data(), kScanBase + offset, entry, &entryFound, dmiEntry, &dmiFound);
    }
    os_free(block);
    if (!entryFound || !dmiFound) {
        TRACE("osGetStructuresDataNonEFI", kErrorExit, "Both the SMI and DMI Structure not found");
        return ScanEnd_t::kNoAnchors;
    }
    return ScanEnd_t::kFound;
}

// The address that firmware wrote may belong to a device, and reading device registers has effects.
bool IsMemory(uint32_t address, uint32_t size) {
    const auto isMemory = CurrentHardware().IsMemory;
    return isMemory != nullptr && isMemory(address, size);
}

}  // namespace

status_t osGetStructuresDataEFI(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
    const uint32_t size = os_GetFirmwareTable(kSMBIOSProvider, 0, nullptr, 0, nullptr);
    if (size == 0) {
        TRACE("osGetStructuresDataEFI", kErrorExit, "No SMBIOS Table present ");
        return kFailure;
    }
    auto* answer = static_cast<uint8_t*>(os_malloc(size));
    if (answer == nullptr) {
        TRACE("osGetStructuresDataEFI", kErrorExit, "Error allocating memory ");
        return kNoMemory;
    }
    if (os_GetFirmwareTable(kSMBIOSProvider, 0, answer, size, nullptr) != size || size < sizeof(FirmwareAnswer_t)) {
        TRACE("osGetStructuresDataEFI", kErrorExit, "Error reading SMBIOS Table ... Exiting ");
        os_free(answer);
        return kFailure;
    }
    FirmwareAnswer_t head;
    std::memcpy(&head, answer, sizeof head);
    const auto length = static_cast<uint32_t>(size - sizeof head);  // head.length isn't read
    auto* table = static_cast<SMBIOSTableImage_t*>(os_malloc(sizeof(SMBIOSTableImage_t) + length));
    if (table == nullptr) {
        TRACE("osGetStructuresDataEFI", kErrorExit, "Error allocating memory ");
        os_free(answer);
        return kNoMemory;
    }
    table->Length = length;
    os_memcpy(table->Data(), length, answer + sizeof head, length);
    entry[6] = head.major;
    entry[7] = head.minor;
    dmiEntry[14] = head.revision;
    os_free(answer);
    TRACE("osGetStructuresDataEFI", kInfo,
          "The SMBIOS Major version = 0x%x SMBIOS Minor Version = 0x%x and DMI Version = 0x%x", entry[6], entry[7],
          dmiEntry[14]);
    TRACE("osGetStructuresDataEFI", kExit, "Read the SMBIOS Table Successfully ");
    *image = table;
    return kSuccess;
}

// Checks neither checksums nor the length of the entry point, and ignores the number of structures.
ScanEnd_t ScanMemory(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
    const ScanEnd_t end = FindEntryPoints(entry, dmiEntry);
    if (end != ScanEnd_t::kFound) return end;
    const uint32_t length = Number(dmiEntry + 6, 2);
    const uint32_t address = Number(dmiEntry + 8, 4);
    TRACE("osGetStructuresDataNonEFI", kInfo, "SMBIOS and DMI Table entry points found");
    TRACE("osGetStructuresDataNonEFI", kInfo, "The SMBIOS major version = 0x%x and minor version = 0x%x", entry[6],
          entry[7]);
    TRACE("osGetStructuresDataNonEFI", kInfo,
          "The DMI length = 0x%x and address = 0x%lx NumberofSMBIOSStructure = 0x%x", length,
          static_cast<unsigned long>(address), Number(dmiEntry + 12, 2));
    if (!IsMemory(address, length)) {
        TRACE("osGetStructuresDataNonEFI", kErrorExit, "The table isn't in memory, and is not read");
        return ScanEnd_t::kElsewhere;
    }

    auto* table = static_cast<SMBIOSTableImage_t*>(os_malloc(sizeof(SMBIOSTableImage_t) + length));
    if (table == nullptr) {
        TRACE("osGetStructuresDataNonEFI", kErrorExit, "Error allocating memory for main structure ... Exiting");
        return ScanEnd_t::kNoRoom;
    }
    table->Length = length;
    // An image has the layout of a data buffer, so the table is read directly into it.
    static_assert(sizeof(SMBIOSTableImage_t) == sizeof(DataBuffer_t));
    const status_t status = GetSystemTables(address, 0, reinterpret_cast<DataBuffer_t*>(table));
    if (status != kSuccess) {
        TRACE("osGetStructuresDataNonEFI", kErrorExit, "Error doing GetSystemTables ret = %d\n",
              static_cast<int>(status));
        os_free(table);
        return ScanEnd_t::kUnreadable;
    }
    *image = table;
    return ScanEnd_t::kFound;
}

status_t osGetStructuresDataNonEFI(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
    switch (ScanMemory(entry, dmiEntry, image)) {
        case ScanEnd_t::kFound: return kSuccess;
        case ScanEnd_t::kNoRoom: return kNoMemory;
        default: return kFailure;
    }
}
