// Makes text from firmware safe for people and other programs. It is untrusted: control characters would steer a
// terminal, and other programs expect valid UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "Packages/Format/Ascii.h"

// The length of the valid UTF-8 sequence at the start of `text`, or 0.
size_t SequenceLength(std::string_view text);
// Copies a text if it is plain: printable ASCII without characters that are special in a format. Most texts are, and
// need no more work. `place` has room for all of it. Returns the place after the copy, or null for any other text.
template <char... specials>
char* CopyPlain(char* place, std::string_view text) {
    uint64_t found = 0;
    // Tests all bytes of a word at once: the high bit of a byte's test is set unless the byte is plain. A borrow or a
    // carry into the next byte comes only from a byte that isn't.
    const auto copy = [&]<class Word>(Word word, size_t at) {
        constexpr Word kOnes = static_cast<Word>(0x0101010101010101);
        std::memcpy(&word, text.data() + at, sizeof word);
        std::memcpy(place + at, &word, sizeof word);
        const uint64_t bytes = word;
        uint64_t tests = bytes | (bytes - uint64_t{kOnes} * ' ') | (bytes + kOnes);
        ((tests |= (bytes ^ uint64_t{kOnes} * specials) - kOnes), ...);
        found |= static_cast<Word>(tests) & uint64_t{kOnes} << 7;
    };
    // The last word overlaps the one before it.
    const auto copyAll = [&](auto word) {
        const size_t last = text.size() - sizeof word;
        for (size_t at = 0; at < last; at += sizeof word) copy(word, at);
        copy(word, last);
    };
    if (text.size() >= sizeof(uint64_t))
        copyAll(uint64_t{});
    else if (text.size() >= sizeof(uint32_t))
        copyAll(uint32_t{});
    else if (text.size() >= sizeof(uint16_t))
        copyAll(uint16_t{});
    else if (!text.empty())
        copyAll(uint8_t{});
    return found == 0 ? place + text.size() : nullptr;
}
// Appends `text` if it is plain, and otherwise nothing. Returns whether it is.
template <char... specials>
bool AppendPlain(std::string& out, std::string_view text) {
    const size_t begin = out.size();
    out.resize(begin + text.size());
    if (CopyPlain<specials...>(out.data() + begin, text) != nullptr) return true;
    out.resize(begin);
    return false;
}
// The text without blanks at its end.
inline std::string_view Trimmed(std::string_view text) {
    while (text.ends_with(' ')) text.remove_suffix(1);
    return text;
}
// Appends `text` without blanks at its end. Invalid bytes become U+FFFD. Control characters, line separators and marks
// that change the direction of text become blanks.
void AppendPrintable(std::string& out, std::string_view text);
std::string Printable(std::string_view text);
// Appends `text` as the inside of a JSON string. Invalid bytes become U+FFFD, and what steers a terminal \uXXXX.
// Returns whether there were invalid bytes.
bool AppendJson(std::string& out, std::string_view text);
