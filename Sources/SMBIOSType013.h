// The decoder of BIOS Language Information (type 13).
#pragma once

#include "Sources/Decoders.h"

class ClSMBIOSType13 final : public ClSMBIOSType {
  public:
    // The version of the table decides whether it has the flags.
    ClSMBIOSType13(uint8_t smbiosMajor, uint8_t smbiosMinor)
        : ClSMBIOSType(13), m_smbiosMajor(smbiosMajor), m_smbiosMinor(smbiosMinor) {}
    void PrintStructure(const uint8_t* pData) override;

    bool IsVersion21OrLater() const;
    // The name of a lower-case language string; "Unknown Language" for one without a row, and for null.
    static std::string GetLanguageName(const char* ccStr);

  private:
    uint8_t m_smbiosMajor;
    uint8_t m_smbiosMinor;
};
