// What is wrong with a table, by the rules of Rules.inc.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "Packages/Analysis/Rules.h"
#include "Packages/Format/Structures.h"
#include "Packages/Standard/Facts.h"

struct CheckedTable_t {
    std::span<const uint8_t> bytes;
    uint16_t version = 0x0300;  // as 0304h for 3.4
    bool checksumsFit = true;   // of the entry point
    uint32_t missing = 0;       // bytes by which the table is shorter than its entry point says
    uint16_t structures = 0;    // what the entry point states: how many, and the size of the largest; 0 for nothing
    uint16_t largest = 0;
};

// The texts live for the call that reports the finding.
struct Finding_t {
    RuleId_t rule;
    const TableStructure_t* structure;  // null for a finding on the table as a whole
    std::string_view key;               // of the fact that is wrong; empty for the structure as a whole
    uint32_t offset;                    // of the wrong bytes in the table
    uint32_t size;                      // 0 if the finding is on the structure or the table as a whole
    std::string_view found;
    std::string_view expected;  // may be empty
};

using ReportFinding_t = std::function<void(const Finding_t&)>;

// Checks a table, and reports the findings one by one, in the order of the structures, as a table may have millions.
// Needs memory for each structure, but none for each finding.
void CheckTable(const CheckedTable_t& table, const ReportFinding_t& report);

// The same for a caller that reads the facts of all structures anyway: Begin, Take with each fact, and End for each
// structure, then Finish. Table and report must outlive it.
class ClTableCheck {
  public:
    ClTableCheck(const CheckedTable_t& table, const ReportFinding_t& report);
    ~ClTableCheck();
    ClTableCheck(const ClTableCheck&) = delete;
    ClTableCheck& operator=(const ClTableCheck&) = delete;

    // How the facts have to be read.
    FactOptions_t Options() const;
    // `facts` has begun with the structure. Both must live until End.
    void Begin(const TableStructure_t& structure, const ClFacts& facts);
    void Take(const Fact_t& fact);
    void End();
    void Finish();

  private:
    class ClCheck;
    std::unique_ptr<ClCheck> m_check;
};

// Returns the least Length of a structure of this type, by the first level of the standard that has it. A header's for
// an unknown type.
uint32_t LeastLength(uint8_t type);
