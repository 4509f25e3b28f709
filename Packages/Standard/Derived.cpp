// Facts that are made from others: sizes that two fields share, addresses, dates and versions.
#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>

#include "Packages/Standard/Facts.h"

namespace {

// Builds short texts. They fit, as each of their parts is bounded.
class ClShortText {
  public:
    ClShortText& Add(std::string_view text) {
        memcpy(m_text + m_size, text.data(), text.size());
        m_size += text.size();
        return *this;
    }
    ClShortText& AddNumber(uint64_t number, int digits = 1, uint32_t base = 10) {
        char reversed[20];
        int size = 0;
        for (; number != 0 || size < digits; number /= base) reversed[size++] = "0123456789abcdef"[number % base];
        while (size > 0) m_text[m_size++] = reversed[--size];
        return *this;
    }
    std::string_view View() const { return {m_text, m_size}; }

  private:
    char m_text[64];
    size_t m_size = 0;
};

struct Date_t {
    uint32_t year, month, day;
    bool IsDate() const { return year >= 1970 && month >= 1 && month <= 12 && day >= 1 && day <= 31; }
};

std::optional<uint32_t> Digits(std::string_view text) {
    uint32_t number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') return std::nullopt;
        number = number * 10 + static_cast<uint32_t>(c - '0');
    }
    return number;
}

// Reads mm/dd/yyyy, mm/dd/yy (of the last century), and what begins with yyyy-mm-dd.
std::optional<Date_t> ParseDate(std::string_view text) {
    while (text.ends_with(' ')) text.remove_suffix(1);
    std::optional<uint32_t> year, month, day;
    if (text.size() >= 10 && text[4] == '-' && text[7] == '-') {
        year = Digits(text.substr(0, 4));
        month = Digits(text.substr(5, 2));
        day = Digits(text.substr(8, 2));
    } else if ((text.size() == 10 || text.size() == 8) && text[2] == '/' && text[5] == '/') {
        year = Digits(text.substr(6));
        month = Digits(text.substr(0, 2));
        day = Digits(text.substr(3, 2));
        if (year && text.size() == 8) *year += 1900;
    }
    if (!year || !month || !day) return std::nullopt;
    const Date_t date = {*year, *month, *day};
    return date.IsDate() ? std::optional(date) : std::nullopt;
}

// Families of processors whose ID is what CPUID leaf 1 returns in EAX and EDX.
struct Families_t {
    uint16_t first;
    uint16_t last;
};
constexpr Families_t kCpuidFamilies[] = {
    {0x0B, 0x18}, {0x1A, 0x1D}, {0x1F, 0x1F},   {0x28, 0x2F},   {0x38, 0x3F},   {0x46, 0x4F},
    {0x66, 0x68}, {0x6A, 0x6B}, {0x78, 0x7A},   {0x83, 0x8F},   {0xA1, 0xB3},   {0xB5, 0xB7},
    {0xB9, 0xC7}, {0xCD, 0xEF}, {0x12C, 0x12E}, {0x140, 0x140}, {0x300, 0x307},
};

bool HasCpuid(uint64_t family) {
    return std::ranges::any_of(kCpuidFamilies,
                               [=](Families_t range) { return family >= range.first && family <= range.last; });
}

}  // namespace

