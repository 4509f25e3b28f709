#include "Packages/Analysis/Check.h"

#include <algorithm>
#include <bitset>
#include <memory>

#include "Packages/Analysis/Memory.h"
#include "Packages/Analysis/Values.h"
#include "Packages/Standard/Texts.h"

namespace {

constexpr uint16_t kEndRequired = 0x0202;         // the level that requires an End-of-Table structure
constexpr uint16_t kStructuresRequired = 0x0203;  // and the one that requires these types
constexpr uint8_t kRequired[] = {0, 1, 3, 4, 7, 9, 16, 17, 19, 32};

// Texts that the standard requires of types 0, 1 and 3.
struct RequiredText_t {
    uint8_t type;
    char key[22];
};
constexpr RequiredText_t kRequiredTexts[] = {
    {0, "vendor"               },
    {0, "firmware_version"     },
    {0, "firmware_release_date"},
    {1, "manufacturer"         },
    {1, "product_name"         },
    {3, "manufacturer"         },
};

// Types whose last fields are optional or a list that has an entry at least, whatever the version, and the length
// without them.
struct LeastLength_t {
    uint8_t type, length;
};
constexpr LeastLength_t kLeastLengths[] = {
    {2,  0x08},
    {26, 0x14},
    {27, 0x0C},
    {28, 0x14},
    {29, 0x14},
    {38, 0x10},
    {39, 0x10}
};

// The length up to the last field at a fixed place that a level of the standard has. 0 for an unknown type.
uint32_t LengthAt(const StandardType_t& type, StandardVersion_t version) {
    uint32_t length = 0;
    for (const StandardField_t& field : type.TopFields()) {
        const bool isFixed = field.HasFixedPlace() || field.form == Form_t::kCount || field.form == Form_t::kStep;
        if (isFixed && field.offset < kAfterList && field.since != 0 && field.since <= version)
            length = std::max<uint32_t>(length, field.offset + field.width);
    }
    return length;
}

// The row of a type with optional last fields; null for others.
const LeastLength_t* OptionalPart(uint8_t type) {
    const auto* const row = std::ranges::find(kLeastLengths, type, &LeastLength_t::type);
    return row != std::end(kLeastLengths) ? row : nullptr;
}

bool HasControls(std::string_view text) {
    return std::ranges::any_of(text, [](unsigned char c) { return c < 0x20 || c == 0x7F; });
}

bool IsBlank(std::string_view text) {
    return std::ranges::all_of(text, [](unsigned char c) { return c <= ' '; });
}

}  // namespace

class ClTableCheck::ClCheck {
  public:
    ClCheck(const CheckedTable_t& table, const ReportFinding_t& report)
        : m_table(table), m_report(report), m_handles(table.bytes), m_memory(table.bytes) {
        const auto end = static_cast<uint32_t>(m_table.bytes.size());
        if (!m_table.checksumsFit) SayOfTable(RuleId_t::kChecksum, 0, "", "");
        if (m_table.missing != 0)
            SayOfTable(RuleId_t::kTableCutOff, end, std::to_string(end) + " bytes",
                       std::to_string(uint64_t{end} + m_table.missing) + " bytes");
    }

    FactOptions_t Options() const { return {.version = m_table.version, .handles = &m_handles}; }

    void Begin(const TableStructure_t& structure, const ClFacts& facts) {
        m_takesFacts = false;
        if (m_isOver) return;
        m_structure = &structure;
        m_facts = &facts;
        m_count++;
        m_isEnded = structure.Type() == kEndOfTable;
        m_types.set(structure.Type());
        m_isOver = structure.Length() < kHeaderSize;
        if (!CheckLength()) return;
        if (m_seen[structure.Handle()])
            Say(RuleId_t::kSameHandle, "", 2, 2, HandleText(structure.Handle()), "a handle of its own");
        m_seen.set(structure.Handle());
        m_values.Clear();
        m_takesFacts = true;
    }

    void Take(const Fact_t& fact) {
        if (!m_takesFacts) return;
        CheckFact(fact);
        m_values.Add(fact);
    }

