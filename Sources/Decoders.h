// The decoder classes: one for each structure type, each but those without items implemented in the file of its type's
// number. A member beside PrintStructure gives the text of one field.
#pragma once

#include "Sources/SMBIOSType.h"
#include "Sources/VersionRecords.h"

class ClSMBIOSType0 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType1 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType2 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType3 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType4 final : public ClSMBIOSType {
  public:
    // Two rows of the family table depend on the processor.
    explicit ClSMBIOSType4(uint32_t processorSignature) { m_processorSignature = processorSignature; }
    void PrintStructure(const uint8_t* pData) override;

    Word_t GetProcessorFamilyString(uint16_t family) const;
    static Word_t GetProcessorStatusString(uint16_t status);
    static Word_t GetProcessorUpgradeString(uint16_t upgrade);
    static std::string GetProcessorCharacteristicsString(uint16_t characteristics);
};

class ClSMBIOSType7 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;

    // Kilobytes up to 1024, megabytes above, by the size's own granularity bit.
    static std::string GetCacheSizeString(uint16_t size);
    // The types of the set bits, joined by ", "; "None" for none.
    static std::string GetCacheMemoryTypeString(uint16_t types);
    static Word_t GetAssociativityString(uint8_t associativity);
};

class ClSMBIOSType8 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;

    static Word_t GetConnectorTypeString(uint8_t type);
    static Word_t GetPortTypeString(uint8_t type);
};

class ClSMBIOSType9 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;

    static Word_t GetSlotTypeString(uint8_t type);
    static Word_t GetSlotDataBusWidthString(uint8_t width);
    // The characteristics of the set bits, joined by ", "; "None" for 0.
    static std::string GetSlotCharacteristicsString(uint8_t characteristics);
    // The same for the second byte of characteristics.
    static std::string GetSlotCharacteristics2String(uint8_t characteristics);
};

class ClSMBIOSType10 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType11 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType12 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType13 final : public ClSMBIOSType {
  public:
    // The version of the table, which decides whether it holds the flags.
    ClSMBIOSType13(uint8_t smbiosMajor, uint8_t smbiosMinor) : m_smbiosMajor(smbiosMajor), m_smbiosMinor(smbiosMinor) {}
    void PrintStructure(const uint8_t* pData) override;

    bool IsVersion21OrLater() const;
    // The name of a lower-case language string; "Unknown Language" for one without a row, and for null.
    static std::string GetLanguageName(const char* ccStr);

  private:
    uint8_t m_smbiosMajor;
    uint8_t m_smbiosMinor;
};

class ClSMBIOSType14 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;

    // Adds the items of the group's members: of every structure of the first of its types that the table holds.
    void GetComponentInfo(const uint8_t* pData);

  private:
    // What all members of one type show. Groups by the thousand may name a type, and it shows the same in each.
    struct Members_t {
        bool isKnown, arePresent;
        size_t first, count;  // among m_versions
    };
    struct NamedVersion_t {
        const char* name;
        VersionRecord_t record;
    };

    const Members_t& MembersOf(uint8_t type);
    // Keeps what one member shows, a record's body of whatever type, read as a firmware version structure.
    void GetBiosVersionInfo(const uint8_t* pData);

    Members_t m_members[256] = {};
    std::vector<NamedVersion_t> m_versions;
};

class ClSMBIOSType15 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType16 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
    static Word_t GetLocationString(uint8_t location);
};

class ClSMBIOSType17 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
    static ClText GetFormFactorString(uint8_t formFactor);
    static ClText GetMemoryTypeString(uint8_t memoryType);
    static ClText GetTypeDetailString(uint16_t typeDetail);
    // The text of a form factor or a memory type that has no name.
    static std::string GetUnknownValueString(uint8_t value);
    // A part number in valid UTF-8, with a point in the place of each control character.
    static ClText GetCleanPartNumber(std::string_view partNumber);
};

class ClSMBIOSType18 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType19 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType20 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType21 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType22 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType23 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType24 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType25 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType26 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType27 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType28 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType29 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType30 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType32 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType33 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType34 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType35 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType36 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType37 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType38 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType39 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType41 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType130 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType131 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType148 final : public ClSMBIOSType {
  public:
    explicit ClSMBIOSType148(uint32_t processorSignature);

    void PrintStructure(const uint8_t* pData) override;
    // A string as it shows: at most 100 characters, with a blank for each byte that isn't printable ASCII.
    static std::string GetPrintableString(const char* text);
    // " (f1)": lowercase hexadecimal, zero-filled to `width` digits.
    static std::string GetHexSuffix(uint32_t value, uint32_t width);

    // Translators of a string into words. Most read a decimal number from its start and give "ERR" for a number
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

    // What the board's items left, for the items behind them and for the next structure.
    uint32_t BoardId = 0;
    uint32_t BoardRev = 0;
};

class ClSMBIOSType221 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;

  private:
    void GetBiosVersionInfo(const uint8_t* pData);
};

class ClSMBIOSType222 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;

  private:
    void GetCheckPointInfo(const uint8_t* pData);
};

// Types whose structures give no items, not even a title.
class ClSMBIOSTypeWithoutItems : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t*) final {}
};
class ClSMBIOSType5 final : public ClSMBIOSTypeWithoutItems {};
class ClSMBIOSType6 final : public ClSMBIOSTypeWithoutItems {};
class ClSMBIOSType31 final : public ClSMBIOSTypeWithoutItems {};
class ClSMBIOSType40 final : public ClSMBIOSTypeWithoutItems {};
class ClSMBIOSType42 final : public ClSMBIOSTypeWithoutItems {};
class ClSMBIOSType126 final : public ClSMBIOSTypeWithoutItems {};
class ClSMBIOSType127 final : public ClSMBIOSTypeWithoutItems {};
