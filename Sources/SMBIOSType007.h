// The decoder of Cache Information (type 7).
#pragma once

#include "Sources/Decoders.h"

class ClSMBIOSType7 final : public ClSMBIOSType {
  public:
    ClSMBIOSType7() : ClSMBIOSType(7) {}
    void PrintStructure(const uint8_t* pData) override;

    // Kilobytes up to 1024, megabytes above, by the size's own granularity bit.
    static std::string GetCacheSizeString(uint16_t size);
    // The types of the set bits, joined by ", "; "None" for none.
    static std::string GetCacheMemoryTypeString(uint16_t types);
    static std::string_view GetAssociativityString(uint8_t associativity);
};
