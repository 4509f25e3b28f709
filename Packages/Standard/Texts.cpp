#include "Packages/Standard/Texts.h"

#include <cstdio>

namespace {

constexpr char kDigits[] = "0123456789ABCDEF";

std::string NumberText(const Fact_t& fact) {
    return fact.isSigned ? std::to_string(static_cast<int64_t>(fact.number)) : std::to_string(fact.number);
}

}  // namespace

std::string SizeText(uint64_t bytes) {
    static constexpr char kUnits[][4] = {"B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    size_t unit = 0;
    while (bytes != 0 && bytes % 1024 == 0 && unit + 1 < std::size(kUnits)) bytes /= 1024, unit++;
    return std::to_string(bytes) + " " + kUnits[unit];
}

std::string CodeText(uint64_t code) {
    char text[19];
    std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(code));
    return text;
}

std::string HandleText(uint16_t handle) {
    return {kDigits[handle >> 12], kDigits[handle >> 8 & 15], kDigits[handle >> 4 & 15], kDigits[handle & 15], 'h'};
}

std::string HexDigits(std::span<const uint8_t> bytes) {
    std::string text(2 * bytes.size(), '0');
    char* place = text.data();
    for (const uint8_t byte : bytes) {
        *place++ = kDigits[byte >> 4];
        *place++ = kDigits[byte & 15];
    }
    return text;
}

std::string PlainValue(const ClFacts& facts, const Fact_t& fact) {
    switch (fact.kind) {
        case FactKind_t::kCode:
            return fact.state == FactState_t::kReserved ? CodeText(fact.number) : std::string(fact.text);
        case FactKind_t::kBits: {
            std::string words;
            facts.ForEachWord(fact,
                              [&](std::string_view word) { words.append(words.empty() ? "" : ", ").append(word); });
            return words;
        }
        case FactKind_t::kBytes: return HexDigits(facts.Bytes(fact));
        case FactKind_t::kNumber:
        case FactKind_t::kHandle:
        case FactKind_t::kList: return NumberText(fact);
        default: return std::string(fact.text);
    }
}

std::string ShownValue(const ClFacts& facts, const Fact_t& fact) {
    switch (fact.state) {
        case FactState_t::kReserved: return "reserved (" + CodeText(fact.number) + ")";
        case FactState_t::kFiller: return std::string(fact.text) + " (filler)";
        case FactState_t::kBroken:
            return fact.kind == FactKind_t::kHandle ? HandleText(static_cast<uint16_t>(fact.number)) + " (broken)"
                                                    : "broken";
        case FactState_t::kValue: break;
        default:
            if (fact.isReference) return "see " + std::string(fact.text);
            return std::string(fact.text.empty() || fact.kind == FactKind_t::kCode ? StateName(fact.state) : fact.text);
    }
    if (fact.kind == FactKind_t::kHandle) return HandleText(static_cast<uint16_t>(fact.number));
    if (fact.kind == FactKind_t::kList && fact.number == 0) return "empty";
    if (fact.kind != FactKind_t::kNumber) {
        std::string text = PlainValue(facts, fact);
        return fact.kind == FactKind_t::kBits && text.empty() ? "none set" : text;
    }
    if (fact.field->form == Form_t::kHex && fact.unit == Unit_t::kNone) return CodeText(fact.number);
    if (fact.unit == Unit_t::kByte) return SizeText(fact.number);
    std::string text = NumberText(fact);
    if (fact.unit != Unit_t::kNone) text.append(" ").append(UnitName(fact.unit));
    return text;
}

std::string RawDigits(const ClFacts& facts, const Fact_t& fact) {
    std::string digits = HexDigits(facts.Bytes(fact));
    if (!fact.string.empty())
        digits += HexDigits({reinterpret_cast<const uint8_t*>(fact.string.data()), fact.string.size()});
    return digits;
}
