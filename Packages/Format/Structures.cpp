#include "Packages/Format/Structures.h"

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

bool BeginsWithStructure(std::span<const uint8_t> bytes) {
    const TableStructure_t first = StructureAt(bytes.data(), static_cast<uint32_t>(bytes.size()), 0);
    if (first.size == 0 || first.Length() < kHeaderSize || first.size < first.Length() + 2u) return false;
    return first.data[first.size - 2] == 0 && first.data[first.size - 1] == 0;
}
