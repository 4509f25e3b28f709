// What the items of one structure read. The page of all items, which a test holds against the decoders, lists every
// word of every enumeration; here stand the values, bits and bounds that a fault would shift.
#pragma once

#include <span>
#include <string>

#include "Tests/Support/Structures.h"

// Expects the structure's title, its head items "Type", "Length" and "Handle", and then these lines.
void ExpectItems(const ClStructureBuilder& structure, const std::string& title, const std::string& lines);

struct KeyText_t {
    const char *key, *text;
};
// Expects the first item of each key to read so.
void ExpectTexts(const ClItems& items, std::span<const KeyText_t> texts);

// A field's value, and what the first item of a key then reads.
struct Reading_t {
    size_t offset;
    uint32_t value;
    const char *key, *text;
};
// Expects each reading of the structure with that field alone changed: a field of one byte, or of two.
void ExpectBytes(const ClStructureBuilder& structure, std::span<const Reading_t> readings);
void ExpectWords(const ClStructureBuilder& structure, std::span<const Reading_t> readings);

// Values of an enumeration from `first` to `last`, without a gap; without a last text, `first` alone.
struct Stretch_t {
    uint8_t first = 0;
    const char* firstText = nullptr;  // null: no stretch
    uint8_t last = 0;
    const char* lastText = nullptr;
};
// Expects the byte at `offset` to read, under `key`, as told at the ends of each stretch, and as `otherwise` for every
// value outside them.
void ExpectEnumeration(ClStructureBuilder structure, size_t offset, const std::string& key,
                       const std::string& otherwise, const Stretch_t& stretch, const Stretch_t& second = {},
                       const Stretch_t& third = {}, const Stretch_t& fourth = {});
