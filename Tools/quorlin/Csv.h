// CSV by RFC 4180: commas, lines that end in CR and LF, a head line. Control characters become blanks and invalid
// bytes U+FFFD, so that a line is a row for every reader.
#pragma once

#include <initializer_list>
#include <string_view>

#include "Tools/quorlin/Output.h"

class ClCsv {
  public:
    // Where there are several images a first column names the row's.
    ClCsv(ClOutput& output, bool hasImages) : m_output(output), m_hasImages(hasImages) {}
    // The rows that follow are this image's. The name must live until then.
    void SetImage(std::string_view name) { m_image = name; }
    // The head line, of the first call.
    void Head(std::initializer_list<std::string_view> cells);
    // That of who lists items.
    void ItemHead() { Head({"type", "handle", "instance", "title", "group", "key", "value"}); }
    void Row(std::initializer_list<std::string_view> cells);

  private:
    void Cell(std::string_view text);

    ClOutput& m_output;
    bool m_hasImages;
    bool m_hasHead = false;
    std::string_view m_image;
};
