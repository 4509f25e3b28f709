// Packs the rows of a decoder at compile time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "Sources/Rows.h"

// Packs rows into arrays with room for any.
template <size_t kRows>
class ClRowPacker {
  public:
    consteval explicit ClRowPacker(const ItemRow_t (&rows)[kRows]) {
        for (const ItemRow_t& row : rows) {
            const Rendering_t& rendering = row.rendering;
            m_rows[m_rowCount++] = {
                .key = AddText(row.key),
                .text = AddText(rendering.text),
                .number = rendering.number,
                .offset = static_cast<uint16_t>(row.offset),
                .words = static_cast<uint16_t>(rendering.table.size()),
                .render = PlaceOf(rendering.render),
                .table = PlaceOf(rendering.table),
            };
        }
    }

    PackedRow_t m_rows[kRows] = {};
    Render_t m_renders[kRows] = {};
    const CodeText_t* m_tables[kRows] = {};
    char m_texts[kRows * 256] = {};
    size_t m_rowCount = 0, m_renderCount = 0, m_tableCount = 0, m_textSize = 0;

  private:
    consteval PackedText_t AddText(std::string_view text) {
        const auto at = static_cast<uint16_t>(m_textSize);
        for (const char c : text) m_texts[m_textSize++] = c;
        return {at, static_cast<uint16_t>(text.size())};
    }

    consteval uint8_t PlaceOf(Render_t render) {
        for (size_t place = 0; place < std::size(kSharedRenders); place++)
            if (AreSame(kSharedRenders[place], render)) return static_cast<uint8_t>(place);
        return static_cast<uint8_t>(std::size(kSharedRenders) + PlaceIn(m_renders, m_renderCount, render));
    }

    // With sanitizers not all pointers can be compared at compile time. Then equal ones have places of their own.
    template <class Value>
    static consteval bool AreSame(Value first, Value second) {
        return __builtin_constant_p(first == second) && first == second;
    }

    // A row without words has the place of any table.
    consteval uint8_t PlaceOf(std::span<const CodeText_t> table) {
        return table.empty() ? uint8_t{0} : PlaceIn(m_tables, m_tableCount, table.data());
    }

    template <class Value>
    static consteval uint8_t PlaceIn(Value* list, size_t& count, Value value) {
        size_t place = 0;
        while (place < count && !AreSame(list[place], value)) place++;
        if (place == count) list[count++] = value;
        return static_cast<uint8_t>(place);
    }
};

template <const auto& kTable>
inline constexpr ClRowPacker kRowPacker = ClRowPacker(kTable);

// An array of none isn't allowed.
template <class Value, size_t kSize>
struct PackedList_t {
    Value values[std::max<size_t>(kSize, 1)];
};
template <size_t kSize, class Value>
consteval PackedList_t<Value, kSize> FirstOf(const Value* values) {
    PackedList_t<Value, kSize> list = {};
    std::copy_n(values, kSize, list.values);
    return list;
}

// The arrays of a table, with just the room that they need. They are apart, as only two of them need relocations.
template <const auto& kTable>
inline constexpr auto kPackedRows = FirstOf<kRowPacker<kTable>.m_rowCount>(kRowPacker<kTable>.m_rows);
template <const auto& kTable>
inline constexpr auto kPackedTexts = FirstOf<kRowPacker<kTable>.m_textSize>(kRowPacker<kTable>.m_texts);
template <const auto& kTable>
inline constexpr auto kPackedRenders = FirstOf<kRowPacker<kTable>.m_renderCount>(kRowPacker<kTable>.m_renders);
template <const auto& kTable>
inline constexpr auto kPackedTables = FirstOf<kRowPacker<kTable>.m_tableCount>(kRowPacker<kTable>.m_tables);

// The packed form of a constexpr array of ItemRow_t. The array itself isn't in the library.
template <const auto& kTable>
constexpr Rows_t RowsOf() {
    return {kPackedRows<kTable>.values, kPackedTexts<kTable>.values, kPackedRenders<kTable>.values,
            kPackedTables<kTable>.values};
}
