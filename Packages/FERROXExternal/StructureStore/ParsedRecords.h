// Parsed records, which the store makes of types 0 to 2: a fixed number of the structure's bytes, then a pointer to
// each of its strings, then the string area into which they point. The store and the decoders share this layout.
#pragma once

#include <cstdint>
#include <cstring>
#include <iterator>
#include <span>

// The pointers of each type, in order, by the structure offsets of the bytes with the strings' numbers.
inline constexpr uint8_t kBiosBytes = 24;
inline constexpr uint8_t kBiosStrings[] = {0x04, 0x05, 0x08};
inline constexpr uint8_t kSystemBytes = 27;
inline constexpr uint8_t kSystemStrings[] = {0x04, 0x05, 0x06, 0x07, 0x19, 0x1A};
inline constexpr uint8_t kBaseboardBytes = 15;
inline constexpr uint8_t kBaseboardStrings[] = {0x04, 0x05, 0x06, 0x07, 0x08, 0x0A};

// The pointers follow the bytes without alignment.
inline constexpr size_t kPointerSize = sizeof(const char*);
static_assert(kPointerSize == 8);

// Returns how many of the structure's bytes a parsed record of `type` has; 0 if records of the type aren't parsed.
inline uint8_t ParsedBytes(uint8_t type) {
    constexpr uint8_t kBytes[] = {kBiosBytes, kSystemBytes, kBaseboardBytes};
    return type < std::size(kBytes) ? kBytes[type] : 0;
}

// Returns the offsets of the strings' numbers for its pointers.
inline std::span<const uint8_t> ParsedStrings(uint8_t type) {
    constexpr std::span<const uint8_t> kStrings[] = {kBiosStrings, kSystemStrings, kBaseboardStrings};
    return type < std::size(kStrings) ? kStrings[type] : std::span<const uint8_t>();
}

// Returns the offset of the string area in a parsed record of `type`.
inline size_t ParsedAreaOffset(uint8_t type) { return ParsedBytes(type) + ParsedStrings(type).size() * kPointerSize; }

// Returns the string whose number is at `indexOffset` of the structure; null if the structure doesn't have it.
inline const char* ParsedString(const uint8_t* body, size_t indexOffset) {
    const std::span<const uint8_t> indexOffsets = ParsedStrings(body[0]);
    for (size_t place = 0; place < indexOffsets.size(); place++) {
        if (indexOffsets[place] != indexOffset) continue;
        const char* text;
        std::memcpy(&text, body + ParsedBytes(body[0]) + place * kPointerSize, sizeof text);
        return text;
    }
    return nullptr;
}
