#include "Tools/quorlin/Csv.h"

#include <utility>

#include "Tools/quorlin/Text.h"

void ClCsv::Cell(std::string_view cell) {
    std::string& text = m_output.Text();
    if (IsPlain(cell, '"', ',')) {
        text += Trimmed(cell);
        return;
    }
    const size_t begin = text.size();
    AppendPrintable(text, cell);
    const std::string_view plain = std::string_view(text).substr(begin);
    if (plain.find('"') == plain.npos && plain.find(',') == plain.npos) return;
    std::string quoted = "\"";
    for (const char character : plain) quoted.append(character == '"' ? 2 : 1, character);
    text.resize(begin);
    text.append(quoted).append("\"");
}

void ClCsv::Head(std::initializer_list<std::string_view> cells) {
    if (m_hasHead) return;
    m_hasHead = true;
    const std::string_view image = std::exchange(m_image, "image");
    Row(cells);
    m_image = image;
}

void ClCsv::Row(std::initializer_list<std::string_view> cells) {
    if (m_hasImages) {
        Cell(m_image);
        m_output.Text() += ',';
    }
    for (const std::string_view& cell : cells) {
        if (&cell != cells.begin()) m_output.Text() += ',';
        Cell(cell);
    }
    m_output << "\r\n";
}
