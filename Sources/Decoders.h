// The decoder classes: one for each structure type, each implemented in the file of its type's number. A member
// beside PrintStructure gives the text of one field.
#pragma once

#include "Sources/SMBIOSType.h"

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

class ClSMBIOSType15 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
};

class ClSMBIOSType16 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
    static std::string GetLocationString(uint8_t location);
};

class ClSMBIOSType17 final : public ClSMBIOSType {
  public:
    void PrintStructure(const uint8_t* pData) override;
    static std::string GetFormFactorString(uint8_t formFactor);
    static std::string GetMemoryTypeString(uint8_t memoryType);
    static std::string GetTypeDetailString(uint16_t typeDetail);
    // The text of a form factor or a memory type that has no name.
    static std::string GetUnknownValueString(uint8_t value);
    // A part number in valid UTF-8, with a point in the place of each control character.
    static std::string GetCleanPartNumber(std::string_view partNumber);
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
