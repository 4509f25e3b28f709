// The decoder of Firmware Version Information (type 148).
#pragma once

#include "Sources/Decoders.h"

class ClSMBIOSType148 final : public ClSMBIOSType {
  public:
    explicit ClSMBIOSType148(uint32_t processorSignature) : ClSMBIOSType(148) {
        m_processorSignature = processorSignature;
    }

    void PrintStructure(const uint8_t* pData) override;
    // At most 100 characters of a string, with a blank for each byte that isn't printable ASCII.
    static std::string GetPrintableString(const char* text);
    // " (f1)": lowercase hexadecimal, zero-filled to `width` digits.
    static std::string GetHexSuffix(uint32_t value, uint32_t width);

    // Translators of a string into words. Most read a decimal number from its start and return "ERR" for a number
    // without a word and for a text without a number.
    std::string GetBoardTypeString(const char* text);  // sets BoardId
    std::string GetBoardRevString(const char* text);   // sets BoardRev; depends on BoardId
    std::string GetPMICString(const char* text);       // depends on both
    static std::string GetBootMode(const char* text);
    static std::string GetSecureBootStatus(const char* text);
    static std::string GetCadrelStatus(const char* text);
    static std::string GetCPUTurboStatus(const char* text);
    static std::string GetGfxTurboStatus(const char* text);
    static std::string GetMaxCState(const char* text);
    static std::string GetMaxPkgCState(const char* text);
    static std::string GetS0ix(const char* text);
    static std::string GetRC6(const char* text);
    // 1; 2 for a text without a number, with `out` as it was.
    static status_t GetCPUFlavorString(const char* text, std::string* out);
    static status_t GetMaxCoreCState(const char* text, std::string* out);

  private:
    // The layouts of a board's firmware and of a platform.
    void PrintStructureExt(const uint8_t* pData);
    // The layout whose keys come from the structure. 1; 5 when a value without a number ended the structure.
    status_t PrintStructureExtEx(const uint8_t* pData);

    // Set by the board's items, for the items after them and for the next structure.
    uint32_t BoardId = 0;
    uint32_t BoardRev = 0;
};
