#include "Tools/quorlin/Text.h"

#include <cstdio>

#include "Packages/Format/Utf8.h"

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

// Control characters, line separators, and the marks that change the direction of text: all are below U+10000.
bool SteersTerminal(uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

struct Character_t {
    uint32_t code;
    std::string_view bytes;
    bool isValid;  // false where an invalid byte became U+FFFD
};

// Takes one character, or one invalid byte, from the start of a text, which mustn't be empty.
Character_t TakeCharacter(std::string_view* text) {
    const size_t length = SequenceLength(*text);
    if (length == 0) {
        text->remove_prefix(1);
        return {0xFFFD, kReplacement, false};
    }
    const std::string_view bytes = text->substr(0, length);
    text->remove_prefix(length);
    // The lead byte has as many set bits at its top as there are bytes, and then a clear one.
    uint32_t code = static_cast<unsigned char>(bytes[0]) & (length == 1 ? 0x7Fu : 0x7Fu >> length);
    for (const char byte : bytes.substr(1)) code = code << 6 | (static_cast<unsigned char>(byte) & 0x3Fu);
    return {code, bytes, true};
}

}  // namespace

size_t SequenceLength(std::string_view text) {
    if (text.empty()) return 0;
    if (static_cast<unsigned char>(text[0]) < 0x80) return 1;  // nearly all characters
    const Utf8Sequence_t next = NextUtf8Sequence(text);
    return next.isValid ? next.size : 0;
}

// The rare text that isn't plain. Apart from the plain case, which it would slow down.
[[gnu::noinline]] static void AppendCleaned(std::string& out, std::string_view text) {
    const size_t begin = out.size();
    while (!text.empty()) {
        const Character_t next = TakeCharacter(&text);
        out += SteersTerminal(next.code) ? " " : next.bytes;
    }
    while (out.size() > begin && out.back() == ' ') out.pop_back();
}

void AppendPrintable(std::string& out, std::string_view text) {
    if (!AppendPlain(out, Trimmed(text))) AppendCleaned(out, text);
}

std::string Printable(std::string_view text) {
    std::string out;
    AppendPrintable(out, text);
    return out;
}

bool AppendJson(std::string& out, std::string_view text) {
    bool isReplaced = false;
    while (!text.empty()) {
        const Character_t next = TakeCharacter(&text);
        if (next.code == '"' || next.code == '\\') out += '\\';
        if (SteersTerminal(next.code)) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned>(next.code));
            out += escape;
        } else {
            out += next.bytes;
        }
        isReplaced |= !next.isValid;
    }
    return isReplaced;
}
