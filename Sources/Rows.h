// The rows of decoders and their renderings.
//
// A row is a line of a structure's field list, in output order, and its last cell says how the field reads as text. A
// field with logic of its own has a small function, and its row looks like every other row. The library keeps packed
// rows: PackedRows.h.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "Sources/PackedRows.h"
#include "Sources/Structure.h"
#include "Sources/Text.h"

// Returns the text of `code`, or `otherwise` for a code that the table doesn't contain. Expects rising codes, and is
// fastest for tables without gaps.
constexpr std::string_view TextOf(std::span<const CodeText_t> table, uint32_t code, std::string_view otherwise) {
    if (table.empty() || code < table.front().code) return otherwise;
    const size_t place = code - table.front().code;
    if (place < table.size() && table[place].code == code) return table[place].Text();
    const auto row = std::ranges::lower_bound(table, code, {}, &CodeText_t::code);
    return row == table.end() || row->code != code ? otherwise : row->Text();
}

// Whether every code appears once, in rising order. TextOf depends on it, so each table has a static_assert.
consteval bool IsRising(std::span<const CodeText_t> table) {
    return std::ranges::adjacent_find(table, std::ranges::greater_equal{}, &CodeText_t::code) == table.end();
}

class ClSMBIOSType;

// What a rendering works on: the structure, the field's row, and the decoder for what depends on the machine.
struct Field_t {
    const ClStructure& structure;
    const Rows_t& rows;
    const PackedRow_t& row;
    const ClSMBIOSType& decoder;
    size_t offset;

    uint8_t Byte() const { return structure.Byte(offset); }
    uint16_t Word() const { return structure.Word(offset); }
    uint32_t Dword() const { return structure.Dword(offset); }
    uint64_t Qword() const { return structure.Qword(offset); }
    // Those of the rendering.
    std::string_view Text() const { return rows.Text(row.text); }
    std::span<const CodeText_t> Table() const { return rows.Table(row); }
    uint32_t Number() const { return row.number; }
};

struct Rendering_t {
    Render_t render;
    std::span<const CodeText_t> table = {};  // of an enumeration or bit list
    std::string_view text = {};              // an error word, a unit, or what else the rendering needs
    uint32_t number = 0;                     // of hexadecimal digits, or a bit's number
};

struct ItemRow_t {
    std::string_view key;
    size_t offset;
    Rendering_t rendering;
};

// Hexadecimal, zero-filled to `width` digits, without a closing "h".
std::string PlainHex(uint64_t value, uint32_t width = 1);
std::string PlainUpperHex(uint64_t value);
// Uppercase, zero-filled to `width` digits (a longer value is not cut), with a closing "h".
std::string HexText(uint64_t value, uint32_t width);
// The texts of the set bits below bit `count`, in rising order, joined by ", ". A set bit without a row adds only the
// separator.
std::string BitsText(std::span<const CodeText_t> table, uint32_t value, uint32_t count);
// The same, but "None" if none of these bits is set.
std::string BitsOrNone(std::span<const CodeText_t> table, uint32_t value, uint32_t count);

// The renderings that decoders share. The number in a name is the field's width in bits.
ClText ShowGroup(const Field_t& field);  // of a row that opens a sub-group, which has no value
ClText ShowDec8(const Field_t& field);
ClText ShowDec16(const Field_t& field);
ClText ShowDec32(const Field_t& field);
ClText ShowHex8(const Field_t& field);
ClText ShowHex16(const Field_t& field);
ClText ShowHex32(const Field_t& field);
ClText ShowHex64(const Field_t& field);
ClText ShowString(const Field_t& field);
ClText ShowStringOrNone(const Field_t& field);
ClText ShowFixedText(const Field_t& field);
ClText ShowParsedString(const Field_t& field);
ClText ShowEnum8(const Field_t& field);
ClText ShowEnumOfBits8(const Field_t& field);
ClText ShowEnumOfBits16(const Field_t& field);
ClText ShowBitWords8(const Field_t& field);
ClText ShowBitWords16(const Field_t& field);
ClText ShowYesNo8(const Field_t& field);
ClText ShowYesNo16(const Field_t& field);
ClText ShowYesNo32(const Field_t& field);
ClText ShowDec16WithUnit(const Field_t& field);
ClText ShowDec16AndHex(const Field_t& field);
ClText ShowDeviceNumber(const Field_t& field);
ClText ShowFunctionNumber(const Field_t& field);
ClText ShowBit8(const Field_t& field);
ClText ShowBit32(const Field_t& field);

// The renderings that packed rows share.
inline constexpr Render_t kSharedRenders[] = {
    ShowGroup,       ShowDec8,         ShowDec16,         ShowDec32,        ShowHex8,         ShowHex16,
    ShowHex32,       ShowHex64,        ShowString,        ShowStringOrNone, ShowFixedText,    ShowEnum8,
    ShowEnumOfBits8, ShowEnumOfBits16, ShowBitWords8,     ShowBitWords16,   ShowYesNo8,       ShowYesNo16,
    ShowYesNo32,     ShowParsedString, ShowDec16WithUnit, ShowDec16AndHex,  ShowDeviceNumber, ShowFunctionNumber,
    ShowBit8,        ShowBit32,
};
inline constexpr uint8_t kGroupPlace = 0;
static_assert(kSharedRenders[kGroupPlace] == ShowGroup);

