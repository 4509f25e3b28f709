// All structures with their facts, and the raw table. Most of a page's size is here, so rows are short: values of
// attributes without quotes where they are the program's own words, and cells without end tags.
#include <algorithm>
#include <cstdio>

#include "Packages/Standard/Texts.h"
#include "Tools/quorlin/Report/Sections.h"
#include "Tools/quorlin/Text.h"

namespace {

constexpr uint32_t kRow = 16;

std::string OffsetText(uint32_t offset, int digits) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", digits, offset);
    return text;
}

// As JSON has it in `value`, but joined; `hasValue` tells whether it has one.
std::string TextForPeople(const ClFacts& facts, const Fact_t& fact, const std::string& value, bool hasValue) {
    if (!hasValue || fact.state == FactState_t::kReserved) return ShownValue(facts, fact);
    const bool isBare = fact.kind == FactKind_t::kList || fact.kind == FactKind_t::kCode ||
                        fact.state == FactState_t::kFiller ||
                        (fact.IsValue() && fact.unit != Unit_t::kNone && fact.unit != Unit_t::kByte);
    return isBare ? value : ShownValue(facts, fact);
}

// A row without data-state has the state `value`. Cells at its end that would be empty aren't there, and the state's
// cell is empty where the value says the same.
void PutFact(const ClStructures& structures, const ClFacts& facts, const Fact_t& fact, std::string_view list,
             ClHtml& html) {
    html << "<tr data-key=";
    html.Text(fact.Key());
    const std::string_view state = fact.IsValue() ? std::string_view() : StateName(fact.state);
    if (!state.empty()) {
        html << " data-state=";
        html.Text(state);
    }
    if (fact.record >= 0) {
        html << " data-record=";
        html.Number(static_cast<uint64_t>(fact.record)) << " data-list=";
        html.Text(list);
    }
    html << "><th>";
    html.Text(fact.Name());
    const bool hasValue =
        fact.state != FactState_t::kNone && fact.state != FactState_t::kAbsent && fact.state != FactState_t::kBroken;
    const std::string value = hasValue ? PlainValue(facts, fact) : std::string();
    const std::string text = TextForPeople(facts, fact, value, hasValue);
    if (hasValue && text != value && value.find_first_not_of("0123456789") == value.npos && !value.empty()) {
        html << "<td data-value=";
        html.Text(value) << ">";
    } else if (hasValue && text != value) {
        html << "<td data-value=\"";
        html.Text(value) << "\">";
    } else {
        html << "<td>";
    }
    const bool isLink = fact.kind == FactKind_t::kHandle && fact.IsValue();
    PutLink(isLink ? structures.WithHandle(static_cast<uint16_t>(fact.number)) : nullptr, text, html);
    const std::string bytes = RawDigits(facts, fact);
    if (const std::string_view unit = UnitName(fact.unit); !unit.empty() || !state.empty() || !bytes.empty()) {
        html << "<td>";
        html.Text(unit);
    }
    if (!state.empty() || !bytes.empty()) {
        html << "<td>";
        if (text != state) html.Text(state);
    }
    if (!bytes.empty()) {
        html << "<td>";
        if (fact.size != 0) {
            html.Text(OffsetText(fact.offset, 2)) << "h<td>";
            html.Number(fact.size);
        } else {
            html << "<td>";
        }
        html << "<td>";
        html.Text(bytes);
    }
}

void PutStructure(const ClStructures& structures, const ClStructures::Entry_t& entry, ClHtml& html) {
    const TableStructure_t& structure = entry.structure;
    const std::string_view name = FindStandardType(structure.Type()).Name();
    html << "<details class=structure id=";
    html.Text(IdOf(entry)) << " data-type=";
    html.Number(structure.Type()) << " data-handle=";
    html.Number(structure.Handle()) << " data-instance=";
    html.Number(entry.instance) << "><summary><b>";
    html.Text(name) << "</b> <small>";
    const std::string handle = HandleText(structure.Handle());
    html.Text(Filled(kTextStructureSub, {std::to_string(structure.Type()), handle})) << "</small> ";
    html.Text(DesignationOf(entry, structures.Options())) << "</summary>\n";
    std::string list;
    bool hasFacts = false;
    ClFacts facts(structure, structures.Options());
    while (facts.Next()) {
        if (!hasFacts)
            BeginHead({kTextFact, kTextValue, kTextUnit, kTextState, kTextOffset, kTextFactSize, kTextBytes}, html);
        hasFacts = true;
        if (facts->kind == FactKind_t::kList) list = facts->Key();
        PutFact(structures, facts, *facts, list, html);
    }
    // The end tag also ends the last cell, which mustn't get a line's end.
    if (hasFacts) html << "</table>";
    html << "<p><a href=#b-";
    html.Text(OffsetText(entry.offset / kRow * kRow, 4)) << ">";
    html.Text(Filled(kTextToBytes, {OffsetText(entry.offset, 4).append("h")})) << "</a></details>\n";
}

// Bytes that a fact comes from.
struct Span_t {
    uint32_t begin, end;  // in the table
    std::string_view name;
    int offset;  // in its structure; -1 of a string
};

