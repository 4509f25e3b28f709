#include <algorithm>
#include <cstring>
#include <iterator>

#include "Packages/Standard/Facts.h"
#include "Packages/Standard/FillerLists.h"

namespace {

// Whether a text is of digits that count up or down, such as "12345678".
bool IsCounting(std::string_view text) {
    const auto digit = [text](size_t place) { return static_cast<unsigned char>(text[place]) - '0'; };
    const int step = text.size() < 8 ? 0 : (digit(1) - digit(0) + 10) % 10;
    if (step != 1 && step != 9) return false;
    for (size_t place = 0; place < text.size(); place++)
        if (digit(place) < 0 || digit(place) > 9 || (place > 0 && (digit(place - 1) + step) % 10 != digit(place)))
            return false;
    return true;
}

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// What a text that begins with this character may be: bit n, one of the fillers of n characters; and
constexpr uint32_t kMayBegin = 1u << 28;   // a begin of one
constexpr uint32_t kMayNumber = 1u << 29;  // a numbered one
constexpr uint32_t kMayRepeat = 1u << 30;  // one character again and again
struct Hints_t {
    uint32_t of[256];
};
constexpr Hints_t kHints = [] {
    Hints_t hints = {};
    const auto add = [&](char first, uint32_t hint) {
        hints.of[static_cast<unsigned char>(first)] |= hint;
        if (first >= 'a' && first <= 'z') hints.of[first - 'a' + 'A'] |= hint;
    };
    for (const char* filler : kFillers) add(filler[0], 1u << std::char_traits<char>::length(filler));
    for (const char* begin : kFillerBegins) add(begin[0], kMayBegin);
    for (const char* filler : kNumberedFillers) add(filler[0], kMayNumber);
    for (const char c : kRepeatedFillers)
        if (c != '\0') add(c, kMayRepeat);
    return hints;
}();

// Tells quickly of most texts that they aren't fillers. The text has no blanks around it.
bool MayBeFiller(std::string_view text) {
    const uint32_t hints = kHints.of[static_cast<unsigned char>(text.front())];
    const char last = text.back();
    return (text.size() < 28 && (hints >> text.size() & 1) != 0) || (hints & kMayBegin) != 0 ||
           ((hints & kMayNumber) != 0 && last >= '0' && last <= '9') ||
           ((hints & kMayRepeat) != 0 && Lower(last) == Lower(text.front()));
}

}  // namespace

bool IsFiller(std::string_view text) {
    while (!text.empty() && static_cast<unsigned char>(text.back()) <= ' ') text.remove_suffix(1);
    while (!text.empty() && static_cast<unsigned char>(text.front()) <= ' ') text.remove_prefix(1);
    if (text.empty()) return true;
    if (IsCounting(text)) return true;
    if (!MayBeFiller(text)) return false;
    // One character again and again: zeros, Fs, Xs, dots, dashes.
    const char first = Lower(text.front());
    if (strchr(kRepeatedFillers, first) != nullptr && (text.size() > 1 || strchr(kLoneFillers, first) != nullptr) &&
        std::ranges::all_of(text, [=](char c) { return Lower(c) == first; }))
        return true;
    char lower[kLongestFiller] = {};
    const size_t size = std::min(text.size(), kLongestFiller - 1);
    std::transform(text.begin(), text.begin() + static_cast<ptrdiff_t>(size), lower, Lower);
    if (text.size() == size) {
        const auto isLess = [](const char* a, const char* b) { return strcmp(a, b) < 0; };
        if (std::binary_search(std::begin(kFillers), std::end(kFillers), lower, isLess)) return true;
    }
    for (const char* begin : kFillerBegins)
        if (strncmp(lower, begin, strlen(begin)) == 0) return true;
    if (text.size() != size || lower[size - 1] < '0' || lower[size - 1] > '9') return false;
    std::string_view word(lower, size);
    while (!word.empty() && word.back() >= '0' && word.back() <= '9') word.remove_suffix(1);
    return std::ranges::any_of(kNumberedFillers, [=](const char* filler) { return word == filler; });
}
