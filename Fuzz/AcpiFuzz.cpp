// Fuzzes the reading of ACPI tables and of the segments in MCFG with a firmware-table service that returns any bytes.
// Input: how the service misbehaves (1 byte), a location in configuration space (4 bytes), the table.
#include <cstring>

#include "Fuzz/Fuzz.h"
#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"
#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/FERROXInternal.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"

static std::vector<uint8_t> answer;
static uint8_t faults;

// Replaces this machine's service. The table disappears, grows or shrinks between the two calls that read it.
static uint32_t GetTable(uint32_t, uint32_t, void* buffer, uint32_t size, bool*) {
    size_t now = answer.size();
    if (buffer != nullptr) {
        if ((faults & 1) != 0) now = 0;
        if ((faults & 2) != 0) now += 16;
        if ((faults & 4) != 0) now /= 2;
        if (now <= size) std::memcpy(buffer, answer.data(), std::min(now, answer.size()));
    }
    return static_cast<uint32_t>(now);
}

static void FetchTables() {
    DataBuffer_t* table = nullptr;
    if (GetACPITable("MCFG", &table) == kSuccess) {
        Require(table->Size <= answer.size());
        Require(std::memcmp(table->Data(), answer.data(), table->Size) == 0);
        os_FreeBlock(table);
    }
    uint32_t size = 0;
    if (GetACPITableEx("MCFG", nullptr, &size) != kSuccess) return;
    std::vector<uint8_t> block(sizeof(DataBuffer_t) + size);
    auto* buffer = reinterpret_cast<DataBuffer_t*>(block.data());
    buffer->Size = size;
    if (GetACPITableEx("MCFG", buffer, &size) == kSuccess) Require(size <= buffer->Size);
}

static void FindSegments(uint32_t location) {
    std::vector<SegBusInfo_t> segments(kMaxSegments);
    uint32_t count = 0;
    if (OSGetSegBusInfoWithCount(segments.data(), &count) == kSuccess) {
        Require(count > 0 && count <= kMaxSegments && 44 + 16 * size_t{count} <= answer.size());
        for (uint32_t index = 0; index < count; index++) Require(segments[index].SegmentCount == count);
    }
    uint64_t base = 0;
    if (OSGetPCIExCfgBaseAddr(&base, location) == kSuccess) Require(count > 0);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const HardwareServices_t machine = [] {
        HardwareServices_t services = {};
        services.GetFirmwareTable = GetTable;
        return services;
    }();
    UseHardware(machine);
    ClInput input(data, size);
    faults = input.Take<uint8_t>();
    const auto location = input.Take<uint32_t>();
    answer = input.Rest();
    FetchTables();
    FindSegments(location);
    return 0;
}
