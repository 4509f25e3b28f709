// Rows as the library keeps them. A pointer in a row would cost a relocation at start-up, and so would each word
// between two of them. So a packed row has places instead: of its texts in one array of characters, of its rendering
// and its table in lists.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "Sources/Text.h"

struct CodeText_t {
    uint32_t code;  // the value, or the bit's number in a bit list
    uint8_t size = 0;
    char characters[75] = {};

    constexpr CodeText_t(uint32_t number, std::string_view text)
        : code(number), size(static_cast<uint8_t>(text.size())) {
        std::ranges::copy(text, characters);
    }
    constexpr std::string_view Text() const { return {characters, size}; }
};

struct Field_t;
using Render_t = ClText (*)(const Field_t& field);

struct PackedText_t {
    uint16_t at;
    uint16_t size;
};

struct PackedRow_t {
    PackedText_t key;
    PackedText_t text;
    uint32_t number;
    uint16_t offset;
    uint16_t words;  // in the table
    uint8_t render;
    uint8_t table;
};

// The packed rows of one table.
struct Rows_t {
    std::span<const PackedRow_t> rows = {};
    const char* texts = nullptr;
    const Render_t* renders = nullptr;  // after those of kSharedRenders
    const CodeText_t* const* tables = nullptr;

    std::string_view Text(PackedText_t text) const { return {texts + text.at, text.size}; }
    std::span<const CodeText_t> Table(const PackedRow_t& row) const { return {tables[row.table], row.words}; }
};
