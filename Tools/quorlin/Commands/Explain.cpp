// quorlin explain: the bytes of a structure, each with the fact that it holds.
#include <algorithm>
#include <cstdio>
#include <deque>

#include "Packages/Format/Structures.h"
#include "Tools/quorlin/Columns.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/FactTexts.h"
#include "Tools/quorlin/Table.h"
#include "Tools/quorlin/Text.h"
#include "Tools/quorlin/Types.h"

namespace {

// Shows one structure: every byte once, in order.
class ClExplanation {
  public:
    ClExplanation(const TableStructure_t& structure, const FactOptions_t& options, ClColumns& people)
        : m_structure(structure), m_facts(structure, options), m_people(people) {}

    void Show(uint32_t offset) {
        char place[24];
        std::snprintf(place, sizeof place, "%Xh", offset);
        m_people.Heading(std::string(m_facts.Type().Name()) + ", handle " + HandleText(m_structure.Handle()) +
                         ", at offset " + place);
        m_areaEnd = std::min<uint32_t>(m_structure.Length(), m_structure.size);
        ShowHeader();
        ReadFacts();
        ShowFields();
        ShowStrings();
        for (const std::string& text : m_derived) AddLine(text);
        m_people.Finish(2);
    }

  private:
    struct Line_t {
        uint32_t offset;
        uint32_t end;  // of its bytes; `offset` for a fact whose bytes are shown with another one
        std::string text;
    };

    void ShowHeader() {
        ShowBytes(1, "Type: " + std::to_string(m_structure.Type()));
        std::string length = "Length: " + std::to_string(m_structure.Length());
        if (m_areaEnd < m_structure.Length()) length += ", past the end of the table";
        if (m_structure.Length() < kHeaderSize) length += ", less than a header";
        ShowBytes(2, length);
        ShowBytes(kHeaderSize, "Handle: " + HandleText(m_structure.Handle()));
    }

    void ReadFacts() {
        uint32_t last = kHeaderSize;
        while (m_facts.Next()) {
            const Fact_t& fact = *m_facts;
            std::string text(fact.Name());
            text.append(": ").append(ValueOf(fact));
            if (fact.record >= 0) text.insert(0, std::to_string(fact.record + 1) + ". ");
            if (fact.isDerived) {
                m_derived.push_back(text + SourcesOf(fact));
                continue;
            }
            if (HasStringNumber(fact)) m_users.emplace_back(fact.number, fact.Name());
            // Of a list that can be read, the records have the bytes. Strings of a list have none here.
            const bool hasRecords = fact.kind == FactKind_t::kList && fact.IsValue();
            if (fact.size != 0) last = fact.offset;
            m_lines.push_back({last, hasRecords ? last : last + fact.size, text});
        }
        std::ranges::stable_sort(m_lines, {}, &Line_t::offset);
    }

    // Whether it is a text whose string number is in its bytes, other than one of a list of strings.
    static bool HasStringNumber(const Fact_t& fact) { return fact.field->form == Form_t::kText && fact.size != 0; }

    std::string ValueOf(const Fact_t& fact) const {
        if (fact.kind == FactKind_t::kList && fact.IsValue() && fact.number != 0) return std::to_string(fact.number);
        const std::string value = ShownValue(m_facts, fact);
        return HasStringNumber(fact) && fact.number != 0 ? "string " + std::to_string(fact.number) + ", " + value
                                                         : value;
    }

    std::string SourcesOf(const Fact_t& fact) const {
        std::string text = ", from ";
        for (uint32_t i = 0; i < fact.field->sources; i++) {
            if (i != 0) text += i + 1 == fact.field->sources ? " and " : ", ";
            text += m_facts.SourceKey(fact, i);
        }
        return text;
    }

    void ShowFields() {
        for (const Line_t& line : m_lines) {
            if (line.offset > m_place && line.end > line.offset) ShowGap(line.offset);
            // Bytes that an earlier fact has shown, such as those of its parts, aren't shown again.
            if (line.end > m_place)
                ShowBytes(line.end, line.text);
            else
                AddLine("  " + line.text);
        }
        ShowGap(m_areaEnd);
    }

    // Shows the bytes of the formatted area up to `end`, which no fact holds.
    void ShowGap(uint32_t end) {
        if (end <= m_place) return;
        for (const StandardField_t& field : m_facts.Type().TopFields())
            if (field.HasFixedPlace() && !field.IsPart() && field.offset == m_place && field.end > m_areaEnd) {
                ShowBytes(end, "(part of " + std::string(m_facts.Type().Text(field.name)) +
                                   ", which the structure is too short for)");
                return;
            }
        ShowBytes(end, "(no field of the standard)");
    }

