#include "Sources/Rows.h"

#include <algorithm>
#include <bit>

#include "Packages/FERROXExternal/StructureStore/ParsedRecords.h"

static std::string HexDigits(uint64_t value, uint32_t width, const char* alphabet, std::string_view after = {}) {
    const auto digits = std::max<uint32_t>({width, (static_cast<uint32_t>(std::bit_width(value)) + 3) / 4, 1});
    std::string text(digits + after.size(), '0');
    char* place = text.data() + digits;
    for (; value != 0; value >>= 4) *--place = alphabet[value & 15];
    std::ranges::copy(after, text.data() + digits);
    return text;
}

std::string PlainHex(uint64_t value, uint32_t width) { return HexDigits(value, width, "0123456789abcdef"); }

std::string PlainUpperHex(uint64_t value) { return HexDigits(value, 1, "0123456789ABCDEF"); }

std::string HexText(uint64_t value, uint32_t width) { return HexDigits(value, width, "0123456789ABCDEF", "h"); }

std::string BitsText(std::span<const CodeText_t> table, uint32_t value, uint32_t count) {
    std::string text;
    for (uint32_t bit = 0; bit < count; bit++) {
        if ((value >> bit & 1) == 0) continue;
        if (!text.empty()) text += ", ";
        text += TextOf(table, bit, {});
    }
    return text;
}

static ClText ShowHex(const Field_t& field, uint64_t value) { return HexText(value, field.Number()); }

ClText ShowGroup(const Field_t&) { return {}; }
ClText ShowDec8(const Field_t& field) { return std::to_string(field.Byte()); }
ClText ShowDec16(const Field_t& field) { return std::to_string(field.Word()); }
ClText ShowDec32(const Field_t& field) { return std::to_string(field.Dword()); }
ClText ShowHex8(const Field_t& field) { return ShowHex(field, field.Byte()); }
ClText ShowHex16(const Field_t& field) { return ShowHex(field, field.Word()); }
ClText ShowHex32(const Field_t& field) { return ShowHex(field, field.Dword()); }
ClText ShowHex64(const Field_t& field) { return ShowHex(field, field.Qword()); }

ClText ShowString(const Field_t& field) { return RecordString(field.Byte(), field.structure.Data()); }

ClText ShowStringOrNone(const Field_t& field) {
    const uint8_t number = field.Byte();
    return number == 0 ? "None" : RecordString(number, field.structure.Data());
}

ClText ShowFixedText(const Field_t& field) { return field.Text(); }

ClText ShowParsedString(const Field_t& field) {
    if (field.Byte() == 0) return "None";
    const char* text = ParsedString(field.structure.Data(), field.offset);
    return text == nullptr ? "None" : text;
}

ClText ShowEnum8(const Field_t& field) { return TextOf(field.Table(), field.Byte(), field.Text()); }

static ClText EnumOfBits(const Field_t& field, uint32_t value) {
    const uint32_t first = field.Number() & 0xFF, count = field.Number() >> 8;
    return TextOf(field.Table(), value >> first & ((1u << count) - 1), field.Text());
}

ClText ShowEnumOfBits8(const Field_t& field) { return EnumOfBits(field, field.Byte()); }
ClText ShowEnumOfBits16(const Field_t& field) { return EnumOfBits(field, field.Word()); }

std::string BitsOrNone(std::span<const CodeText_t> table, uint32_t value, uint32_t count) {
    return (value & ((1u << count) - 1)) == 0 ? "None" : BitsText(table, value, count);
}

static ClText BitWords(const Field_t& field, uint32_t value) {
    return BitsOrNone(field.Table(), value, field.Number());
}

ClText ShowBitWords8(const Field_t& field) { return BitWords(field, field.Byte()); }
ClText ShowBitWords16(const Field_t& field) { return BitWords(field, field.Word()); }

static ClText YesNo(const Field_t& field, uint32_t value) { return (value >> field.Number() & 1) != 0 ? "Yes" : "No"; }

ClText ShowYesNo8(const Field_t& field) { return YesNo(field, field.Byte()); }
ClText ShowYesNo16(const Field_t& field) { return YesNo(field, field.Word()); }
ClText ShowYesNo32(const Field_t& field) { return YesNo(field, field.Dword()); }

ClText ShowDec16WithUnit(const Field_t& field) { return std::to_string(field.Word()).append(field.Text()); }

ClText ShowDec16AndHex(const Field_t& field) {
    const uint16_t value = field.Word();
    return std::to_string(value).append(" (").append(HexText(value, field.Number())).append(")");
}

// Decimal, bits 3 to 7.
ClText ShowDeviceNumber(const Field_t& field) { return std::to_string(field.Byte() >> 3); }
// Decimal, bits 0 to 2.
ClText ShowFunctionNumber(const Field_t& field) { return std::to_string(field.Byte() & 7); }

static ClText BitText(const Field_t& field, uint32_t value) {
    return TextOf(field.Table(), value >> field.Number() & 1, {});
}

ClText ShowBit8(const Field_t& field) { return BitText(field, field.Byte()); }
ClText ShowBit32(const Field_t& field) { return BitText(field, field.Dword()); }