    void End() {
        if (!m_takesFacts) return;
        const uint8_t type = m_structure->Type();
        for (const RequiredText_t& text : kRequiredTexts) {
            const Value_t* value = text.type == type ? m_values.Find(text.key) : nullptr;
            if (value != nullptr && value->state == FactState_t::kNone)
                Say(RuleId_t::kMissingText, text.key, "string number 0", "a text");
        }
        switch (type) {
            case 0: CheckFirmware(); break;
            case 4: CheckProcessor(); break;
            case 7: CheckCache(); break;
            case 17: CheckModule(); break;
            case 19:
            case 20: CheckRange(); break;
            default: break;
        }
        m_memory.Add(*m_structure, m_values);
    }

    void Finish() {
        if (m_isOver) return;
        const auto end = static_cast<uint32_t>(m_table.bytes.size());
        if (m_table.structures != 0 && m_table.structures != m_count)
            SayOfTable(RuleId_t::kStructureCount, end, std::to_string(m_table.structures) + " structures",
                       std::to_string(m_count) + " structures");
        if (!m_isEnded && m_table.version >= kEndRequired) SayOfTable(RuleId_t::kNoEnd, end, "", "");
        if (m_table.version >= kStructuresRequired)
            for (const uint8_t type : kRequired)
                if (!m_types[type])
                    SayOfTable(RuleId_t::kMissingStructure, end, "none of type " + std::to_string(type),
                               std::string(FindStandardType(type).Name()));
        m_memory.Report(m_report);
    }

  private:
    void SayOfTable(RuleId_t rule, uint32_t offset, const std::string& found, const std::string& expected) {
        m_report({rule, nullptr, "", offset, 0, found, expected});
    }

    // On bytes of the structure; on the structure as a whole if there are none.
    void Say(RuleId_t rule, std::string_view key, uint32_t offset, uint32_t size, const std::string& found,
             const std::string& expected) {
        const auto begin = static_cast<uint32_t>(m_structure->data - m_table.bytes.data());
        m_report({rule, m_structure, key, begin + offset, size, found, expected});
    }

    void Say(RuleId_t rule, std::string_view key, const std::string& found, const std::string& expected) {
        const Value_t* value = m_values.Find(key);
        Say(rule, key, value->offset, value->size, found, expected);
    }

    // False if there is nothing more to check.
    bool CheckLength() {
        const uint32_t length = m_structure->Length();
        if (length < kHeaderSize) {
            Say(RuleId_t::kLengthBelowHeader, "", 1, 1, std::to_string(length), "4 or more");
            return false;
        }
        if (!m_structure->IsWhole())
            Say(RuleId_t::kStructureCutOff, "", 0, 0, std::to_string(m_structure->size) + " bytes",
                "two zeros at the end");
        // Firmware that leaves out the two zeros at the end is taken at its word.
        if (m_table.largest != 0 && m_structure->size > m_table.largest + 2u)
            Say(RuleId_t::kLargestStructure, "", 0, 0, std::to_string(m_structure->size) + " bytes",
                std::to_string(m_table.largest) + " bytes or less");
        const auto [least, usual] = LengthsOf(m_structure->Type());
        if (length < least)
            Say(RuleId_t::kTooShort, "", 1, 1, std::to_string(length), std::to_string(least) + " or more");
        else if (length < usual)
            Say(RuleId_t::kShortForVersion, "", 1, 1, std::to_string(length), std::to_string(usual) + " or more");
        return true;
    }

    struct Lengths_t {
        uint16_t least, usual;
    };
    const Lengths_t& LengthsOf(uint8_t type) {
        Lengths_t& lengths = m_lengths[type];
        if (lengths.least == 0) {
            const uint32_t least = LeastLength(type);
            const uint32_t usual =
                OptionalPart(type) != nullptr ? least : LengthAt(FindStandardType(type), LevelOf(m_table.version));
            lengths = {static_cast<uint16_t>(least), static_cast<uint16_t>(usual)};
        }
        return lengths;
    }

