// The access methods of this machine.
#include <algorithm>
#include <cstring>

#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"
#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/FERROXExternal/StructureStore/StoreParts.h"
#include "Packages/Format/EntryPoint.h"
#include "Packages/Format/FirmwareAnswer.h"
#include "Packages/Format/Structures.h"
#include "Packages/Format/TableFile.h"
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
MemoryEnd_t FindEntryPoints(uint8_t* entry, uint8_t* dmiEntry) {
    if (!HasBIOSArea()) {
        TRACE("osGetStructuresDataNonEFI", kErrorExit, "This machine has no BIOS area, and none is read");
        return MemoryEnd_t::kNoArea;
    }
    auto* block = static_cast<DataBuffer_t*>(os_malloc(sizeof(DataBuffer_t) + kBlockSize));
    if (block == nullptr) {
        TRACE("osGetStructuresDataNonEFI", kErrorExit, "Error Allocating memory");
        return MemoryEnd_t::kNoRoom;
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
            return MemoryEnd_t::kUnreadable;
        }
        ScanBlock(block->Data(), kScanBase + offset, entry, &entryFound, dmiEntry, &dmiFound);
    }
    os_free(block);
    if (!entryFound || !dmiFound) {
        TRACE("osGetStructuresDataNonEFI", kErrorExit, "Both the SMI and DMI Structure not found");
        return MemoryEnd_t::kNoAnchors;
    }
    return MemoryEnd_t::kFound;
}

// The address that firmware wrote may belong to a device, and reading device registers has effects.
bool IsMemory(uint64_t address, uint64_t size) {
    const auto isMemory = CurrentHardware().IsMemory;
    return isMemory != nullptr && isMemory(address, size);
}

// Reads a table, if it is in memory. The caller releases the image.
MemoryEnd_t ReadTable(const char* function, uint64_t address, uint32_t length, SMBIOSTableImage_t** image) {
    if (!IsMemory(address, length)) {
        TRACE(function, kErrorExit, "The table isn't in memory, and is not read");
        return MemoryEnd_t::kElsewhere;
    }
    auto* table = static_cast<SMBIOSTableImage_t*>(os_malloc(sizeof(SMBIOSTableImage_t) + length));
    if (table == nullptr) {
        TRACE(function, kErrorExit, "Error allocating memory for main structure ... Exiting");
        return MemoryEnd_t::kNoRoom;
    }
    table->Length = length;
    // An image has the layout of a data buffer, so the table is read directly into it.
    static_assert(sizeof(SMBIOSTableImage_t) == sizeof(DataBuffer_t));
    const status_t status = GetSystemTables(address, 0, reinterpret_cast<DataBuffer_t*>(table));
    if (status != kSuccess) {
        TRACE(function, kErrorExit, "Error doing GetSystemTables ret = %d\n", static_cast<int>(status));
        os_free(table);
        return MemoryEnd_t::kUnreadable;
    }
    *image = table;
    return MemoryEnd_t::kFound;
}

// Reads the entry point at an address, if it is in memory, and requires its checksums.
MemoryEnd_t ReadEntryPoint(uint64_t address, size_t size, EntryPoint_t* point) {
    struct {
        uint32_t size;
        uint8_t bytes[kEntryPointSize32];
    } buffer = {static_cast<uint32_t>(size), {}};
    static_assert(kEntryPointSize64 <= kEntryPointSize32);
    if (!IsMemory(address, size)) return MemoryEnd_t::kElsewhere;
    if (GetSystemTables(address, 0, reinterpret_cast<DataBuffer_t*>(&buffer)) != kSuccess)
        return MemoryEnd_t::kUnreadable;
    const bool isOne = ParseEntryPoint(buffer.bytes, size, point) && point->checksumsFit;
    return isOne ? MemoryEnd_t::kFound : MemoryEnd_t::kNoEntryPoint;
}

// The bytes up to the end of the End-of-Table structure; all of them if there is none.
uint32_t LengthToEnd(std::span<const uint8_t> table) {
    for (const TableStructure_t& structure : ClWalk(table))
        if (structure.Type() == kEndOfTable)
            return static_cast<uint32_t>(structure.data - table.data()) + structure.size;
    return static_cast<uint32_t>(table.size());
}

