// The decoder of Port Connector Information (type 8).
#pragma once

#include "Sources/Decoders.h"

class ClSMBIOSType8 final : public ClSMBIOSType {
  public:
    ClSMBIOSType8() : ClSMBIOSType(8) {}
    void PrintStructure(const uint8_t* pData) override;
    static std::string_view GetConnectorTypeString(uint8_t type);
    static std::string_view GetPortTypeString(uint8_t type);
};
