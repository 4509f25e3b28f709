#include "Tools/quorlin/Csv.h"

#include "Tools/quorlin/Text.h"

void ClCsv::Row(std::initializer_list<std::string_view> cells) {
    std::string& text = m_output.Text();
    for (const std::string_view& cell : cells) {
        if (&cell != cells.begin()) text += ',';
        const size_t begin = text.size();
        AppendPrintable(text, cell);
        if (text.find('"', begin) == text.npos && text.find(',', begin) == text.npos) continue;
        for (size_t quote = begin; (quote = text.find('"', quote)) != text.npos; quote += 2) text.insert(quote, 1, '"');
        text.insert(begin, 1, '"');
        text += '"';
    }
    m_output << "\r\n";
}
