// The rows of one structure: its facts, and its strings.
#pragma once

#include <string>
#include <string_view>

#include "Packages/Standard/Facts.h"
#include "Tools/quorlin/Rows/Files.h"

class ClFactRows {
  public:
    explicit ClFactRows(ClRowFiles& files) : m_files(files) {}

    void Write(uint64_t record, const TableStructure_t& structure, uint32_t instance, const FactOptions_t& options);

  private:
    void WriteFacts(uint64_t record, const TableStructure_t& structure, uint32_t instance);
    void AddToList(const Fact_t& fact);
    std::string_view TextOf(const Fact_t& fact);
    void WriteStrings(uint64_t record, const TableStructure_t& structure);

    ClRowFiles& m_files;
    ClFacts m_facts;
    std::string m_text, m_list;
    int m_record = -1;  // of the list
};
