// quorlin check: what is wrong with a table.
#include <algorithm>
#include <cstdio>
#include <set>
#include <unordered_set>

#include "Packages/Format/Structures.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Formats.h"
#include "Tools/quorlin/Standard.h"
#include "Tools/quorlin/Text.h"
#include "Tools/quorlin/Types.h"

namespace {

constexpr Column_t kColumns[] = {{"rule"}, {"type"}, {"handle"}, {"offset"}, {"text"}};
constexpr List_t kList = {.name = "findings", .columns = kColumns};

struct Finding_t {
    const char* rule;
    const TableStructure_t* structure;  // null for a finding on the table as a whole; lives for the call
    uint32_t offset;                    // of the structure, or of where the table ends
    std::string text;
};
// Receives the findings one by one, as a table may have millions.
using Report_t = std::function<void(const Finding_t&)>;

// Codes that the oldest version of their type doesn't have. If a structure is too short for one, its decoder reads on
// into the string area, and what it reads there is not a code.
struct LateCode_t {
    std::string_view key;
    uint8_t type, offset;
};
constexpr LateCode_t kLateCodes[] = {
    {"Wake-up Type",       1, 0x18},
    {"Board Type",         2, 0x0D},
    {"Bootup State",       3, 0x09},
    {"Power Supply State", 3, 0x0A},
    {"Thermal State",      3, 0x0B},
    {"Security Status",    3, 0x0C},
};

std::string Hex(uint32_t number) {
    char text[12];
    std::snprintf(text, sizeof text, "%Xh", number);
    return text;
}

class ClLint {
  public:
    ClLint(ClTable& table, Report_t report) : m_bytes(table.Bytes()), m_report(std::move(report)) {
        for (const TableStructure_t& structure : ClWalk(m_bytes)) m_handles.insert(structure.Handle());
        FindCodes(table);
        if (table.Image() != nullptr && !table.Image()->checksumsFit)
            AddForTable("checksum", 0, "the entry point's bytes don't add up to its checksums");
        std::unordered_set<uint16_t> seen;
        bool isEnded = false;
        for (const TableStructure_t& structure : ClWalk(m_bytes)) {
            m_structure = &structure;
            m_facts = FactsOf(structure.Type());
            m_length = std::min<uint32_t>(structure.Length(), structure.size);
            isEnded = structure.Type() == kEndOfTable;
            if (!seen.insert(structure.Handle()).second) Add("handle", "an earlier structure has this handle");
            if (CheckLength() && m_facts != nullptr) CheckFields();
            AddCodes();
        }
        const auto end = static_cast<uint32_t>(m_bytes.size());
        if (table.Image() != nullptr && table.Image()->missing != 0)
            AddForTable(
                "length", end,
                "the table ends " + std::to_string(table.Image()->missing) + " bytes before the length that it states");
        if (!isEnded) AddForTable("end", end, "no End-of-Table structure ends the table");
    }

    size_t Findings() const { return m_findings; }

  private:
    void AddForTable(const char* rule, uint32_t offset, std::string text) {
        m_findings++;
        m_report({rule, nullptr, offset, std::move(text)});
    }

    uint32_t Offset() const { return static_cast<uint32_t>(m_structure->data - m_bytes.data()); }

    void Add(const char* rule, std::string text) {
        m_findings++;
        m_report({rule, m_structure, Offset(), std::move(text)});
    }

    void CheckFields() {
        CheckStrings();
        for (const char offset : std::string_view(m_facts->handles)) CheckReference(static_cast<uint8_t>(offset));
        if (m_facts->list.listOffset != 0) CheckList(m_facts->list);
    }

    // False if the structure is too short for any other check.
    bool CheckLength() {
        const uint8_t length = m_structure->Length();
        const uint8_t least = MinimumLength(m_structure->Type());
        if (length < kHeaderSize) {
            Add("length", "length " + std::to_string(length) + " is below a header's 4");
            return false;
        }
        if (length < least)
            Add("length",
                "length " + std::to_string(length) + " is below the " + std::to_string(least) + " that the type needs");
        const uint8_t* end = m_structure->data + m_structure->size;
        if (m_structure->size < length + 2u || end[-1] != 0 || end[-2] != 0)
            Add("length", "the table ends before the structure does");
        return true;
    }

    uint8_t Byte(uint32_t offset) const { return offset < m_length ? m_structure->data[offset] : uint8_t{0}; }

    uint32_t CountStrings() const {
        uint32_t count = 0;
        for (uint32_t at = m_length; at < m_structure->size && m_structure->data[at] != 0; count++) {
            while (at < m_structure->size && m_structure->data[at] != 0) at++;
            at++;
        }
        return count;
    }

    void CheckStrings() {
        const uint32_t count = CountStrings();
        const auto check = [&](uint32_t offset) {
            if (Byte(offset) > count)
                Add("string", "string number " + std::to_string(Byte(offset)) + " at offset " + Hex(offset) + ", of " +
                                  std::to_string(count));
        };
        for (const char offset : std::string_view(m_facts->strings)) check(static_cast<uint8_t>(offset));
        const uint8_t type = m_structure->Type();
        if (type == 10)  // pairs of a device's type and its string, up to the end
            for (uint32_t offset = 5; offset < m_length; offset += 2) check(offset);
        if ((type >= 11 && type <= 13) && Byte(4) > count)
            Add("count", "it counts " + std::to_string(Byte(4)) + " strings, but has " + std::to_string(count));
    }

