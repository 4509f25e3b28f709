// Seeks many texts at once.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class ClSeeker {
  public:
    static constexpr size_t kLeast = 6, kMost = 256;

    // Adds a text of kLeast bytes or more. Of a longer one than kMost, the begin is sought. The pseudonym of the first
    // of equal texts counts.
    void Add(std::string_view text, std::string_view pseudonym);
    // Must be called after the last Add.
    void Prepare();
    bool IsEmpty() const { return m_entries.empty(); }
    // False if no text begins with these kLeast bytes, the first one highest. Sometimes true though none does.
    bool MayBegin(uint64_t first) const { return (m_filter[Hash(first) / 64] >> Hash(first) % 64 & 1) != 0; }
    // The pseudonym of the longest of the texts that `bytes` begin with. Empty if there is none.
    std::string_view Find(std::string_view bytes) const;

  private:
    static constexpr uint32_t kFilterBits = 22;

    struct Entry_t {
        uint64_t begin;  // of the text, as BeginOf has it, so that most comparisons need nothing else
        uint32_t place;  // of the text in m_texts; the pseudonym comes after it
        uint32_t size;
        int32_t shorter;  // the longest other entry that this one begins with; below 0 if there is none
    };

    static size_t Hash(uint64_t first) { return first * 0x9E3779B97F4A7C15u >> (64 - kFilterBits); }

    // The first 8 bytes, the first one highest, and zeros for those that aren't there.
    static uint64_t BeginOf(std::string_view text);
    bool IsLess(uint64_t begin, std::string_view text, const Entry_t& entry) const {
        return begin != entry.begin ? begin < entry.begin : text < TextOf(entry);
    }
    std::string_view TextOf(const Entry_t& entry) const { return {m_texts.data() + entry.place, entry.size}; }
    // The entry itself or the longest one that it begins with, of those that `bytes` begin with.
    int32_t FirstOf(int32_t entry, std::string_view bytes) const;

    std::string m_texts;
    std::vector<Entry_t> m_entries;
    std::vector<uint64_t> m_filter;
};
