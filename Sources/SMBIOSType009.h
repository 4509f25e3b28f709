// The decoder of System Slots (type 9).
#pragma once

#include "Sources/Decoders.h"

class ClSMBIOSType9 final : public ClSMBIOSType {
  public:
    ClSMBIOSType9() : ClSMBIOSType(9) {}
    void PrintStructure(const uint8_t* pData) override;

    static std::string_view GetSlotTypeString(uint8_t type);
    static std::string_view GetSlotDataBusWidthString(uint8_t width);
    // The characteristics of the set bits, joined by ", "; "None" for 0.
    static std::string GetSlotCharacteristicsString(uint8_t characteristics);
    // The same for the second byte of characteristics.
    static std::string GetSlotCharacteristics2String(uint8_t characteristics);
};
