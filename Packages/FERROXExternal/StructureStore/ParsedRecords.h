// Records of types 0 to 2: a fixed count of the structure's bytes, then a pointer to each of its strings, then the
// string area that the pointers point into. The store makes these records and the decoders of the three types read
// them; both take the layout from here.
#pragma once

#include <cstdint>
#include <cstring>
#include <iterator>
#include <span>

// For each pointer, in order: the structure offset of the byte that holds the string's number.
inline constexpr uint8_t kBiosBytes = 24;
inline constexpr uint8_t kBiosStrings[] = {0x04, 0x05, 0x08};
inline constexpr uint8_t kSystemBytes = 27;
inline constexpr uint8_t kSystemStrings[] = {0x04, 0x05, 0x06, 0x07, 0x19, 0x1A};
inline constexpr uint8_t kBaseboardBytes = 15;
inline constexpr uint8_t kBaseboardStrings[] = {0x04, 0x05, 0x06, 0x07, 0x08, 0x0A};

// The pointers stand unaligned behind the bytes, 8 bytes apart.
inline constexpr size_t kPointerSize = sizeof(const char*);
static_assert(kPointerSize == 8);

// How many of the structure's bytes a parsed record of `type` holds; 0 for a type whose record is the structure itself.
inline uint8_t ParsedBytes(uint8_t type) {
    constexpr uint8_t kBytes[] = {kBiosBytes, kSystemBytes, kBaseboardBytes};
    return type < std::size(kBytes) ? kBytes[type] : 0;
}

// The offsets that its pointers stand for.
inline std::span<const uint8_t> ParsedStrings(uint8_t type) {
    constexpr std::span<const uint8_t> kStrings[] = {kBiosStrings, kSystemStrings, kBaseboardStrings};
    return type < std::size(kStrings) ? kStrings[type] : std::span<const uint8_t>();
}

// Where the string area of a parsed record of `type` begins.
inline size_t ParsedAreaOffset(uint8_t type) { return ParsedBytes(type) + ParsedStrings(type).size() * kPointerSize; }

// The text that the string number at `indexOffset` names, or null when the structure holds no such string.
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
