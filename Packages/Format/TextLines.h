// The lines of a text form one after the other, and the pieces of a line. For the forms of this folder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// The largest size of a text form. Bounds what a parser may allocate.
inline constexpr size_t kMostTextBytes = 64u << 20;

class ClLines {
  public:
    explicit ClLines(std::string_view text) : m_rest(text) {}

    // Goes on to the next line. False at the end.
    bool Next();
    // What is left of the line, without its end. The functions below take from its beginning, or leave it alone.
    std::string_view Rest() const { return m_line; }

    bool Take(std::string_view text);
    void TakeBlanks();
    // Takes a number with `least` to `most` digits.
    bool TakeHex(size_t least, size_t most, uint64_t* value) { return TakeNumber(16, least, most, value); }
    bool TakeDecimal(size_t most, uint64_t* value) { return TakeNumber(10, 1, most, value); }

    // "line 12: WHAT".
    std::string Problem(std::string_view what) const;

  private:
    bool TakeNumber(int base, size_t least, size_t most, uint64_t* value);

    std::string_view m_rest, m_line;
    size_t m_number = 0;
};

// Appends a number with leading zeros.
void AppendHex(std::string& text, uint64_t value, int digits, bool isUpper = false);