// Reads the table of the entry point at an address.
MemoryEnd_t ReadFrom(uint64_t address, size_t size, uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
    constexpr char kName[] = "osGetStructuresDataByAddress";
    EntryPoint_t point;
    MemoryEnd_t end = ReadEntryPoint(address, size, &point);
    TRACE(kName, kInfo, "Entry point at 0x%llx: %s", static_cast<unsigned long long>(address),
          end == MemoryEnd_t::kFound ? "valid" : "not valid");
    if (end != MemoryEnd_t::kFound) return end;
    const auto length = static_cast<uint32_t>(std::min<size_t>(point.tableLength, kMostTableBytes));
    TRACE(kName, kInfo, "The table's length = 0x%x and address = 0x%llx", length,
          static_cast<unsigned long long>(point.tableAddress));
    end = ReadTable(kName, point.tableAddress, length, image);
    if (end != MemoryEnd_t::kFound) return end;
    if (point.lengthIsBound) (*image)->Length = LengthToEnd({(*image)->Data(), length});
    entry[6] = point.major;
    entry[7] = point.minor;
    dmiEntry[14] = point.revision;
    return end;
}

// The status of a method that ended so.
status_t StatusOf(MemoryEnd_t end) {
    switch (end) {
        case MemoryEnd_t::kFound: return kSuccess;
        case MemoryEnd_t::kNoRoom: return kNoMemory;
        default: return kFailure;
    }
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
MemoryEnd_t ScanMemory(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
    const MemoryEnd_t end = FindEntryPoints(entry, dmiEntry);
    if (end != MemoryEnd_t::kFound) return end;
    const uint32_t length = Number(dmiEntry + 6, 2);
    const uint32_t address = Number(dmiEntry + 8, 4);
    TRACE("osGetStructuresDataNonEFI", kInfo, "SMBIOS and DMI Table entry points found");
    TRACE("osGetStructuresDataNonEFI", kInfo, "The SMBIOS major version = 0x%x and minor version = 0x%x", entry[6],
          entry[7]);
    TRACE("osGetStructuresDataNonEFI", kInfo,
          "The DMI length = 0x%x and address = 0x%lx NumberofSMBIOSStructure = 0x%x", length,
          static_cast<unsigned long>(address), Number(dmiEntry + 12, 2));
    return ReadTable("osGetStructuresDataNonEFI", address, length, image);
}

status_t osGetStructuresDataNonEFI(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
    return StatusOf(ScanMemory(entry, dmiEntry, image));
}

status_t GetEntryAddresses(EntryAddresses_t* addresses, bool* refused) {
    *refused = false;
    const auto get = CurrentHardware().GetEntryAddresses;
    return get == nullptr ? kNotSupported : get(addresses, refused);
}

// The 64-bit entry point comes first, as the 32-bit one can't state every table. If both fail, returns the end of the
// last one.
MemoryEnd_t ReadByAddress(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
    EntryAddresses_t addresses;
    bool refused;
    const status_t status = GetEntryAddresses(&addresses, &refused);
    if (status != kSuccess) {
        TRACE("osGetStructuresDataByAddress", kErrorExit, "No addresses of entry points, status = %u", status);
        NoteRefusal(refused ? Refusal_t::kRights : Refusal_t::kOther);
        return status == kNoMemory ? MemoryEnd_t::kNoRoom
               : refused           ? MemoryEnd_t::kUnreadable
                                   : MemoryEnd_t::kNoAddresses;
    }
    MemoryEnd_t end = MemoryEnd_t::kNoEntryPoint;
    if (addresses.smbios3 != 0) end = ReadFrom(addresses.smbios3, kEntryPointSize64, entry, dmiEntry, image);
    if (addresses.smbios != 0 && end != MemoryEnd_t::kFound)
        end = ReadFrom(addresses.smbios, kEntryPointSize32, entry, dmiEntry, image);
    return end;
}

status_t osGetStructuresDataByAddress(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
    return StatusOf(ReadByAddress(entry, dmiEntry, image));
}
