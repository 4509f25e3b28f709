#include "Sources/Items.h"

#include <charconv>
#include <cstring>

namespace {

// Whether one of the eight bytes is a quote.
bool HasQuote(uint64_t bytes) {
    constexpr uint64_t kOnes = 0x0101010101010101, kHighs = kOnes << 7;
    const uint64_t zeroForQuote = bytes ^ (kOnes * '"');
    return ((zeroForQuote - kOnes) & ~zeroForQuote & kHighs) != 0;
}

bool HasQuote(std::string_view text) {
    uint64_t first = 0, last = 0;
    if (text.size() > 2 * sizeof first) return text.find('"') != text.npos;
    if (text.size() < sizeof first) {
        PutText(reinterpret_cast<char*>(&first), text);
    } else {
        std::memcpy(&first, text.data(), sizeof first);
        std::memcpy(&last, text.data() + text.size() - sizeof last, sizeof last);
    }
    return HasQuote(first) || HasQuote(last);
}

}  // namespace

char* Item_t::PutMarkedKey(char* place) const {
    place = PutText(place, key);
    if (facts.kind == ItemKind_t::kTitle && facts.instance > 1) {
        *place++ = '_';
        place = std::to_chars(place, place + kMostMarks.size(), facts.instance).ptr;
    }
    return PutText(place, kGroupMark);
}

void Item_t::AppendKey(std::string& text) const {
    const size_t begin = text.size();
    text.resize(begin + key.size() + kMostMarks.size());
    text.resize(static_cast<size_t>(PutKey(text.data() + begin) - text.data()));
}

char* Item_t::PutLine(char* place) const {
    *place++ = '"';
    place = PutText(PutKey(place), "\", \"");
    if (HasQuote(value))
        place = std::remove_copy(value.begin(), value.end(), place, '"');
    else if (value != " ")
        place = PutText(place, value);
    *place++ = '"';
    return place;
}

std::string Item_t::Title() const {
    std::string text;
    AppendKey(text);
    text.resize(text.size() - kGroupMark.size());
    return text;
}
