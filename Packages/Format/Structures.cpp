#include "Packages/Format/Structures.h"

#include <algorithm>
#include <cstring>

TableStructure_t StructureAt(const uint8_t* table, uint32_t length, uint32_t offset) {
    const uint8_t* start = table + offset;
    const uint32_t atHand = length - offset;
    if (atHand < kHeaderSize) return {start, 0};
    // Two NULs side by side end a structure, wherever Length puts the begin of the search.
    uint32_t end = start[1];
    while (end + 1 < atHand) {
        const auto* nul = static_cast<const uint8_t*>(std::memchr(start + end, 0, atHand - 1 - end));
        if (nul == nullptr) break;
        end = static_cast<uint32_t>(nul - start);
        if (nul[1] == 0) return {start, end + 2};
        end++;
    }
    return {start, atHand};
}

// Firmware's strings hold a control character now and then, but what is no string is full of them.
static bool IsPlausible(const TableStructure_t& structure) {
    constexpr uint8_t kLastOfStandard = 46, kBlank = 0x20;
    const uint8_t type = structure.Type(), length = structure.Length();
    if (length < kHeaderSize || (type == kEndOfTable && length != kHeaderSize)) return false;
    const auto controls = std::count_if(structure.data + length, structure.data + structure.size,
                                        [](uint8_t byte) { return byte != 0 && byte < kBlank; });
    return controls <= (type <= kLastOfStandard ? (structure.size - length) / 4 : 0);
}

bool LooksLikeTable(std::span<const uint8_t> bytes) {
    constexpr int kLookedAt = 3;
    const auto length = static_cast<uint32_t>(bytes.size());
    uint32_t offset = 0;
    for (int place = 0; place < kLookedAt && offset < length; place++) {
        const TableStructure_t structure = StructureAt(bytes.data(), length, offset);
        const bool isCut = structure.size == 0 || !structure.IsWhole();
        // A table may be cut short, but not within its first structure.
        if (isCut) return place > 0;
        if (!IsPlausible(structure)) return false;
        if (structure.Type() == kEndOfTable) return true;
        offset += structure.size;
    }
    return offset != 0;
}
