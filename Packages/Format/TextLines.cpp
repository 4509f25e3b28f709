#include "Packages/Format/TextLines.h"

#include <algorithm>
#include <charconv>

bool ClLines::Next() {
    if (m_rest.empty()) return false;
    const size_t end = m_rest.find('\n');
    m_line = m_rest.substr(0, end);
    m_rest.remove_prefix(end == m_rest.npos ? m_rest.size() : end + 1);
    m_number++;
    return true;
}

bool ClLines::Take(std::string_view text) {
    if (!m_line.starts_with(text)) return false;
    m_line.remove_prefix(text.size());
    return true;
}

void ClLines::TakeBlanks() { m_line.remove_prefix(std::min(m_line.find_first_not_of(' '), m_line.size())); }

bool ClLines::TakeNumber(int base, size_t least, size_t most, uint64_t* value) {
    uint64_t parsed = 0;
    const auto [end, error] = std::from_chars(m_line.data(), m_line.data() + m_line.size(), parsed, base);
    const auto digits = static_cast<size_t>(end - m_line.data());
    if (error != std::errc() || digits < least || digits > most) return false;
    m_line.remove_prefix(digits);
    *value = parsed;
    return true;
}

std::string ClLines::Problem(std::string_view what) const {
    return std::string("line ").append(std::to_string(m_number)).append(": ").append(what);
}

void AppendHex(std::string& text, uint64_t value, int digits, bool isUpper) {
    const char* const symbols = isUpper ? "0123456789ABCDEF" : "0123456789abcdef";
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) text += symbols[value >> shift & 15];
}
