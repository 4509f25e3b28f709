// The cells of one row.
#pragma once

#include <charconv>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include "Tools/quorlin/Formats/CsvPieces.h"

template <class Integer>
void AppendDigits(std::string& out, Integer number) {
    char digits[20];
    out.append(digits, std::to_chars(digits, std::end(digits), number).ptr);
}

// An empty text is in quotes, as an empty cell is NULL.
inline void AppendText(std::string& out, std::string_view text) {
    const size_t begin = out.size();
    AppendCsvCell(out, text);
    if (out.size() == begin) out += "\"\"";
}

// Appends cells, with a comma before each but the row's first.
class ClRow {
  public:
    explicit ClRow(std::string& row) : m_row(row) {}

    // Begins a cell, which is NULL until something is appended to it.
    std::string& Next() {
        if (!m_isFirst) m_row += ',';
        m_isFirst = false;
        return m_row;
    }
    void Nulls(size_t count) {
        for (; count != 0; count--) Next();
    }
    void Text(std::string_view text) { AppendText(Next(), text); }
    template <class Integer>
    void Number(Integer number) {
        AppendDigits(Next(), number);
    }
    // NULL for what isn't known: an empty text, or no number.
    void Known(std::string_view text) {
        if (text.empty())
            Next();
        else
            Text(text);
    }
    void Known(std::optional<uint64_t> number) {
        if (number)
            Number(*number);
        else
            Next();
    }

  private:
    std::string& m_row;
    bool m_isFirst = true;
};
