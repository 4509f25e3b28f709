// What the writers of pages share.
#pragma once

#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>

// Text as code in a cell of a table.
inline std::string Code(std::string_view text) {
    std::string code = "`";
    for (const char character : text) {
        if (character == '\t')
            code += "\\t";
        else if (character == '|')
            code += "\\|";
        else
            code += character;
    }
    return code += '`';
}

// A paragraph in lines of at most 120 characters, broken after semicolons.
inline std::string Wrapped(std::string_view text) {
    std::string wrapped;
    size_t column = 0;
    while (!text.empty()) {
        const std::string_view entry = text.substr(0, std::min(text.find("; "), text.size() - 1) + 1);
        text.remove_prefix(std::min(entry.size() + 1, text.size()));
        if (column != 0 && column + 1 + entry.size() > 120) {
            wrapped += '\n';
            column = 0;
        }
        if (column != 0) wrapped += ' ';
        wrapped += entry;
        column += entry.size() + 1;
    }
    return wrapped + "\n";
}

// Whether `file` has this content. Otherwise says so on standard error.
inline bool HasContent(const std::string& file, const std::string& content, std::string_view writer) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream found;
    found << stream.rdbuf();
    if (found.str() == content) return true;
    std::cerr << file << " isn't what the tables say; write it anew with " << writer << "\n";
    return false;
}
