// Text for people: keys and values in columns that fit the terminal.
#pragma once

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "Tools/quorlin/Output.h"

// Whether headings stand out: "auto" (on a terminal that can), "always" or "never". False for any other word.
bool SetColor(std::string_view when);

// Puts headings, and pairs below each other, to an output. Text from firmware is made printable.
class ClColumns {
  public:
    explicit ClColumns(ClOutput& output);

    // A line that stands out on a terminal, with an empty line in front of all but the first.
    void Heading(std::string_view text);
    // A line without a value. Where it has to be broken it goes on two columns further in.
    void Line(size_t indent, std::string_view text);
    // A key and its value. The values of one block stand below each other. The texts must live until Finish.
    void Pair(std::string_view key, std::string_view value) { m_block.emplace_back(key, value); }
    // Ends the block.
    void Finish(size_t indent);

  private:
    // A text from `column` on, in which its further lines stand at `next`. Gives the column it ends in.
    size_t Put(size_t column, size_t next, std::string_view text);

    ClOutput& m_output;
    std::vector<std::pair<std::string_view, std::string_view>> m_block;
    std::string m_text;
    size_t m_width;  // of the terminal; 0 for anything else, where no line is broken
    bool m_begun = false;
    const char* m_headingBegin = "";
    const char* m_headingEnd = "";
};
