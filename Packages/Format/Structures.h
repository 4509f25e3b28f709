// Structures of a table, as the SMBIOS standard lays them out: header, formatted area, strings, double NUL.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

inline constexpr uint32_t kHeaderSize = 4;   // type, length, handle
inline constexpr uint8_t kEndOfTable = 127;  // the type that ends a table

// One structure of a table. `data` has `size` bytes: up to and including the double NUL after its strings, or up to the
// end of the table if that comes first.
struct TableStructure_t {
    const uint8_t* data;
    uint32_t size;

    uint8_t Type() const { return data[0]; }
    uint8_t Length() const { return data[1]; }
    uint16_t Handle() const { return static_cast<uint16_t>(data[2] | data[3] << 8); }
    // Whether both the formatted area and the double NUL are there.
    bool IsWhole() const { return size >= Length() + 2u && data[size - 1] == 0 && data[size - 2] == 0; }
};

// Returns the structure at `offset` of a table of `length` bytes. Its size is 0 if no whole header is left.
TableStructure_t StructureAt(const uint8_t* table, uint32_t length, uint32_t offset);

// Walks a table with a range-based for. The walk ends after the first End-of-Table structure, or before a header that
// the table's end cuts off. The table must outlive the walk.
class ClWalk {
  public:
    explicit ClWalk(std::span<const uint8_t> table) : m_table(table) {}

    class ClIterator {
      public:
        explicit ClIterator(std::span<const uint8_t> table) : m_table(table) { Find(0); }
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

    ClIterator begin() const { return ClIterator(m_table); }
    std::nullptr_t end() const { return nullptr; }

  private:
    std::span<const uint8_t> m_table;
};

// Whether `bytes` begin with at least one plausible structure: with a header, a formatted area, and strings without
// control characters. Any file has bytes that could be read as a structure.
bool LooksLikeTable(std::span<const uint8_t> bytes);
