#include <algorithm>
#include <cstring>
#include <iterator>

#include "Packages/Format/Ascii.h"
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

// Finds entries of a list by a hash, as most texts are no fillers, and that has to be told quickly.
struct Index_t {
    static constexpr size_t kSize = 1024;
    uint8_t first[kSize];  // the first entry with this hash, from 1; 0 if there is none
    uint8_t next[64];      // the entry after this one with the same hash

    constexpr void Add(size_t hash, size_t entry) {
        next[entry] = first[hash];
        first[hash] = static_cast<uint8_t>(entry + 1);
    }
};

// Of a whole text: its ends and its size. Of a begin: its first two characters.
constexpr size_t Hash(char a, char b, size_t size) {
    const size_t first = static_cast<unsigned char>(a) | 0x20u, second = static_cast<unsigned char>(b) | 0x20u;
    return (first + 8 * second + 64 * size) % Index_t::kSize;
}
constexpr size_t WholeHash(std::string_view text) { return Hash(text.front(), text.back(), text.size()); }
constexpr size_t BeginHash(std::string_view text) { return Hash(text[0], text[1], 0); }

constexpr Index_t kWhole = [] {
    Index_t index = {};
    for (size_t i = 0; i < std::size(kFillers); i++) index.Add(WholeHash(kFillers[i]), i);
    return index;
}();
// The begins, and then the numbered fillers.
constexpr Index_t kBegins = [] {
    Index_t index = {};
    size_t entry = 0;
    for (const char* begin : kFillerBegins) index.Add(BeginHash(begin), entry++);
    for (const char* filler : kNumberedFillers) index.Add(BeginHash(filler), entry++);
    return index;
}();

// Whether `text` begins with `begin`, which is in lower case.
bool BeginsWith(std::string_view text, const char* begin) {
    size_t place = 0;
    while (begin[place] != '\0' && place < text.size() &&
           (text[place] == begin[place] || LowerCase(text[place]) == begin[place]))
        place++;
    return begin[place] == '\0';
}

bool IsDigits(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

bool BeginsAsFiller(std::string_view text, size_t entry) {
    if (entry < std::size(kFillerBegins)) return BeginsWith(text, kFillerBegins[entry]);
    const char* const filler = kNumberedFillers[entry - std::size(kFillerBegins)];
    return BeginsWith(text, filler) && IsDigits(text.substr(strlen(filler)));
}

bool IsOneOf(std::string_view text, size_t entry) {
    for (; entry != 0; entry = kWhole.next[entry - 1])
        if (text.size() == strlen(kFillers[entry - 1]) && BeginsWith(text, kFillers[entry - 1])) return true;
    return false;
}

bool BeginsAsOneOf(std::string_view text, size_t entry) {
    for (; entry != 0; entry = kBegins.next[entry - 1])
        if (BeginsAsFiller(text, entry - 1)) return true;
    return false;
}

// Whether a text has nothing but one of some characters, whose case doesn't matter.
bool IsRepeated(std::string_view text) {
    const char first = LowerCase(text.front());
    return strchr(text.size() > 1 ? kRepeatedFillers : kLoneFillers, first) != nullptr &&
           std::ranges::all_of(text, [=](char c) { return LowerCase(c) == first; });
}

// Looks closer at a text that is one of the few that may be fillers.
[[gnu::noinline]] bool IsFillerIndeed(std::string_view text) {
    while (!text.empty() && static_cast<unsigned char>(text.back()) <= ' ') text.remove_suffix(1);
    while (!text.empty() && static_cast<unsigned char>(text.front()) <= ' ') text.remove_prefix(1);
    if (text.empty() || IsRepeated(text) || IsOneOf(text, kWhole.first[WholeHash(text)])) return true;
    return text.size() > 1 && (BeginsAsOneOf(text, kBegins.first[BeginHash(text)]) || IsCounting(text));
}

}  // namespace

bool IsFiller(std::string_view text) {
    if (text.size() < 2) return IsFillerIndeed(text);
    const auto first = static_cast<unsigned char>(text.front());
    const auto second = static_cast<unsigned char>(text[1]);
    const auto last = static_cast<unsigned char>(text.back());
    const bool mayBe = first <= ' ' || last <= ' ' || (first | 0x20) == (last | 0x20) ||
                       kWhole.first[WholeHash(text)] != 0 || kBegins.first[BeginHash(text)] != 0 ||
                       (text.size() >= 8 && first >= '0' && first <= '9' && second >= '0' && second <= '9');
    return mayBe && IsFillerIndeed(text);
}