void ClFacts::Derive(const Area_t& area, const StandardField_t& field, Fact_t& fact) {
    const Fact_t first = Source(area, field, 0);
    const auto second = [&] { return Source(area, field, 1); };
    const auto take = [&fact](const Fact_t& source) {
        fact.state = source.state;
        fact.number = source.number;
        fact.text = source.text;
    };
    // The value of a field, or of the one that it refers to.
    const auto firstUsable = [&](const Fact_t& a, const auto& other) {
        if (!a.isReference) return take(a);
        const Fact_t b = other();
        take(b);
        if (b.state != FactState_t::kAbsent) return;
        // Before the other field was there, the number of most fields meant itself.
        fact.text = "";
        const Form_t form = a.field->form;
        fact.state = FactState_t::kValue;
        if (form == Form_t::kRomSize)
            fact.number = (a.number + 1) << 16;
        else if (form == Form_t::kMemorySize)
            fact.number = a.number << 20;
        else if (form == Form_t::kNumber && a.unit == Unit_t::kNone)
            fact.number = a.number;
        else
            fact.state = FactState_t::kUnknown;
    };

    switch (field.derivation) {
        case Derivation_t::kFirstUsable: firstUsable(first, second); break;
        case Derivation_t::kIsoDate: {
            take(first.field->form == Form_t::kText && first.state == FactState_t::kNone && field.sources == 2
                     ? second()
                     : first);
            if (fact.state != FactState_t::kValue || first.state == FactState_t::kNone) break;
            const std::optional<Date_t> date = ParseDate(fact.text);
            fact.text = "";
            if (!date) {
                fact.state = FactState_t::kNone;
                break;
            }
            ClShortText text;
            text.AddNumber(date->year, 4).Add("-").AddNumber(date->month, 2).Add("-").AddNumber(date->day, 2);
            SetText(text.View(), fact);
            break;
        }
        case Derivation_t::kRelease: {
            const Fact_t minor = second();
            take(first.IsValue() ? minor : first);
            fact.number = 0;
            if (!first.IsValue() || !minor.IsValue()) break;
            SetText(ClShortText().AddNumber(first.number).Add(".").AddNumber(minor.number).View(), fact);
            break;
        }
        case Derivation_t::kRealModeAddress:
            take(first);
            fact.number = first.number << 4;
            break;
        case Derivation_t::kRealModeSize:
            take(first);
            fact.number = (0x10000 - first.number) << 4;
            break;
        case Derivation_t::kProcessorSignature:
        case Derivation_t::kProcessorFeatures: {
            take(first);
            Fact_t family = second();
            if (family.isReference) family = Source(area, field, 2);
            if (!first.IsValue()) break;
            const auto eax = static_cast<uint32_t>(first.number);
            const uint64_t edx = first.number >> 32;
            fact.number = 0;
            if (!family.IsValue() || !HasCpuid(family.number) || eax == 0) {
                fact.state = FactState_t::kNone;
            } else if (field.derivation == Derivation_t::kProcessorFeatures) {
                fact.number = edx;
            } else {
                ClShortText text;
                const uint32_t base = eax >> 8 & 0xF;
                const uint32_t familyNumber = base == 15 ? base + (eax >> 20 & 0xFF) : base;
                const uint32_t model = (eax >> 4 & 0xF) + (base == 6 || base == 15 ? eax >> 12 & 0xF0 : 0);
                text.Add("Type ").AddNumber(eax >> 12 & 3).Add(", Family ").AddNumber(familyNumber);
                text.Add(", Model ").AddNumber(model).Add(", Stepping ").AddNumber(eax & 0xF);
                SetText(text.View(), fact);
            }
            break;
        }
        case Derivation_t::kProcessorVoltage: {
            take(first);
            if (!first.IsValue()) break;
            // Without bit 7, the bits say which voltages the socket can have.
            if (first.number & 0x80)
                fact.number = (first.number & 0x7F) * 100;
            else if ((first.number & 7) == 1)
                fact.number = 5000;
            else if ((first.number & 7) == 2)
                fact.number = 3300;
            else if ((first.number & 7) == 4)
                fact.number = 2900;
            else
                fact.state = first.number & 7 ? FactState_t::kNone : FactState_t::kUnknown;
            break;
        }
        case Derivation_t::kPciAddress: {
            const Fact_t bus = second(), device = Source(area, field, 2);
            take(first.IsValue() ? bus.IsValue() ? device : bus : first);
            if (fact.state != FactState_t::kValue) break;
            ClShortText text;
            text.AddNumber(first.number, 4, 16).Add(":").AddNumber(bus.number, 2, 16).Add(":");
            text.AddNumber(device.number >> 3, 2, 16).Add(".").AddNumber(device.number & 7);
            SetText(text.View(), fact);
            fact.number = 0;
            break;
        }
        case Derivation_t::kRangeEnd:
            firstUsable(first, second);
            if (!first.isReference) fact.number += 1023;  // the last kilobyte is included
            break;
        case Derivation_t::kRangeSize: {
            firstUsable(first, second);
            const Fact_t last = Source(area, field, 2);
            if (fact.state != FactState_t::kValue) break;
            const uint64_t begin = fact.number;
            firstUsable(last, [&] { return Source(area, field, 3); });
            if (fact.state != FactState_t::kValue) break;
            const uint64_t end = last.isReference ? fact.number : fact.number + 1023;
            fact.number = end - begin + 1;
            if (end < begin) fact.state = FactState_t::kNone;
            break;
        }
        case Derivation_t::kBatteryCapacity:
            take(first);
            if (const Fact_t factor = second(); factor.IsValue() && factor.number != 0)
                fact.number = first.number * factor.number;
            break;
        case Derivation_t::kIpmiAddress: {
            const Fact_t modifier = second(), interface = Source(area, field, 2);
            take(first);
            fact.number = (first.number & ~1ull) | (modifier.IsValue() ? modifier.number >> 4 & 1 : 0);
            if (interface.number == 4) fact.state = FactState_t::kNone;  // SSIF has an address on a bus
            break;
        }
        case Derivation_t::kTpmFirmwareVersion: {
            const Fact_t low = second(), major = Source(area, field, 2);
            take(low.IsValue() ? first : low);
            if (fact.state != FactState_t::kValue) break;
            fact.number = 0;
            ClShortText text;
            const auto number = static_cast<uint32_t>(first.number);
            if (major.number == 1)
                text.AddNumber(number >> 16 & 0xFF).Add(".").AddNumber(number >> 24);
            else
                text.AddNumber(number >> 16).Add(".").AddNumber(number & 0xFFFF);
            SetText(text.View(), fact);
            break;
        }
        case Derivation_t::kNotDerived: break;
    }
    // Whether a derived fact is there depends on the length alone, so on its first field.
    if (first.state == FactState_t::kAbsent)
        fact.state = FactState_t::kAbsent;
    else if (fact.state == FactState_t::kAbsent)
        fact.state = FactState_t::kNone;
    if (fact.state != FactState_t::kValue && fact.kind != FactKind_t::kCode) fact.number = 0;
}
