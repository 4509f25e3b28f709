// ASCII letters, printable characters and blanks. Bytes from 80h are none of them, whether `char` is signed or not.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// From the blank to the tilde.
constexpr bool IsPrintableAscii(char c) { return c >= ' ' && c <= '~'; }

constexpr char LowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
inline std::string LowerCaseText(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) c = LowerCase(c);
    return lower;
}

// Compare without regard to the case of letters.
inline bool EqualsIgnoringCase(std::string_view first, std::string_view second) {
    return std::ranges::equal(first, second, {}, LowerCase, LowerCase);
}
inline bool ContainsIgnoringCase(std::string_view text, std::string_view part) {
    const auto isSame = [](char a, char b) { return LowerCase(a) == LowerCase(b); };
    return part.empty() || std::search(text.begin(), text.end(), part.begin(), part.end(), isSame) != text.end();
}

// The text without blanks, tabs and line ends around it.
inline std::string_view WithoutBlanks(std::string_view text) {
    constexpr char kBlanks[] = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}
