// Writes HTML. Markup comes from literals of the program, and everything else goes through one escaping function.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

// Appends `text` so that it can't be markup, in an element or in a quoted attribute. Invalid UTF-8 becomes U+FFFD;
// control characters, line separators and marks that change the direction of text become blanks.
void AppendHtml(std::string& out, std::string_view text);
// Bytes in the form that a content security policy takes.
std::string Base64(std::span<const uint8_t> bytes);

class ClHtml {
  public:
    // Markup. Takes literals alone, so that nothing else gets past the escaping.
    template <size_t size>
    ClHtml& Raw(const char (&markup)[size]) {
        m_out.append(markup, size - 1);
        return *this;
    }
    template <size_t size>
    ClHtml& operator<<(const char (&markup)[size]) {
        return Raw(markup);
    }
    // Without blanks at its end. Of a text as long as no machine has one, the begin, and how many bytes are left out.
    ClHtml& Text(std::string_view text) {
        text.size() <= kMostText ? AppendHtml(m_out, text) : Cut(text);
        return *this;
    }
    ClHtml& Number(uint64_t number) {
        m_out += std::to_string(number);
        return *this;
    }
    // Markup that another ClHtml has made, or a file of the program's.
    ClHtml& Markup(const ClHtml& other) { return Markup(other.m_out); }
    ClHtml& Markup(std::string_view markup) {
        m_out += markup;
        return *this;
    }

    const std::string& Out() const { return m_out; }
    std::string Take() { return std::move(m_out); }

  private:
    static constexpr size_t kMostText = 64u << 10;

    void Cut(std::string_view text);

    std::string m_out;
};