    void ShowStrings() {
        const uint8_t* const data = m_structure.data;
        const uint32_t end = m_structure.size;
        uint32_t begin = m_structure.Length();
        for (uint32_t number = 1; begin < end && data[begin] != 0; number++) {
            const uint8_t* const nul = std::find(data + begin, data + end, uint8_t{0});
            const bool isWhole = nul != data + end;
            std::string text = "String " + std::to_string(number);
            const char* separator = ", ";
            for (const auto& [used, name] : m_users) {
                if (used != number) continue;
                text.append(separator).append(name);
                separator = " and ";
            }
            text.append(": ").append(reinterpret_cast<const char*>(data) + begin, reinterpret_cast<const char*>(nul));
            if (!isWhole) text += " (cut off by the end of the table)";
            begin = static_cast<uint32_t>(nul - data) + isWhole;
            ShowBytes(begin, text);
        }
        ShowBytes(end, "End of the structure");
    }

    // Shows the bytes that aren't shown yet up to `end`, with a text beside the first of them.
    void ShowBytes(uint32_t end, std::string text) {
        constexpr uint32_t kBytesPerLine = 8;
        constexpr size_t kKeySize = 5 + 3 * kBytesPerLine, kMostTexts = 1000;
        while (m_place < end) {
            const uint32_t count = std::min(end - m_place, kBytesPerLine);
            char piece[16];
            std::snprintf(piece, sizeof piece, "%04X ", m_place);
            std::string key = piece;
            for (uint32_t i = 0; i < count; i++) {
                std::snprintf(piece, sizeof piece, " %02X", m_structure.data[m_place + i]);
                key += piece;
            }
            // All facts begin in one column, so that a long structure may be written in parts.
            key.resize(std::max(key.size(), kKeySize), ' ');
            m_people.Pair(m_texts.emplace_back(std::move(key)), m_texts.emplace_back(std::move(text)));
            text.clear();
            if (m_texts.size() >= kMostTexts) {
                m_people.Finish(2);
                m_texts.clear();
            }
            m_place += count;
        }
    }

    void AddLine(std::string text) { m_people.Pair("", m_texts.emplace_back(std::move(text))); }

    const TableStructure_t& m_structure;
    ClFacts m_facts;
    ClColumns& m_people;
    uint32_t m_areaEnd = 0;
    uint32_t m_place = 0;  // of the next byte
    std::vector<Line_t> m_lines;
    std::vector<std::string> m_derived;
    std::vector<std::pair<uint64_t, std::string_view>> m_users;  // string numbers, and the fields that have them
    std::deque<std::string> m_texts;                             // that `m_people` refers to
};

// The structures that a user means: a handle in hexadecimal or above 255, or else types.
struct Wanted_t {
    explicit Wanted_t(const std::string& word) {
        uint64_t number;
        const bool isDecimal = word.find_first_not_of("0123456789") == word.npos;
        isHandle = isDecimal ? !ParseNumber(word, 255, &number) : ParseHex(word, UINT64_MAX, &number);
        if (isHandle)
            handle = ParseHandle(word);
        else
            types = TypesByName({&word, 1});
    }

    bool Has(const TableStructure_t& structure) const {
        return isHandle ? structure.Handle() == handle : std::ranges::find(types, structure.Type()) != types.end();
    }

    bool isHandle;
    uint16_t handle = 0;
    std::vector<uint8_t> types;
};

class ClExplain : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForOne();
        options.push_back({.name = "handle|type",
                           .typeName = "WORD",
                           .help =
                               "A handle as 0x11 or 11h, or as a number above 255; otherwise types, as --type takes "
                               "them elsewhere",
                           .target = &m_word,
                           .required = true,
                           .choices = TypeWords(),
                           .takesOthers = true});
        return options;
    }

    int Run() override {
        m_source.CheckOne();
        const Wanted_t wanted(m_word);
        ClOutput output;
        const int exitCode = ForEachTable(m_source, kExplainCommand.trouble, [&](ClTable& table) {
            const std::span<const uint8_t> bytes = table.Bytes();
            const ClHandles handles(bytes);
            const FactOptions_t options = {.version = table.Version(), .handles = &handles};
            ClColumns people(output);
            bool isFound = false;
            for (const TableStructure_t& structure : ClWalk(bytes)) {
                if (!wanted.Has(structure)) continue;
                isFound = true;
                ClExplanation(structure, options, people).Show(static_cast<uint32_t>(structure.data - bytes.data()));
                if (output.Failed()) break;
            }
            if (!isFound)
                SayError(table.Name(), std::string("no such ") + (wanted.isHandle ? "handle" : "type") +
                                           "; try quorlin types, or a handle as 0x11");
            return isFound ? kExitDone : kExitNo;
        });
        return output.Finish() ? exitCode : kExplainCommand.trouble;
    }

  private:
    Source_t m_source;
    std::string m_word;
};

}  // namespace

constexpr Command_t kExplainCommand = {
    .name = "explain",
    .summary = "the bytes of a structure, and what each of them says",
    .description =
        "Shows the bytes of structures, each next to the fact that it holds by the newest level of the "
        "SMBIOS standard.",
    .footer =
        "Example: quorlin explain 17\n"
        "Exit codes: 0 done, 1 no such structure, 2 bad usage, no table or an unreadable one.",
    .trouble = kExitTrouble,
    .make = MakeCommand<ClExplain>,
};
