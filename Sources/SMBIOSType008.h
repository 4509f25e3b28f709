// The decoder of Port Connector Information (type 8).
#pragma once

#include "Sources/Decoders.h"

class ClSMBIOSType8 final : public ClSMBIOSType {
  public:
    ClSMBIOSType8() : ClSMBIOSType(8) {}
    void PrintStructure(const uint8_t* pData) override;
    static Word_t GetConnectorTypeString(uint8_t type);
    static Word_t GetPortTypeString(uint8_t type);
};
