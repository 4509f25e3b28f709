// Builds the sample at compile time. Structures of a type are a table with a row for each, and a layout says how the
// cells of a row become bytes. A row that doesn't fit its layout doesn't compile.
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

// A cell: a number, or a text for the string area.
struct SampleValue_t {
    template <std::integral Number_t>
    constexpr SampleValue_t(Number_t value) : number(static_cast<uint64_t>(value)) {}
    constexpr SampleValue_t(const char* value) : text(value) {}

    uint64_t number = 0;
    const char* text = nullptr;
};

using SampleRow_t = std::initializer_list<SampleValue_t>;

class ClSampleBuilder {
  public:
    // Appends a structure for each row. The first cell of a row is the handle. The letters of `layout` describe the
    // others:
    //   b w d q  a number of 1, 2, 4 or 8 bytes, little-endian
    //   s        a string number: the cell is the text, or the number itself (0: no string)
    //   S        a text in the string area, without a field
    //   0        a zero byte, without a cell
    //   |        a row may end here, as the structure does in an older version of the standard
    //   :        a row may end here; the rest of the layout repeats until the row ends
    //   blank    separates groups
    constexpr void Add(uint8_t type, const char* layout, std::initializer_list<SampleRow_t> rows) {
        for (const SampleRow_t& row : rows) AddStructure(type, layout, row);
    }

    constexpr size_t Size() const { return m_size; }
    constexpr const uint8_t* Bytes() const { return m_bytes.data(); }

  private:
    struct Strings_t {
        std::array<const char*, 64> texts{};
        size_t count = 0;

        constexpr uint64_t Append(const char* text) {
            Require(text != nullptr && *text != '\0', "an empty text would close the string area");
            texts[count++] = text;
            return count;
        }
    };

    static constexpr void Require(bool holds, const char* why) {
        if (!holds) throw why;  // not a constant expression, so the compiler reports it
    }

    constexpr void AddStructure(uint8_t type, const char* layout, const SampleRow_t& row) {
        const size_t start = m_size;
        const SampleValue_t* cell = row.begin();
        AppendNumber(type, 1);
        AppendNumber(0, 1);  // Length, set below
        AppendNumber((cell++)->number, 2);

        Strings_t strings;
        const char* repeated = nullptr;
        for (const char* letter = layout;; ++letter) {
            if (*letter == ' ') continue;
            if (*letter == '0') {
                AppendNumber(0, 1);
                continue;
            }
            const bool mayEnd = *letter == '|' || *letter == ':' || *letter == '\0';
            if (mayEnd && cell == row.end()) break;
            if (*letter == ':') repeated = letter;
            if (*letter == '\0') {
                Require(repeated != nullptr, "the row has more cells than its layout");
                letter = repeated;
            }
            if (mayEnd) continue;
            Require(cell != row.end(), "the row ends where its structure can't");
            AppendField(*letter, *cell++, strings);
        }
        Require(m_size - start <= 0xFF, "the formatted area is too long for its Length");
        m_bytes[start + 1] = static_cast<uint8_t>(m_size - start);
        AppendStrings(strings);
    }

    constexpr void AppendField(char letter, const SampleValue_t& cell, Strings_t& strings) {
        const bool isString = letter == 's' || letter == 'S';
        Require(isString || cell.text == nullptr, "the row has a text where the layout has a number");
        const uint64_t number = cell.text == nullptr ? cell.number : strings.Append(cell.text);
        switch (letter) {
            case 'S': Require(cell.text != nullptr, "S takes a text"); break;
            case 's':
            case 'b': AppendNumber(number, 1); break;
            case 'w': AppendNumber(number, 2); break;
            case 'd': AppendNumber(number, 4); break;
            case 'q': AppendNumber(number, 8); break;
            default: Require(false, "the layout has an unknown letter");
        }
    }

    constexpr void AppendStrings(const Strings_t& strings) {
        for (size_t i = 0; i < strings.count; ++i) {
            for (const char* c = strings.texts[i]; *c != '\0'; ++c) AppendNumber(static_cast<uint8_t>(*c), 1);
            AppendNumber(0, 1);
        }
        AppendNumber(0, strings.count == 0 ? 2 : 1);
    }

    constexpr void AppendNumber(uint64_t number, int width) {
        Require(width == 8 || number >> (8 * width) == 0, "the number is wider than its field");
        for (int i = 0; i < width; ++i) m_bytes[m_size++] = static_cast<uint8_t>(number >> (8 * i));
    }

    std::array<uint8_t, 16384> m_bytes{};
    size_t m_size = 0;
};
