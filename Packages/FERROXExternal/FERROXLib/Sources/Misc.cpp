// ACPI tables, read from the firmware tables of the machine in use, and the PCI segments of the MCFG table.
#include <algorithm>
#include <cstdio>

#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/FERROXInternal.h"
#include "Packages/OS/FirmwareTables.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"

#define TRACE(function, level, ...) FERROX_TRACE("Misc", function, level, __VA_ARGS__)

namespace {

// Returns the table's number, which has the name's first letter in the low byte.
uint32_t TableIdentifier(const char* name) {
    uint32_t identifier = 0;
    for (int letter = 3; letter >= 0; --letter) identifier = identifier << 8 | static_cast<uint8_t>(name[letter]);
    return identifier;
}

bool IsTableName(const char* name) { return os_strlen(name) == 4; }

// Reads the table into `buffer` if it fits. Returns its size, which may differ from that of an earlier call; 0 if there
// is no such table.
uint32_t Fetch(const char* name, uint8_t* buffer, uint32_t room) {
    const auto get = CurrentHardware().GetFirmwareTable;
    bool refused = false;
    NoteRefusal(Refusal_t::kOther);  // a recorded machine may note another
    const uint32_t size = get == nullptr ? 0 : get(kACPIProvider, TableIdentifier(name), buffer, room, &refused);
    if (refused) NoteRefusal(Refusal_t::kRights);
    return size;
}

status_t TooSmall() {
    TRACE("OSGetACPITableEx", kError, " OSGetACPITable Status = 0x%x", kBadValue);
    return kBadValue;
}

// Offset and size of MCFG's entries. Source: PCI Firmware Specification, MCFG table.
constexpr uint32_t kMCFGHead = 44;
constexpr uint32_t kMCFGEntry = 16;

uint32_t Number32(const uint8_t* bytes) {
    return uint32_t{bytes[0]} | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16 | uint32_t{bytes[3]} << 24;
}

// Returns the number of entries by the table's own length, but at most as many as it has, and at most kMaxSegments.
uint32_t CountSegments(const uint8_t* mcfg, uint32_t size) {
    if (size < kMCFGHead) return 0;
    const uint32_t length = std::min(Number32(mcfg + 4), size);
    return length < kMCFGHead ? 0 : std::min((length - kMCFGHead) / kMCFGEntry, kMaxSegments);
}

}  // namespace

// ---- ACPI tables

status_t OSGetACPITable(const char* name, DataBuffer_t** table) {
    if (name == nullptr || table == nullptr) return kNullPointer;
    if (!IsTableName(name)) {
        TRACE("OSGetACPITable", kError, " OSGetACPITable  ACPI table Name not correct Status = 0x%x", kBadValue);
        return kBadValue;
    }
    const uint32_t size = Fetch(name, nullptr, 0);
    if (size == 0) {
        TRACE("OSGetACPITable", kError, "Error in reading ACPI %s table", name);
        return kFailure;
    }
    auto* block = static_cast<DataBuffer_t*>(os_malloc(sizeof(DataBuffer_t) + size_t{size}));
    if (block == nullptr) {
        TRACE("OSGetACPITable", kError, "Error in Memory allocation ");
        return kNoMemory;
    }
    block->Size = Fetch(name, block->Data(), size);
    if (block->Size > size) {
        TRACE("OSGetACPITable", kError, "Error in reading ACPI %s table", name);
        os_free(block);
        return kFailure;
    }
    *table = block;
    return kSuccess;
}

status_t OSGetACPITableEx(const char* name, DataBuffer_t* buffer, uint32_t* size) {
    if (name == nullptr || size == nullptr) return kNullPointer;
    if (!IsTableName(name)) {
        TRACE("OSGetACPITableEx", kError, " OSGetACPITable  ACPI table Name not correct Status = 0x%x", kBadValue);
        return kBadValue;
    }
    *size = Fetch(name, nullptr, 0);
    if (*size == 0) {
        TRACE("OSGetACPITableEx", kError, "Error in reading ACPI %s table", name);
        return kFailure;
    }
    if (buffer == nullptr) return kSuccess;
    if (buffer->Size < *size) return TooSmall();
    *size = Fetch(name, buffer->Data(), buffer->Size);
    return *size > buffer->Size ? TooSmall() : kSuccess;
}

// ---- PCI segments

