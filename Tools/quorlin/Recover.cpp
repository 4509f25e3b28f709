#include "Tools/quorlin/Recover.h"

#include <cstdio>

#include "Packages/Format/Structures.h"
#include "Tools/quorlin/Standard.h"

namespace {

// The size of a plausible structure at the begin of `bytes`, or 0.
uint32_t PlausibleSize(std::span<const uint8_t> bytes) {
    if (!BeginsWithStructure(bytes) || bytes[1] < MinimumLength(bytes[0])) return 0;
    return StructureAt(bytes.data(), static_cast<uint32_t>(bytes.size()), 0).size;
}

// Whether structures go on at `bytes`: one bad guess is easily made, two in a row are not.
bool GoesOn(std::span<const uint8_t> bytes) {
    const uint32_t first = PlausibleSize(bytes);
    if (first == 0) return false;
    const std::span<const uint8_t> rest = bytes.subspan(first);
    return bytes[0] == kEndOfTable || rest.empty() || PlausibleSize(rest) != 0;
}

}  // namespace

Recovered_t RecoverTable(std::span<const uint8_t> table) {
    Recovered_t recovered;
    for (size_t offset = 0; offset < table.size();) {
        const std::span<const uint8_t> rest = table.subspan(offset);
        if (const uint32_t size = PlausibleSize(rest); size != 0) {
            recovered.table.insert(recovered.table.end(), rest.begin(), rest.begin() + size);
            if (rest[0] == kEndOfTable) break;
            offset += size;
            continue;
        }
        size_t next = 1;
        while (next < rest.size() && !GoesOn(rest.subspan(next))) next++;
        recovered.skipped.push_back({static_cast<uint32_t>(offset), static_cast<uint32_t>(next)});
        offset += next;
    }
    return recovered;
}

std::string Recovered_t::Remark() const {
    std::string remark;
    for (const Skipped_t& bytes : skipped) {
        char text[64];
        std::snprintf(text, sizeof text, "%s %u bytes at offset %Xh", remark.empty() ? "skipped" : ",", bytes.size,
                      bytes.offset);
        remark += text;
    }
    return remark;
}