inline Render_t RenderOf(const Rows_t& rows, const PackedRow_t& row) {
    constexpr size_t kShared = std::size(kSharedRenders);
    return row.render < kShared ? kSharedRenders[row.render] : rows.renders[row.render - kShared];
}
// A packed row as it was written.
inline ItemRow_t UnpackedRow(const Rows_t& rows, const PackedRow_t& row) {
    const Rendering_t rendering = {RenderOf(rows, row), rows.Table(row), rows.Text(row.text), row.number};
    return {rows.Text(row.key), row.offset, rendering};
}

inline constexpr Rendering_t Group{ShowGroup};
inline constexpr Rendering_t Dec8{ShowDec8}, Dec16{ShowDec16}, Dec32{ShowDec32};
// Hex8, Hex16, Hex32 and Hex64 zero-fill to the width of their field; the others to the number of digits named.
inline constexpr Rendering_t Hex8{ShowHex8, {}, {}, 2}, Hex16{ShowHex16, {}, {}, 4}, Hex32{ShowHex32, {}, {}, 8},
    Hex64{ShowHex64, {}, {}, 16};
constexpr Rendering_t Hex8Digits(uint32_t digits) { return {ShowHex8, {}, {}, digits}; }
constexpr Rendering_t Hex16Digits(uint32_t digits) { return {ShowHex16, {}, {}, digits}; }
inline constexpr Rendering_t String{ShowString};              // number 0 shows the first string, as 1 does
inline constexpr Rendering_t StringOrNone{ShowStringOrNone};  // "None" for number 0
// One text whatever the field contains: a constant, or a string that the decoder has found itself.
constexpr Rendering_t FixedText(std::string_view text) { return {ShowFixedText, {}, text}; }
// A string of a parsed record; "None" for number 0 and for a number without a string.
inline constexpr Rendering_t ParsedText{ShowParsedString};
constexpr Rendering_t Enum8(std::span<const CodeText_t> table, std::string_view otherwise) {
    return {ShowEnum8, table, otherwise};
}
// The word of `count` bits, the lowest of which is `first`.
constexpr uint32_t BitRange(uint32_t first, uint32_t count) { return first | count << 8; }
constexpr Rendering_t EnumOfBits8(uint32_t first, uint32_t count, std::span<const CodeText_t> table,
                                  std::string_view otherwise) {
    return {ShowEnumOfBits8, table, otherwise, BitRange(first, count)};
}
constexpr Rendering_t EnumOfBits16(uint32_t first, uint32_t count, std::span<const CodeText_t> table,
                                   std::string_view otherwise) {
    return {ShowEnumOfBits16, table, otherwise, BitRange(first, count)};
}
// The words of the set bits below bit `count`, joined by ", "; "None" if none of these bits is set.
constexpr Rendering_t BitWords8(std::span<const CodeText_t> table) { return {ShowBitWords8, table, {}, 8}; }
constexpr Rendering_t BitWords16(std::span<const CodeText_t> table, uint32_t count) {
    return {ShowBitWords16, table, {}, count};
}
// The text of a code in a rendering's table, for decoders that offer it as a function too.
constexpr std::string_view WordOf(const Rendering_t& enumeration, uint32_t code) {
    return TextOf(enumeration.table, code, enumeration.text);
}
// "Yes" or "No" from a bit of the field.
constexpr Rendering_t YesNo8(uint32_t bit) { return {ShowYesNo8, {}, {}, bit}; }
constexpr Rendering_t YesNo16(uint32_t bit) { return {ShowYesNo16, {}, {}, bit}; }
constexpr Rendering_t YesNo32(uint32_t bit) { return {ShowYesNo32, {}, {}, bit}; }
// A word in decimal with its unit, as in " MHz".
constexpr Rendering_t Dec16WithUnit(std::string_view unit) { return {ShowDec16WithUnit, {}, unit}; }
// A word in decimal, and in parentheses in hexadecimal of at least `digits`: 64 (0040h).
constexpr Rendering_t Dec16AndHex(uint32_t digits) { return {ShowDec16AndHex, {}, {}, digits}; }
// The two parts of a byte that locates a PCI function on its bus.
inline constexpr Rendering_t DeviceNumber{ShowDeviceNumber}, FunctionNumber{ShowFunctionNumber};
// One of two texts from a bit of the field: code 0 of the table when it is clear, code 1 when it is set.
constexpr Rendering_t Bit8(std::span<const CodeText_t> table, uint32_t bit) { return {ShowBit8, table, {}, bit}; }
constexpr Rendering_t Bit32(std::span<const CodeText_t> table, uint32_t bit) { return {ShowBit32, table, {}, bit}; }
// A field that a static member of its decoder renders, such as ClSMBIOSType7::GetCacheSizeString.
template <auto GetText>
constexpr Rendering_t Text8(std::span<const CodeText_t> table = {}) {
    return {[](const Field_t& field) -> ClText { return GetText(field.Byte()); }, table};
}
template <auto GetText>
constexpr Rendering_t Text16(std::span<const CodeText_t> table = {}) {
    return {[](const Field_t& field) -> ClText { return GetText(field.Word()); }, table};
}