    void CheckFact(const Fact_t& fact) {
        // Firmware of an older level may have other bytes where a newer one has the field.
        if (fact.isDerived || fact.field->since > LevelOf(m_table.version)) return;
        const auto say = [&](RuleId_t rule, const std::string& found, const std::string& expected) {
            Say(rule, fact.Key(), fact.offset, fact.size, found, expected);
        };
        // On the string itself rather than on its number.
        const auto sayOfString = [&](RuleId_t rule, const std::string& expected) {
            if (fact.string.empty()) return say(rule, std::string(fact.text), expected);
            const auto place = reinterpret_cast<const uint8_t*>(fact.string.data()) - m_structure->data;
            Say(rule, fact.Key(), static_cast<uint32_t>(place), static_cast<uint32_t>(fact.string.size()),
                std::string(fact.string), expected);
        };
        const bool isString = fact.kind == FactKind_t::kText && fact.field->form == Form_t::kText;
        switch (fact.state) {
            case FactState_t::kBroken:
                if (isString)
                    say(RuleId_t::kNoSuchString, std::to_string(fact.number),
                        std::to_string(m_facts->Strings().Count()) + " or less");
                else if (fact.kind == FactKind_t::kHandle && m_handles.Has(static_cast<uint16_t>(fact.number), {}))
                    say(RuleId_t::kWrongType, HandleText(static_cast<uint16_t>(fact.number)), TypesOf(fact));
                else if (fact.kind == FactKind_t::kHandle)
                    say(RuleId_t::kNoSuchHandle, HandleText(static_cast<uint16_t>(fact.number)), TypesOf(fact));
                else
                    say(RuleId_t::kListTooLong, "", "a list that ends in the structure");
                break;
            case FactState_t::kReserved:
                if ((fact.kind == FactKind_t::kCode || fact.kind == FactKind_t::kNumber) && !IsUnusedFamily(fact))
                    say(RuleId_t::kReservedCode, CodeText(fact.number), CodesOf(fact));
                break;
            case FactState_t::kFiller:
                if (fact.kind == FactKind_t::kUuid)
                    say(RuleId_t::kUuidFiller, std::string(fact.text), "the machine's own UUID");
                else
                    sayOfString(IsBlank(fact.text) ? RuleId_t::kBlankString : RuleId_t::kFiller, "");
                break;
            default: break;
        }
        if (HasControls(fact.string)) sayOfString(RuleId_t::kControlBytes, "printable characters");
    }

    // The second family is used only if the first one refers to it.
    bool IsUnusedFamily(const Fact_t& fact) const {
        const Value_t* first = fact.Key() == "processor_family_2" ? m_values.Find("processor_family") : nullptr;
        return first != nullptr && !first->isReference;
    }

    // The codes that the standard assigns.
    std::string CodesOf(const Fact_t& fact) const {
        const std::span<const StandardCode_t> codes = m_facts->Type().Codes(*fact.field);
        if (fact.kind != FactKind_t::kCode || codes.empty()) return "a number that the standard doesn't reserve";
        std::string text = "an assigned code from ";
        return text.append(CodeText(codes.front().first)).append(" to ").append(CodeText(codes.back().last));
    }

    // The types that a handle may refer to.
    std::string TypesOf(const Fact_t& fact) const {
        std::string text;
        for (const StandardCode_t& type : m_facts->Type().Codes(*fact.field))
            text += (text.empty() ? "a structure of type " : " or ") + std::to_string(type.first);
        return text.empty() ? "the handle of a structure" : text;
    }

    void CheckFirmware() {
        const Value_t* text = m_values.Find("firmware_release_date");
        const Value_t* date = m_values.Find("release_date_iso");
        if (text != nullptr && date != nullptr && text->state == FactState_t::kValue &&
            date->state != FactState_t::kValue)
            Say(RuleId_t::kNoDate, "firmware_release_date", std::string(text->string), "mm/dd/yyyy");
    }

    // Two forms of one number must be equal if both are there.
    void CheckForms(RuleId_t rule, std::string_view first, std::string_view second, bool mayBeZero) {
        const auto one = m_values.Number(first), other = m_values.Number(second);
        if (one && other && *one != *other && !(mayBeZero && *other == 0))
            Say(rule, second, std::to_string(*other), std::to_string(*one));
    }

    // The first number must not be above the second.
    void CheckOrder(RuleId_t rule, std::string_view low, std::string_view high) {
        const auto one = m_values.Number(low), other = m_values.Number(high);
        if (one && other && *one > *other && *other != 0)
            Say(rule, low, std::to_string(*one), std::to_string(*other) + " or less");
    }

