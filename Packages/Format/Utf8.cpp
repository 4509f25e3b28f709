#include "Packages/Format/Utf8.h"

#include <cstdint>

namespace {

// The number of bytes that must follow `lead`; 0 for a byte that begins no sequence.
constexpr size_t FollowingBytes(uint8_t lead) {
    if (lead >= 0xC2 && lead <= 0xDF) return 1;
    if (lead >= 0xE0 && lead <= 0xEF) return 2;
    if (lead >= 0xF0 && lead <= 0xF4) return 3;
    return 0;
}

// The smallest code that needs that many following bytes.
constexpr uint32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};

constexpr bool IsSurrogate(uint32_t code) { return code >= 0xD800 && code <= 0xDFFF; }

}  // namespace

Utf8Sequence_t NextUtf8Sequence(std::string_view text) {
    const auto lead = static_cast<uint8_t>(text[0]);
    const size_t following = FollowingBytes(lead);
    if (following == 0) return {1, lead < 0x80};
    if (text.size() <= following) return {text.size(), false};
    uint32_t code = lead & (0x3Fu >> following);
    for (size_t place = 1; place <= following; ++place) {
        const auto byte = static_cast<uint8_t>(text[place]);
        if ((byte & 0xC0) != 0x80) return {place, false};
        code = code << 6 | (byte & 0x3Fu);
        // With each further byte the range that `code` must end in is known as far as its high bits go.
        const size_t shift = 6 * (following - place);
        const uint32_t low = code << shift, high = low | ((1u << shift) - 1);
        if (high < kSmallest[following] || low > 0x10FFFF || (IsSurrogate(low) && IsSurrogate(high)))
            return {place + 1, false};
    }
    return {following + 1, true};
}
