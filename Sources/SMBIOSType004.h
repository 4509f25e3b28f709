// The decoder of Processor Information (type 4).
#pragma once

#include "Sources/Decoders.h"

class ClSMBIOSType4 final : public ClSMBIOSType {
  public:
    // Two rows of the family table depend on the processor.
    explicit ClSMBIOSType4(uint32_t processorSignature) : ClSMBIOSType(4) { m_processorSignature = processorSignature; }
    void PrintStructure(const uint8_t* pData) override;

    std::string_view GetProcessorFamilyString(uint16_t family) const;
    static std::string_view GetProcessorStatusString(uint16_t status);
    static std::string_view GetProcessorUpgradeString(uint16_t upgrade);
    static std::string GetProcessorCharacteristicsString(uint16_t characteristics);
};
