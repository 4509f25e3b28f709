#include "Tools/quorlin/Csv.h"

#include "Tools/quorlin/Text.h"

void ClCsv::Row(std::initializer_list<std::string_view> cells) {
    const char* separator = "";
    for (const std::string_view cell : cells) {
        m_output << separator;
        separator = ",";
        m_cell.clear();
        AppendPrintable(m_cell, cell);
        if (m_cell.find_first_of("\",") == m_cell.npos) {
            m_output << m_cell;
            continue;
        }
        for (size_t quote = 0; (quote = m_cell.find('"', quote)) != m_cell.npos; quote += 2)
            m_cell.insert(quote, 1, '"');
        m_output << "\"" << m_cell << "\"";
    }
    m_output << "\r\n";
}