uint32_t FillSegments(const uint8_t* mcfg, uint32_t size, SegBusInfo_t* segments) {
    const uint32_t count = CountSegments(mcfg, size);
    for (uint32_t index = 0; index < count; ++index) {
        const uint8_t* entry = mcfg + kMCFGHead + size_t{index} * kMCFGEntry;
        SegBusInfo_t& segment = segments[index];
        segment.BaseAddress = uint64_t{Number32(entry + 4)} << 32 | Number32(entry);
        segment.Segment = uint32_t{entry[8]} | uint32_t{entry[9]} << 8;
        segment.StartBus = entry[10];
        segment.EndBus = entry[11];
        segment.SegmentCount = count;
    }
    return count;
}

status_t OSGetSegBusInfoWithCount(SegBusInfo_t* segments, uint32_t* count) {
    if (count == nullptr) return kBadValue;
    if (segments == nullptr) return kNullPointer;
    uint32_t size = 0;
    status_t status = OSGetACPITableEx("MCFG", nullptr, &size);
    if (status != kSuccess) {
        std::fputs("Error getting ACPI table size\n", stdout);
        std::fflush(stdout);  // keeps the order if the host writes by other means
        return status;
    }
    auto* mcfg = static_cast<DataBuffer_t*>(os_malloc(sizeof(DataBuffer_t) + size_t{size}));
    if (mcfg == nullptr) return kNoMemory;
    mcfg->Size = size;
    status = OSGetACPITableEx("MCFG", mcfg, &size);
    if (status != kSuccess) {
        TRACE("OSGetSegBusInfoWithCount", kError, "ERROR in OSGetSegBusInfo status =  %d", static_cast<int>(status));
        os_free(mcfg);
        return status;
    }
    *count = FillSegments(mcfg->Data(), size, segments);
    TRACE("OSGetSegBusInfoWithCount", kInfo, "Total Number of segments = %d", static_cast<int>(*count));
    os_free(mcfg);
    if (*count == 0) {
        TRACE("OSGetSegBusInfoWithCount", kErrorExit,
              "OSGetSegBusInfo: No PCI segment found. This might not be a Selvane based system!!\n");
        return kFailure;
    }
    return kSuccess;
}

status_t OSGetSegBusInfo(SegBusInfo_t* segments) {
    uint32_t count = 0;
    return OSGetSegBusInfoWithCount(segments, &count);
}

status_t OSGetPCIExCfgBaseAddr(uint64_t* base, uint32_t location) {
    SegBusInfo_t segments[kMaxSegments] = {};
    uint32_t count = 0;
    const status_t status = OSGetSegBusInfoWithCount(segments, &count);
    if (status != kSuccess) {
        TRACE("OSGetPCIExCfgBaseAddr", kError, "ERROR in OSGetPCIExCgfBaseAddr status =  %d", static_cast<int>(status));
        return status;
    }
    // Uses the first entry of the segment only.
    const SegBusInfo_t* const end = segments + count;
    const SegBusInfo_t* const found = std::find_if(
        segments, segments + count, [&](const SegBusInfo_t& each) { return each.Segment == location >> 16; });
    if (found == end) return kBadValue;
    TRACE("OSGetPCIExCfgBaseAddr", kInfo, "Start Bus =  %d", static_cast<int>(found->StartBus));
    TRACE("OSGetPCIExCfgBaseAddr", kInfo, "End Bus =  %d", static_cast<int>(found->EndBus));
    const uint32_t bus = location & 0xFF;
    if (bus < found->StartBus || bus > found->EndBus) return kBadValue;
    *base = found->BaseAddress;
    return kSuccess;
}

status_t ReadExtendedSpace(bool hasHypervisor, ExtendedRead_t read, uint32_t location, uint32_t offset,
                           DataBuffer_t* buffer) {
    if (hasHypervisor) {
        TRACE("OSPCIExRead", kInfo, "HyperV enabled.");
        if (Segment(location) != 0) return kNotSupported;
        if (uint64_t{offset} + buffer->Size > 256) return kBadValue;
        return CurrentHardware().OSPCIRead(location, offset, buffer);
    }
    uint64_t base = 0;
    const status_t status = OSGetPCIExCfgBaseAddr(&base, location);
    if (status != kSuccess) {
        TRACE("OSPCIExRead", kError, "OSPCIExRead: myPCIExBaseAddr read failed. status = %d", static_cast<int>(status));
        return status;
    }
    return buffer->Size == 0 ? kBadValue : read(base, location, offset, buffer);
}
