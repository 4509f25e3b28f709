// The texts of items.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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
        std::copy_n(text.data(), text.size(), place);
        m_next += text.size();
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
