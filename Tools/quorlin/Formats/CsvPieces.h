// Pieces of CSV by RFC 4180. Control characters become blanks and invalid bytes U+FFFD, so that a line is a row for
// every reader.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "Tools/quorlin/Text.h"

inline constexpr std::string_view kCsvLineEnd = "\r\n";

// Appends a text as a cell, in quotes where they are needed. An empty text is an empty cell.
inline void AppendCsvCell(std::string& out, std::string_view cell) {
    if (AppendPlain<'"', ','>(out, Trimmed(cell))) return;
    const size_t begin = out.size();
    AppendPrintable(out, cell);
    const std::string_view plain = std::string_view(out).substr(begin);
    if (plain.find('"') == plain.npos && plain.find(',') == plain.npos) return;
    std::string quoted = "\"";
    for (size_t at = 0; at < plain.size();) {
        const size_t quote = std::min(plain.find('"', at), plain.size() - 1);
        quoted += plain.substr(at, quote + 1 - at);
        if (plain[quote] == '"') quoted += '"';
        at = quote + 1;
    }
    out.resize(begin);
    out.append(quoted).append("\"");
}
