#include "Sources/Rows.h"

#include <algorithm>

#include "Packages/FERROXExternal/StructureStore/ParsedRecords.h"

static std::string HexDigits(uint64_t value, uint32_t digits, const char* alphabet) {
    char text[16];
    uint32_t count = 0;
    do text[15 - count++] = alphabet[value & 15];
    while ((value >>= 4) != 0);
    std::string result(digits > count ? digits - count : 0, '0');
    return result.append(text + 16 - count, count);
}

std::string PlainHex(uint64_t value) { return HexDigits(value, 1, "0123456789abcdef"); }

std::string PlainUpperHex(uint64_t value) { return HexDigits(value, 1, "0123456789ABCDEF"); }

std::string HexText(uint64_t value, uint32_t width) { return HexDigits(value, width, "0123456789ABCDEF") += 'h'; }

std::string BitsText(std::span<const CodeText_t> table, uint32_t value, uint32_t count) {
    std::string text;
    for (uint32_t bit = 0; bit < count; bit++) {
        if ((value >> bit & 1) == 0) continue;
        if (!text.empty()) text += ", ";
        text += TextOf(table, bit, {});
    }
    return text;
}

static ClText ShowHex(const Field_t& field, uint64_t value) { return HexText(value, field.row.rendering.number); }

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

ClText ShowFixedText(const Field_t& field) { return field.row.rendering.text; }

ClText ShowParsedString(const Field_t& field) {
    if (field.Byte() == 0) return "None";
    const char* text = ParsedString(field.structure.Data(), field.row.offset);
    return text == nullptr ? "None" : text;
}

ClText ShowEnum8(const Field_t& field) {
    const Rendering_t& rendering = field.row.rendering;
    return TextOf(rendering.table, field.Byte(), rendering.text);
}

static ClText EnumOfBits(const Rendering_t& rendering, uint32_t value) {
    const uint32_t first = rendering.number & 0xFF, count = rendering.number >> 8;
    return TextOf(rendering.table, value >> first & ((1u << count) - 1), rendering.text);
}

ClText ShowEnumOfBits8(const Field_t& field) { return EnumOfBits(field.row.rendering, field.Byte()); }
ClText ShowEnumOfBits16(const Field_t& field) { return EnumOfBits(field.row.rendering, field.Word()); }

std::string BitsOrNone(std::span<const CodeText_t> table, uint32_t value, uint32_t count) {
    return (value & ((1u << count) - 1)) == 0 ? "None" : BitsText(table, value, count);
}

static ClText BitWords(const Rendering_t& bits, uint32_t value) { return BitsOrNone(bits.table, value, bits.number); }

ClText ShowBitWords8(const Field_t& field) { return BitWords(field.row.rendering, field.Byte()); }
ClText ShowBitWords16(const Field_t& field) { return BitWords(field.row.rendering, field.Word()); }

static ClText YesNo(const Field_t& field, uint32_t value) {
    return (value >> field.row.rendering.number & 1) != 0 ? "Yes" : "No";
}

ClText ShowYesNo8(const Field_t& field) { return YesNo(field, field.Byte()); }
ClText ShowYesNo16(const Field_t& field) { return YesNo(field, field.Word()); }
ClText ShowYesNo32(const Field_t& field) { return YesNo(field, field.Dword()); }

ClText ShowDec16WithUnit(const Field_t& field) { return std::to_string(field.Word()).append(field.row.rendering.text); }

ClText ShowDec16AndHex(const Field_t& field) {
    const uint16_t value = field.Word();
    return std::to_string(value).append(" (").append(HexText(value, field.row.rendering.number)).append(")");
}

// Decimal, bits 3 to 7.
ClText ShowDeviceNumber(const Field_t& field) { return std::to_string(field.Byte() >> 3); }
// Decimal, bits 0 to 2.
ClText ShowFunctionNumber(const Field_t& field) { return std::to_string(field.Byte() & 7); }

static ClText BitText(const Field_t& field, uint32_t value) {
    const Rendering_t& rendering = field.row.rendering;
    return TextOf(rendering.table, value >> rendering.number & 1, {});
}

ClText ShowBit8(const Field_t& field) { return BitText(field, field.Byte()); }
ClText ShowBit32(const Field_t& field) { return BitText(field, field.Dword()); }
