// CSV by RFC 4180: commas, lines that end in CR and LF, a head line. Control characters become blanks and invalid
// bytes U+FFFD, so that a line is a row for every reader.
#pragma once

#include <initializer_list>
#include <string_view>

#include "Tools/quorlin/Output.h"

class ClCsv {
  public:
    explicit ClCsv(ClOutput& output) : m_output(output) {}
    // The head line of who lists items.
    void ItemHead() { Row({"type", "handle", "instance", "title", "group", "key", "value"}); }
    void Row(std::initializer_list<std::string_view> cells);

  private:
    ClOutput& m_output;
};
