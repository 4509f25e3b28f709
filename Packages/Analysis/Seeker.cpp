#include "Packages/Analysis/Seeker.h"

#include <algorithm>

void ClSeeker::Add(std::string_view text, std::string_view pseudonym) {
    if (text.size() >= kLeast)
        m_entries.push_back({std::string(text.substr(0, kMost)), std::string(pseudonym.substr(0, kMost))});
}

void ClSeeker::Prepare() {
    std::ranges::stable_sort(m_entries, {}, &Entry_t::text);
    const auto rest = std::ranges::unique(m_entries, {}, &Entry_t::text);
    m_entries.erase(rest.begin(), rest.end());
    m_filter.assign((size_t{1} << kFilterBits) / 64, 0);
    for (size_t i = 0; i < m_entries.size(); i++) {
        Entry_t& entry = m_entries[i];
        // What it begins with is the entry before it, or what that one begins with.
        entry.shorter = static_cast<int32_t>(i) - 1;
        while (entry.shorter >= 0 && !entry.text.starts_with(m_entries[static_cast<size_t>(entry.shorter)].text))
            entry.shorter = m_entries[static_cast<size_t>(entry.shorter)].shorter;
        uint64_t first = 0;
        for (size_t place = 0; place < kLeast; place++) first = first << 8 | static_cast<uint8_t>(entry.text[place]);
        m_filter[Hash(first) / 64] |= uint64_t{1} << Hash(first) % 64;
    }
}

const ClSeeker::Entry_t* ClSeeker::Find(std::string_view bytes) const {
    // All entries between one that `bytes` begin with and `bytes` begin with that one, too.
    const auto after = std::ranges::upper_bound(m_entries, bytes, {},
                                                [](const Entry_t& entry) -> std::string_view { return entry.text; });
    auto place = static_cast<int32_t>(after - m_entries.begin()) - 1;
    while (place >= 0 && !bytes.starts_with(m_entries[static_cast<size_t>(place)].text))
        place = m_entries[static_cast<size_t>(place)].shorter;
    return place >= 0 ? &m_entries[static_cast<size_t>(place)] : nullptr;
}
