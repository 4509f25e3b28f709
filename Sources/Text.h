// The texts of items.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

// A word of a table, or the word for a code that the table doesn't contain.
struct Word_t : std::string_view {
    constexpr Word_t(std::string_view text) : std::string_view(text), isInvalid(text.starts_with("Error: Invalid")) {}
    bool isInvalid;
};

// The text of a key or a value. It either owns its characters, or refers to text that outlives all items: a literal, a
// word of a table, a string of a record (the store keeps its records while a package has items).
class ClText {
  public:
    ClText() : ClText(std::string_view()) {}
    ClText(std::string_view lasting) { Refer(lasting.data(), lasting.size(), kLasting); }
    ClText(const char* lasting) : ClText(std::string_view(lasting)) {}
    template <size_t size>
    ClText(char (&buffer)[size]) = delete;  // a buffer doesn't last: pass a std::string
    ClText(const std::string& own) { Copy(own); }
    inline ClText(const Word_t& word);
    // An owned text: the pieces one after the other.
    static ClText Joined(std::initializer_list<std::string_view> pieces);
    ClText(ClText&& other) noexcept : m_data(other.m_data) { other.Refer(nullptr, 0, kLasting); }
    ClText(const ClText& other) {
        if (other.m_data.keep == kLasting)
            m_data = other.m_data;
        else
            Copy(other.View());
        m_data.isInvalid = other.m_data.isInvalid;
    }
    ClText& operator=(ClText other) noexcept {
        std::swap(m_data, other.m_data);
        return *this;
    }
    ~ClText() {
        if (m_data.keep == kHeap) delete[] Elsewhere();
    }

    std::string_view View() const { return {m_data.keep == kHere ? m_data.bytes : Elsewhere(), m_data.size}; }
    std::string String() const { return std::string(View()); }
    // Whether it is the word for a code that its table doesn't contain.
    bool IsInvalid() const { return m_data.isInvalid; }
    ClText& MarkInvalid(bool isInvalid) {
        m_data.isInvalid = isInvalid;
        return *this;
    }
    // Copies text that it refers to, so that it no longer depends on the original.
    void Keep() {
        if (m_data.keep == kLasting && m_data.size != 0) *this = ClText(String()).MarkInvalid(m_data.isInvalid);
    }
    friend bool operator==(const ClText& text, std::string_view other) { return text.View() == other; }

  private:
    enum Keep_t : uint8_t { kLasting, kHere, kHeap };

    const char* Elsewhere() const {
        const char* place;
        std::memcpy(&place, m_data.bytes, sizeof place);
        return place;
    }
    void Refer(const char* text, size_t size, Keep_t keep) {
        std::memcpy(m_data.bytes, &text, sizeof text);
        m_data.size = size & kSizeMask;
        m_data.keep = keep & 3u;
        m_data.isInvalid = 0;
    }
    void Copy(std::string_view text) {
        char* own = Own(text.size());
        if (!text.empty()) std::memcpy(own, text.data(), text.size());
    }
    // Allocates room for an owned text. Expects that there is none yet.
    char* Own(size_t size) {
        if (size > sizeof m_data.bytes) {
            char* text = new char[size];
            Refer(text, size, kHeap);
            return text;
        }
        m_data.size = size & kSizeMask;
        m_data.keep = kHere;
        m_data.isInvalid = 0;
        return m_data.bytes;
    }

    static constexpr uint32_t kSizeMask = 0x1FFFFFFF;  // far above any text of a table
    // A table has tens of thousands of texts, so each byte here counts.
    struct Data_t {
        alignas(const char*) char bytes[20];  // the text itself (room for any number), or its address
        uint32_t size : 29;
        uint32_t keep : 2;  // Keep_t
        uint32_t isInvalid : 1;
    } m_data;
};
static_assert(sizeof(ClText) == 24);

inline ClText::ClText(const Word_t& word) : ClText(std::string_view(word)) { m_data.isInvalid = word.isInvalid; }