// In the order of the bytes. Bytes that are read in several ways are in the first one.
void AddSpans(const ClStructures& structures, const ClStructures::Entry_t& entry, std::vector<Span_t>& spans) {
    const size_t first = spans.size();
    ClFacts facts(entry.structure, structures.Options());
    while (facts.Next()) {
        const Fact_t& fact = *facts;
        if (fact.kind == FactKind_t::kList || fact.field->IsPart() || fact.isDerived) continue;
        // The names are texts of the standard's tables, which live as long as the program.
        const std::string_view name = fact.Name();
        if (fact.size != 0)
            spans.push_back({entry.offset + fact.offset, entry.offset + fact.offset + fact.size, name, fact.offset});
        if (fact.string.empty()) continue;
        const auto begin =
            static_cast<uint32_t>(reinterpret_cast<const uint8_t*>(fact.string.data()) - structures.Table().data());
        spans.push_back({begin, begin + static_cast<uint32_t>(fact.string.size()), name, -1});
    }
    std::stable_sort(spans.begin() + static_cast<ptrdiff_t>(first), spans.end(),
                     [](const Span_t& a, const Span_t& b) { return a.begin < b.begin; });
}

// Every second run of bytes is underlined, so that facts can be told apart.
class ClRows {
  public:
    ClRows(const ClStructures& structures, ClHtml& html) : m_structures(structures), m_html(html) {
        for (const ClStructures::Entry_t& entry : structures.All()) AddSpans(structures, entry, m_spans);
    }

    void Write() {
        const auto size = static_cast<uint32_t>(std::min<size_t>(m_structures.Table().size(), kMostShownBytes));
        for (uint32_t begin = 0; begin < size; begin += kRow) WriteRow(begin, std::min(size - begin, kRow));
    }

  private:
    void WriteRow(uint32_t begin, uint32_t size) {
        const size_t firstSpan = m_next, firstEntry = m_entry;
        const auto& all = m_structures.All();
        while (m_entry < all.size() && all[m_entry].offset < begin + size) m_entry++;
        while (m_next < m_spans.size() && m_spans[m_next].begin < begin + size) m_next++;
        m_html << "<tr data-offset=";
        m_html.Number(begin);
        if (firstEntry != m_entry) {
            m_html << " id=b-";
            m_html.Text(OffsetText(begin, 4));
        }
        m_html << "><th>";
        m_html.Text(OffsetText(begin, 4)) << "<td>";
        PutBytes(begin, size, firstSpan);
        m_html << "<td>";
        // A blank at its end would be cut off.
        std::string characters;
        for (const uint8_t byte : m_structures.Table().subspan(begin, size))
            characters += byte > 0x20 && byte < 0x7F ? static_cast<char>(byte) : byte == 0x20 ? '_' : '.';
        m_html.Text(characters) << "<td>";
        PutFacts(firstSpan, firstEntry);
        m_html << "\n";
    }

    void PutBytes(uint32_t begin, uint32_t size, size_t span) {
        bool isOpen = false;
        size_t current = m_current;
        for (uint32_t at = begin; at < begin + size; at++) {
            while (span < m_next && m_spans[span].begin <= at) {
                if (current == kNone || m_spans[current].end <= m_spans[span].begin) current = span;
                span++;
            }
            const bool isOdd = current != kNone && at < m_spans[current].end && current % 2 == 1;
            if (isOpen && !isOdd) m_html << "</u>";
            if (at != begin) m_html << " ";
            if (isOdd && !isOpen) m_html << "<u>";
            isOpen = isOdd;
            m_html.Markup(HexDigits({&m_structures.Table()[at], 1}));
        }
        if (isOpen) m_html << "</u>";
        m_current = current;
    }

    // A link to each structure that begins in the row, and the names of the facts.
    void PutFacts(size_t span, size_t entry) {
        const auto& all = m_structures.All();
        for (bool isFirst = true; span < m_next || entry < m_entry; isFirst = false) {
            if (!isFirst) m_html << ", ";
            if (entry < m_entry && (span == m_next || all[entry].offset <= m_spans[span].begin)) {
                PutLink(&all[entry], FindStandardType(all[entry].structure.Type()).Name(), m_html);
                entry++;
                continue;
            }
            const Span_t& each = m_spans[span++];
            if (each.offset >= 0)
                m_html.Text(OffsetText(static_cast<uint32_t>(each.offset), 2)).Raw("h ").Text(each.name);
            else
                m_html.Raw("\u201C").Text(each.name) << "\u201D";
        }
    }

    static constexpr size_t kNone = SIZE_MAX;

    const ClStructures& m_structures;
    ClHtml& m_html;
    std::vector<Span_t> m_spans;
    size_t m_next = 0, m_entry = 0, m_current = kNone;
};

}  // namespace

void WriteStructures(const Report_t&, const ClStructures& structures, ClHtml& html) {
    for (const ClStructures::Entry_t& entry : structures.All()) PutStructure(structures, entry, html);
    PutLeftOut(structures, html);
}

void WriteRaw(const Report_t&, const ClStructures& structures, ClHtml& html) {
    BeginTable(TextOf(kTextRaw), {kTextOffset, kTextBytes, kTextCharacters, kTextFacts}, html);
    ClRows(structures, html).Write();
    html << "</table></div>\n";
    PutLeftOut(structures, html);
}
