#include "Packages/Format/Structures.h"

#include <algorithm>
#include <cstring>

TableStructure_t StructureAt(const uint8_t* table, uint32_t length, uint32_t offset) {
    const uint8_t* start = table + offset;
    const uint32_t atHand = length - offset;
    if (atHand < kHeaderSize) return {start, 0};
    // The first two adjacent NULs after the formatted area end the structure.
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

// Strings of real tables have few control characters; other data is full of them.
static bool IsPlausible(const TableStructure_t& structure) {
    constexpr uint8_t kLastOfStandard = 46, kBlank = 0x20;
    const uint8_t type = structure.Type(), length = structure.Length();
    if (length < kHeaderSize || (type == kEndOfTable && length != kHeaderSize)) return false;
    const auto controls = std::count_if(structure.data + length, structure.data + structure.size,
                                        [](uint8_t byte) { return byte != 0 && byte < kBlank; });
    return controls <= (type <= kLastOfStandard ? (structure.size - length) / 4 : 0);
}

bool LooksLikeTable(std::span<const uint8_t> bytes) {
    constexpr int kEnough = 3;
    int plausible = 0;
    for (const TableStructure_t& structure : ClWalk(bytes)) {
        // A table may be cut short, but not within its first structure.
        if (!structure.IsWhole()) return plausible > 0;
        if (!IsPlausible(structure)) return false;
        if (++plausible == kEnough) break;
    }
    return plausible > 0;
}
