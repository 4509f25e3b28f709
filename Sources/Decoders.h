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
