// The decoder of Physical Memory Array (type 16).
#pragma once

#include "Sources/Decoders.h"

class ClSMBIOSType16 final : public ClSMBIOSType {
  public:
    ClSMBIOSType16() : ClSMBIOSType(16) {}
    void PrintStructure(const uint8_t* pData) override;
    static std::string_view GetLocationString(uint8_t location);
};
