// The rows of one structure: its facts, and its strings.
#pragma once

#include <string>
#include <string_view>

#include "Packages/Analysis/Check.h"
#include "Tools/quorlin/Rows/Files.h"

class ClFactRows {
  public:
    explicit ClFactRows(ClRowFiles& files) : m_files(files) {}

    // `record` is the first cell of each row. The check takes the facts as they are read.
    void Write(std::string_view record, const TableStructure_t& structure, uint32_t instance, ClTableCheck& check);

  private:
    void WriteFacts(const TableStructure_t& structure, uint32_t instance, ClTableCheck& check);
    void AddToList(const Fact_t& fact);
    std::string_view TextOf(const Fact_t& fact);
    void WriteStrings(const TableStructure_t& structure);

    ClRowFiles& m_files;
    ClFacts m_facts;
    std::string m_begin;  // of all rows of the structure: record and handle
    std::string m_text, m_list;
    int m_record = -1;  // of the list
};