    void CheckProcessor() {
        CheckForms(RuleId_t::kCoreCount, "core_count", "core_count_2", false);
        CheckForms(RuleId_t::kCoreCount, "core_enabled", "core_enabled_2", false);
        CheckForms(RuleId_t::kCoreCount, "thread_count", "thread_count_2", false);
        CheckOrder(RuleId_t::kCoresEnabled, "cores_enabled", "cores");
        CheckOrder(RuleId_t::kCoresEnabled, "cores", "threads");
        CheckOrder(RuleId_t::kProcessorSpeed, "current_speed", "max_speed");
    }

    void CheckCache() {
        CheckForms(RuleId_t::kCacheSize2, "maximum_cache_size", "maximum_cache_size_2", false);
        CheckForms(RuleId_t::kCacheSize2, "installed_size", "installed_cache_size_2", false);
        CheckOrder(RuleId_t::kCacheSize, "cache_size", "cache_size_maximum");
    }

    void CheckModule() {
        constexpr uint64_t kHighest = 5000;
        CheckForms(RuleId_t::kModuleSize, "size", "extended_size", true);
        CheckOrder(RuleId_t::kModuleWidth, "data_width", "total_width");
        CheckOrder(RuleId_t::kModuleVoltage, "minimum_voltage", "maximum_voltage");
        CheckOrder(RuleId_t::kModuleVoltage, "minimum_voltage", "configured_voltage");
        CheckOrder(RuleId_t::kModuleVoltage, "configured_voltage", "maximum_voltage");
        for (const std::string_view key : {"minimum_voltage", "maximum_voltage", "configured_voltage"})
            if (const auto voltage = m_values.Number(key); voltage && *voltage > kHighest)
                Say(RuleId_t::kModuleVoltage, key, std::to_string(*voltage), "5000 or less");
        CheckOrder(RuleId_t::kModuleSpeed, "configured_speed", "memory_speed");
    }

    void CheckRange() {
        const auto begin = m_values.Number("range_start"), end = m_values.Number("range_end");
        if (begin && end && *end < *begin)
            Say(RuleId_t::kRangeBackwards, "range_end", CodeText(*end), CodeText(*begin) + " or more");
    }

    const CheckedTable_t& m_table;
    const ReportFinding_t& m_report;
    const ClHandles m_handles;
    ClMemory m_memory;
    std::bitset<256> m_types;
    std::bitset<0x10000> m_seen;    // handles
    Lengths_t m_lengths[256] = {};  // by type; 0 until they are needed
    const TableStructure_t* m_structure = nullptr;
    const ClFacts* m_facts = nullptr;
    ClValues m_values;
    uint32_t m_count = 0;
    bool m_isEnded = false;
    bool m_takesFacts = false;
    bool m_isOver = false;  // after a Length below the header's: what comes after it may be made up
};

ClTableCheck::ClTableCheck(const CheckedTable_t& table, const ReportFinding_t& report)
    : m_check(std::make_unique<ClCheck>(table, report)) {}
ClTableCheck::~ClTableCheck() = default;
FactOptions_t ClTableCheck::Options() const { return m_check->Options(); }
void ClTableCheck::Begin(const TableStructure_t& structure, const ClFacts& facts) { m_check->Begin(structure, facts); }
void ClTableCheck::Take(const Fact_t& fact) { m_check->Take(fact); }
void ClTableCheck::End() { m_check->End(); }
void ClTableCheck::Finish() { m_check->Finish(); }

void CheckTable(const CheckedTable_t& table, const ReportFinding_t& report) {
    ClTableCheck check(table, report);
    ClFacts facts;
    for (const TableStructure_t& structure : ClWalk(table.bytes)) {
        facts.Begin(structure, check.Options());
        check.Begin(structure, facts);
        while (facts.Next()) check.Take(*facts);
        check.End();
    }
    check.Finish();
}

uint32_t LeastLength(uint8_t type) {
    if (const LeastLength_t* row = OptionalPart(type)) return row->length;
    const StandardType_t table = FindStandardType(type);
    return std::max(LengthAt(table, table.since), kHeaderSize);
}
