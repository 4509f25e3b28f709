// The texts of items.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

// Copies a text, and returns the place after it. Most texts are so short that a call of memcpy would cost more.
inline char* PutText(char* place, std::string_view text) {
    const char* const from = text.data();
    const size_t size = text.size();
    // The first and the last bytes, which may overlap.
    const auto copyEnds = [=]<size_t kBytes>(std::integral_constant<size_t, kBytes>) {
        char first[kBytes], last[kBytes];
        std::memcpy(first, from, kBytes);
        std::memcpy(last, from + size - kBytes, kBytes);
        std::memcpy(place, first, kBytes);
        std::memcpy(place + size - kBytes, last, kBytes);
    };
    if (size > 32) {
        std::memcpy(place, from, size);
    } else if (size >= 16) {
        copyEnds(std::integral_constant<size_t, 16>());
    } else if (size >= 8) {
        copyEnds(std::integral_constant<size_t, 8>());
    } else if (size >= 4) {
        copyEnds(std::integral_constant<size_t, 4>());
    } else if (size != 0) {
        place[0] = from[0];
        place[size / 2] = from[size / 2];
        place[size - 1] = from[size - 1];
    }
    return place + size;
}

// The text of a key or a value on its way into a list. It either owns its characters, or refers to text that outlives
// all items: a literal, a word of a table, a string of a record (the store keeps its records while a package has
// items).
class ClText {
  public:
    ClText() = default;
    ClText(std::string_view lasting) : m_lasting(lasting) {}
    ClText(const char* lasting) : m_lasting(lasting) {}
    template <size_t size>
    ClText(char (&buffer)[size]) = delete;  // a buffer doesn't last: pass a std::string
    ClText(std::string own) : m_own(std::move(own)), m_isOwn(true) {}

    std::string_view View() const { return m_isOwn ? m_own : m_lasting; }
    bool IsOwn() const { return m_isOwn; }

  private:
    std::string_view m_lasting;
    std::string m_own;
    bool m_isOwn = false;
};

// Keeps copies of texts. They are released together.
class ClTextArena {
  public:
    // Throws std::bad_alloc if memory runs out.
    std::string_view Keep(std::string_view text) {
        if (text.size() > m_left) Grow(text.size());
        char* place = m_next;
        m_next = PutText(place, text);
        m_left -= text.size();
        return {place, text.size()};
    }
    // Keeps one block so that refills don't allocate.
    void Clear();

    struct Mark_t {
        size_t blocks;
        char* next;
        size_t left;
    };
    Mark_t Mark() const { return {m_blocks.size(), m_next, m_left}; }
    // Releases the texts that were added after the mark.
    void ReturnTo(const Mark_t& mark);

  private:
    static constexpr size_t kBlockBytes = 4096;

    void Grow(size_t size);

    std::vector<std::unique_ptr<char[]>> m_blocks;
    char* m_next = nullptr;
    size_t m_left = 0;
};
