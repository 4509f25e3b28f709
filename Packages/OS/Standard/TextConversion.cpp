// Replaces invalid bytes exactly as Windows does, so that a table reads the same on every system.
#include "Packages/OS/TextConversion.h"

#include <cstdint>

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// Returns the number of bytes that must follow `lead`; 0 for a byte that begins no sequence.
constexpr size_t FollowingBytes(uint8_t lead) {
    if (lead >= 0xC2 && lead <= 0xDF) return 1;
    if (lead >= 0xE0 && lead <= 0xEF) return 2;
    if (lead >= 0xF0 && lead <= 0xF4) return 3;
    return 0;
}

// The smallest code for each number of following bytes.
constexpr uint32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};

constexpr bool IsSurrogate(uint32_t code) { return code >= 0xD800 && code <= 0xDFFF; }

// Returns the size of the sequence at the start of `text`, and whether it is valid. An invalid one is a lone byte, a
// sequence cut off by the end of the text, or a sequence up to its first wrong byte. The wrong byte is included if it
// is a following byte out of range; otherwise a new sequence begins there.
size_t NextSequence(std::string_view text, bool* isValid) {
    const auto lead = static_cast<uint8_t>(text[0]);
    const size_t following = FollowingBytes(lead);
    *isValid = lead < 0x80;
    if (following == 0) return 1;
    if (text.size() <= following) return text.size();
    uint32_t code = lead & (0x3Fu >> following);
    for (size_t place = 1; place <= following; ++place) {
        const auto byte = static_cast<uint8_t>(text[place]);
        if ((byte & 0xC0) != 0x80) return place;
        code = code << 6 | (byte & 0x3Fu);
        // The high bits so far limit `code` to the range from `low` to `high`.
        const size_t shift = 6 * (following - place);
        const uint32_t low = code << shift, high = low | ((1u << shift) - 1);
        if (high < kSmallest[following] || low > 0x10FFFF || (IsSurrogate(low) && IsSurrogate(high))) return place + 1;
    }
    *isValid = true;
    return following + 1;
}

}  // namespace

bool os_RevalidateUtf8(std::string_view text, std::string* valid) {
    std::string result;
    while (!text.empty()) {
        bool isValid;
        const size_t size = NextSequence(text, &isValid);
        result += isValid ? text.substr(0, size) : kReplacement;
        text.remove_prefix(size);
    }
    *valid = std::move(result);
    return true;
}
