#include "Tools/quorlin/Html.h"

#include "Tools/quorlin/Report/Texts.h"
#include "Tools/quorlin/Text.h"

static std::string_view EscapeOf(char character) {
    switch (character) {
        case '&': return "&amp;";
        case '<': return "&lt;";
        case '>': return "&gt;";
        case '"': return "&quot;";
        case '\'': return "&#39;";
        default: return {};
    }
}

void AppendHtml(std::string& out, std::string_view text) {
    const size_t begin = out.size();
    AppendPrintable(out, text);
    const std::string_view printable = std::string_view(out).substr(begin);
    if (printable.find_first_of("&<>\"'") == printable.npos) return;
    std::string escaped;
    for (const char character : printable) {
        const std::string_view escape = EscapeOf(character);
        escape.empty() ? escaped += character : escaped += escape;
    }
    out.replace(begin, out.npos, escaped);
}

void ClHtml::Cut(std::string_view text) {
    size_t end = kMostText;
    while (end > kMostText - 4 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) end--;  // whole characters
    AppendHtml(m_out, text.substr(0, end));
    AppendHtml(m_out, Filled(kTextMoreBytes, text.size() - end));
}

std::string Base64(std::span<const uint8_t> bytes) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (size_t at = 0; at < bytes.size(); at += 3) {
        uint32_t group = 0;
        for (size_t i = 0; i < 3; i++) group = group << 8 | (at + i < bytes.size() ? bytes[at + i] : 0);
        for (size_t i = 0; i < 4; i++) text += i <= bytes.size() - at ? kDigits[group >> (18 - 6 * i) & 63] : '=';
    }
    return text;
}
