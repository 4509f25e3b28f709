// The decoder of Memory Device (type 17).
#pragma once

#include "Sources/Decoders.h"

class ClSMBIOSType17 final : public ClSMBIOSType {
  public:
    ClSMBIOSType17() : ClSMBIOSType(17) {}
    void PrintStructure(const uint8_t* pData) override;
    static ClText GetFormFactorString(uint8_t formFactor);
    static ClText GetMemoryTypeString(uint8_t memoryType);
    static ClText GetTypeDetailString(uint16_t typeDetail);
    // The text of a form factor or a memory type that has no name.
    static std::string GetUnknownValueString(uint8_t value);
    // A part number in valid UTF-8, with a point in the place of each control character.
    static ClText GetCleanPartNumber(std::string_view partNumber);
};