    // FFFEh and FFFFh mean no structure, or an unknown one.
    void CheckReference(uint32_t offset) {
        if (offset + 2 > m_length) return;
        const auto handle = static_cast<uint16_t>(Byte(offset) | Byte(offset + 1) << 8);
        if (handle < 0xFFFE && !m_handles.contains(handle))
            Add("reference", "handle " + HandleText(handle) + " at offset " + Hex(offset) + " is that of no structure");
    }

    void CheckList(const EntryList_t& list) {
        if (m_length <= list.listOffset) return;
        const uint32_t size = list.sizeOffset != 0 ? Byte(list.sizeOffset) : list.entrySize;
        const uint32_t room = m_length - list.listOffset;
        uint32_t count = size == 0 ? 0 : room / size;
        if (list.countOffset != 0) {
            if (Byte(list.countOffset) * size > room)
                Add("count", "it counts " + std::to_string(Byte(list.countOffset)) + " entries of " +
                                 std::to_string(size) + " bytes, but has room for " + std::to_string(count));
            count = std::min<uint32_t>(count, Byte(list.countOffset));
        }
        if (list.handleAt == kNoHandle) return;
        for (uint32_t entry = 0; entry < count; entry++) CheckReference(list.listOffset + entry * size + list.handleAt);
    }

    static bool IsThere(const TableStructure_t& structure, std::string_view key) {
        return std::ranges::none_of(kLateCodes, [&](const LateCode_t& code) {
            return code.type == structure.Type() && code.key == key && code.offset >= structure.Length();
        });
    }

    // The decoders mark codes outside their enumerations. Decoding goes by type, so the codes are kept until the walk,
    // which goes by position, comes to their structure.
    void FindCodes(ClTable& table) {
        std::vector<uint32_t> ofType[256];  // offsets
        for (const TableStructure_t& structure : ClWalk(m_bytes))
            ofType[structure.Type()].push_back(static_cast<uint32_t>(structure.data - m_bytes.data()));
        VisitStructures(table.Package(), AllTypes(true), [&](const Structure_t& decoded) {
            if (decoded.instance > ofType[decoded.type].size()) return true;
            const uint32_t offset = ofType[decoded.type][decoded.instance - 1];
            const TableStructure_t structure = {m_bytes.data() + offset, 0};
            for (size_t index = decoded.firstItem; index < decoded.EndItem(); index++) {
                const Item_t& item = decoded.items[index];
                if (item.isInvalid && IsThere(structure, item.key))
                    m_codes.emplace_back(offset, &*m_keys.emplace(item.key).first);
            }
            return true;
        });
        std::ranges::stable_sort(m_codes, {}, &Code_t::first);
    }

    void AddCodes() {
        for (; m_nextCode < m_codes.size() && m_codes[m_nextCode].first == Offset(); m_nextCode++)
            Add("code", *m_codes[m_nextCode].second + ": a code outside its table");
    }

    using Code_t = std::pair<uint32_t, const std::string*>;  // a structure's offset, and a key

    std::span<const uint8_t> m_bytes;
    const Report_t m_report;
    size_t m_findings = 0;
    std::unordered_set<uint16_t> m_handles;
    std::set<std::string, std::less<>> m_keys;
    std::vector<Code_t> m_codes;
    size_t m_nextCode = 0;

    // The structure that is checked.
    const TableStructure_t* m_structure = nullptr;
    const TypeFacts_t* m_facts = nullptr;
    uint32_t m_length = 0;  // of its formatted area, as far as it is there
};

void ShowToPeople(const Finding_t& finding, ClColumns& people) {
    std::string place = "Table";
    if (finding.structure != nullptr)
        place = "Handle " + HandleText(finding.structure->Handle()) + ", type " +
                std::to_string(finding.structure->Type()) + " (" + std::string(NameOfType(finding.structure->Type())) +
                ")";
    people.Line(0, place + ", offset " + Hex(finding.offset) + ": " + finding.text);
}

int ListFindings(ClTable& table, ClWriter& writer) {
    ClColumns* people = writer.People();
    const ClLint lint(table, [&](const Finding_t& finding) {
        if (people != nullptr)
            ShowToPeople(finding, *people);
        else if (finding.structure == nullptr)
            writer.Row({finding.rule, {}, {}, finding.offset, finding.text});
        else
            writer.Row(
                {finding.rule, finding.structure->Type(), finding.structure->Handle(), finding.offset, finding.text});
    });
    const size_t count = lint.Findings();
    if (people != nullptr)
        people->Line(0, count == 0 ? "No findings" : std::to_string(count) + (count == 1 ? " finding" : " findings"));
    return count == 0 ? kExitDone : kExitNo;
}

}  // namespace

constexpr Command_t kCheckCommand = {
    .name = "check",
    .summary = "what is wrong with a table",
    .description =
        "Says what is wrong with a table: lengths, string numbers, handles, references, counts, codes, "
        "checksums, a missing end.",
    .footer =
        "Example: quorlin check --image table.bin\n"
        "Exit codes: 0 nothing found, 1 something found, 2 bad usage, no table or an unreadable one.",
    .trouble = kExitTrouble,
    .make = MakeCommand<ClListCommand<ListFindings, kList, kCheckCommand>>,
};
