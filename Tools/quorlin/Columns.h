// Text for people: keys and values in columns that fit the terminal.
#pragma once

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "Tools/quorlin/Output.h"

// Sets whether headings stand out: "auto" (on a terminal that can show it), "always" or "never".
void SetColor(std::string_view when);

// Writes headings, lines, and keys with values. Makes all text printable.
class ClColumns {
  public:
    explicit ClColumns(ClOutput& output);

    // Writes a line that stands out on a terminal, after an empty line unless it is the first.
    void Heading(std::string_view text);
    // Writes a line. If it has to be broken, it continues two columns further in.
    void Line(size_t indent, std::string_view text);
    // Adds a key and its value to a block, whose values are aligned. The texts must live until Finish.
    void Pair(std::string_view key, std::string_view value) { m_block.emplace_back(key, value); }
    // Writes the block.
    void Finish(size_t indent);

  private:
    // Writes a text that begins at `column` and continues at `next`. Returns the column where it ends.
    size_t Put(size_t column, size_t next, std::string_view text) {
        return m_width == 0 ? column + m_output.PutPrintable(text) : PutBroken(column, next, text);
    }
    // The same, with line breaks where the terminal needs them.
    size_t PutBroken(size_t column, size_t next, std::string_view text);

    ClOutput& m_output;
    std::vector<std::pair<std::string_view, std::string_view>> m_block;
    std::string m_text;
    size_t m_width;  // of the terminal; 0 for other outputs, where no line is broken
    bool m_begun = false;
    std::string_view m_headingBegin, m_headingEnd;
};
