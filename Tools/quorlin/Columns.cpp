#include "Tools/quorlin/Columns.h"

#include <algorithm>
#include <cstdlib>

#include "Packages/OS/Program.h"
#include "Tools/quorlin/Text.h"

namespace {

constexpr size_t kWidestKey = 44;   // longer keys push their value to the right
constexpr size_t kLeastValue = 24;  // columns that a value gets, however narrow the terminal

// Where to break `text` so that at most `width` characters come before: after a blank if there is one.
size_t BreakAt(std::string_view text, size_t width) {
    size_t end = 0, lastBlank = 0;
    for (size_t columns = 0; end < text.size(); columns++) {
        if (columns == width) return lastBlank != 0 ? lastBlank : end;
        if (text[end] == ' ') lastBlank = end + 1;
        end += std::max<size_t>(SequenceLength(text.substr(end)), 1);
    }
    return text.size();
}

enum class Color_t { kAuto, kAlways, kNever };
Color_t color = Color_t::kAuto;

std::string_view Environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

bool CanShowColor() {
    return IsStandardOutputTerminal() && Environment("NO_COLOR").empty() && Environment("TERM") != "dumb";
}

}  // namespace

void SetColor(std::string_view when) {
    color = when == "always" ? Color_t::kAlways : when == "never" ? Color_t::kNever : Color_t::kAuto;
}

ClColumns::ClColumns(ClOutput& output) : m_output(output), m_width(TerminalWidth()) {
    if (color == Color_t::kAlways || (color == Color_t::kAuto && CanShowColor())) {
        m_headingBegin = "\x1b[1m";
        m_headingEnd = "\x1b[0m";
    }
}

void ClColumns::Heading(std::string_view text) {
    if (m_begun) m_output << '\n';
    m_output << m_headingBegin;
    Put(0, 2, text);
    m_output << m_headingEnd << '\n';
    m_begun = true;
}

void ClColumns::Line(size_t indent, std::string_view text) {
    m_output.Pad(indent);
    Put(indent, indent + 2, text);
    m_output << '\n';
    m_begun = true;
}

size_t ClColumns::PutBroken(size_t column, size_t next, std::string_view text) {
    m_text.clear();
    AppendPrintable(m_text, text);
    std::string_view rest = m_text;
    for (;;) {
        const size_t end = BreakAt(rest, std::max(m_width - std::min(column, m_width), kLeastValue));
        if (end == rest.size()) break;
        m_output << rest.substr(0, end) << '\n';
        m_output.Pad(next);
        rest.remove_prefix(end);
        column = next;
    }
    m_output << rest;
    return column + rest.size();
}

void ClColumns::Finish(size_t indent) {
    const size_t widest = m_width == 0 ? kWidestKey : std::clamp<size_t>(m_width / 2, 12, kWidestKey);
    size_t width = 0;
    for (const auto& [key, value] : m_block)
        if (key.size() <= widest) width = std::max(width, key.size());
    const size_t column = indent + width + 2;
    for (const auto& [key, value] : m_block) {
        m_output.Pad(indent);
        const size_t end = Put(indent, indent + 2, key);
        if (!value.empty()) {
            if (end + 2 <= column)
                m_output.Pad(column - end);
            else if (m_width == 0)
                m_output.Pad(2);
            else
                (m_output << '\n').Pad(column);
            Put(column, column, value);
        }
        m_output << '\n';
        m_begun = true;
    }
    m_block.clear();
}
