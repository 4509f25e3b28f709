#include "Tools/quorlin/Recover.h"

#include <cstdio>
#include <cstring>

#include "Packages/Analysis/Check.h"
#include "Packages/Format/Structures.h"

namespace {

constexpr size_t kNowhere = static_cast<size_t>(-1);

// Finds the first double NUL from a place on. Calls with rising places look at no byte twice, so that a large file
// without any is searched only once.
class ClStringEnds {
  public:
    explicit ClStringEnds(std::span<const uint8_t> table) : m_table(table) {}

    size_t From(size_t place) {
        if (place >= m_from && place <= m_end) return m_end;
        m_from = place;
        m_end = kNowhere;
        while (place + 1 < m_table.size()) {
            const void* nul = std::memchr(&m_table[place], 0, m_table.size() - 1 - place);
            if (nul == nullptr) break;
            place = static_cast<size_t>(static_cast<const uint8_t*>(nul) - m_table.data());
            if (m_table[place + 1] == 0) {
                m_end = place;
                break;
            }
            place++;
        }
        return m_end;
    }

  private:
    std::span<const uint8_t> m_table;
    size_t m_from = 1, m_end = 0;  // nothing looked at so far
};

class ClRecovery {
  public:
    explicit ClRecovery(std::span<const uint8_t> table) : m_table(table), m_ends(table), m_laterEnds(table) {}

    // The size of a plausible structure at `offset`, or 0.
    size_t SizeAt(size_t offset) { return SizeAt(offset, m_ends); }
    // Whether structures go on at `offset`. One plausible structure may be chance, two in a row hardly are.
    bool GoesOn(size_t offset) {
        const size_t size = SizeAt(offset);
        if (size == 0) return false;
        const size_t next = offset + size;
        return m_table[offset] == kEndOfTable || next == m_table.size() || SizeAt(next, m_laterEnds) != 0;
    }

  private:
    size_t SizeAt(size_t offset, ClStringEnds& ends) const {
        constexpr size_t kHeader = 4;
        if (m_table.size() - offset < kHeader) return 0;
        const uint8_t length = m_table[offset + 1];
        if (length < kHeader || length < LeastLength(m_table[offset])) return 0;
        const size_t end = ends.From(offset + length);
        return end == kNowhere ? 0 : end + 2 - offset;
    }

    std::span<const uint8_t> m_table;
    ClStringEnds m_ends, m_laterEnds;
};

}  // namespace

Recovered_t RecoverTable(std::span<const uint8_t> table) {
    Recovered_t recovered;
    ClRecovery recovery(table);
    for (size_t offset = 0; offset < table.size();) {
        if (const size_t size = recovery.SizeAt(offset); size != 0) {
            recovered.table.insert(recovered.table.end(), &table[offset], &table[offset] + size);
            if (table[offset] == kEndOfTable) break;
            offset += size;
            continue;
        }
        size_t next = offset + 1;
        while (next < table.size() && !recovery.GoesOn(next)) next++;
        recovered.skipped.push_back({static_cast<uint32_t>(offset), static_cast<uint32_t>(next - offset)});
        offset = next;
    }
    return recovered;
}

std::string Recovered_t::Remark() const {
    std::string remark;
    for (const Skipped_t& bytes : skipped) {
        char text[64];
        std::snprintf(text, sizeof text, "%s %u bytes at offset %Xh", remark.empty() ? "skipped" : ",", bytes.size,
                      bytes.offset);
        remark += text;
    }
    return remark;
}
