// Iterates over the structures of a table's bytes, up to and including End-of-Table, or to the last whole header.
#pragma once

#include <cstddef>
#include <span>

#include "Packages/Format/Structures.h"

class ClWalk {
  public:
    explicit ClWalk(std::span<const uint8_t> table) : m_table(table) {}

    class ClIterator {
      public:
        ClIterator(std::span<const uint8_t> table, uint32_t offset) : m_table(table) { Find(offset); }
        const TableStructure_t& operator*() const { return m_structure; }
        ClIterator& operator++() {
            if (m_structure.Type() == kEndOfTable)
                m_structure.size = 0;
            else
                Find(static_cast<uint32_t>(m_structure.data - m_table.data()) + m_structure.size);
            return *this;
        }
        bool operator!=(std::nullptr_t) const { return m_structure.size != 0; }

      private:
        void Find(uint32_t offset) {
            const auto length = static_cast<uint32_t>(m_table.size());
            m_structure = offset < length ? StructureAt(m_table.data(), length, offset) : TableStructure_t{nullptr, 0};
        }

        std::span<const uint8_t> m_table;
        TableStructure_t m_structure = {};
    };

    ClIterator begin() const { return {m_table, 0}; }
    std::nullptr_t end() const { return nullptr; }

  private:
    std::span<const uint8_t> m_table;
};
