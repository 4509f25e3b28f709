#include "Packages/Analysis/Seeker.h"

#include <algorithm>

void ClSeeker::Add(std::string_view text, std::string_view pseudonym) {
    if (text.size() < kLeast) return;
    text = text.substr(0, kMost);
    m_entries.push_back({BeginOf(text), static_cast<uint32_t>(m_texts.size()), static_cast<uint32_t>(text.size()), -1});
    m_texts.append(text).append(pseudonym.substr(0, text.size()));
}

uint64_t ClSeeker::BeginOf(std::string_view text) {
    uint64_t begin = 0;
    for (size_t i = 0; i < sizeof begin; i++)
        begin = begin << 8 | (i < text.size() ? static_cast<uint8_t>(text[i]) : 0);
    return begin;
}

void ClSeeker::Prepare() {
    const auto isSame = [this](const Entry_t& a, const Entry_t& b) {
        return a.begin == b.begin && TextOf(a) == TextOf(b);
    };
    std::ranges::sort(m_entries, [&](const Entry_t& a, const Entry_t& b) {
        if (isSame(a, b)) return a.place < b.place;
        return IsLess(a.begin, TextOf(a), b);
    });
    m_entries.erase(std::unique(m_entries.begin(), m_entries.end(), isSame), m_entries.end());
    m_filter.assign((size_t{1} << kFilterBits) / 64, 0);
    for (size_t i = 0; i < m_entries.size(); i++) {
        const std::string_view text = TextOf(m_entries[i]);
        m_entries[i].shorter = FirstOf(static_cast<int32_t>(i) - 1, text);
        uint64_t first = 0;
        for (size_t place = 0; place < kLeast; place++) first = first << 8 | static_cast<uint8_t>(text[place]);
        m_filter[Hash(first) / 64] |= uint64_t{1} << Hash(first) % 64;
    }
}

// In rising order, all entries between one that `bytes` begin with and `bytes` begin with that one, too. So it is the
// entry before `bytes`, or one that this entry begins with.
int32_t ClSeeker::FirstOf(int32_t entry, std::string_view bytes) const {
    while (entry >= 0 && !bytes.starts_with(TextOf(m_entries[static_cast<size_t>(entry)])))
        entry = m_entries[static_cast<size_t>(entry)].shorter;
    return entry;
}

std::string_view ClSeeker::Find(std::string_view bytes) const {
    const uint64_t begin = BeginOf(bytes);
    const auto after =
        std::ranges::partition_point(m_entries, [&](const Entry_t& entry) { return !IsLess(begin, bytes, entry); });
    const int32_t place = FirstOf(static_cast<int32_t>(after - m_entries.begin()) - 1, bytes);
    if (place < 0) return {};
    const Entry_t& entry = m_entries[static_cast<size_t>(place)];
    return {m_texts.data() + entry.place + entry.size, entry.size};
}
