#include "Tools/quorlin/Rows/Facts.h"

#include "Packages/Standard/Texts.h"
#include "Tools/quorlin/Rows/Row.h"

namespace {

// As in JSON without --full: only values, and codes that the standard doesn't assign.
bool IsShown(const Fact_t& fact) {
    return fact.IsValue() || (fact.kind == FactKind_t::kCode && fact.state == FactState_t::kReserved);
}

bool IsNumber(const Fact_t& fact) { return fact.kind == FactKind_t::kNumber || fact.kind == FactKind_t::kHandle; }

void AppendNumber(std::string& out, const Fact_t& fact) {
    fact.isSigned ? AppendDigits(out, static_cast<int64_t>(fact.number)) : AppendDigits(out, fact.number);
}

// The place of a field in its type's columns. It has another table in old tables.
size_t PlaceOf(const StandardType_t& type, const StandardType_t& columns, const Fact_t& fact) {
    if (type.fields.data() == columns.fields.data()) return static_cast<size_t>(fact.field - type.fields.data());
    size_t place = 0;
    for (const StandardField_t& field : columns.TopFields()) {
        if (columns.Text(field.key) == fact.Key()) break;
        place++;
    }
    return place;
}

}  // namespace

void ClFactRows::Write(std::string_view record, const TableStructure_t& structure, uint32_t instance,
                       ClTableCheck& check) {
    m_begin.assign(record).append(",");
    AppendDigits(m_begin, structure.Handle());
    m_facts.Begin(structure, check.Options());
    check.Begin(structure, m_facts);
    if (HasDataset(structure.Type())) {
        WriteFacts(structure, instance, check);
    } else {
        while (m_facts.Next()) check.Take(*m_facts);
    }
    check.End();
    WriteStrings(structure);
}

void ClFactRows::WriteFacts(const TableStructure_t& structure, uint32_t instance, ClTableCheck& check) {
    const StandardType_t columns = FindStandardType(structure.Type());
    std::string& row = m_files.Row(structure.Type());
    row.append(m_begin).append(",");
    AppendDigits(row, instance);
    size_t written = 0;
    // Begins the cell at a place, after those that are NULL.
    const auto begin = [&](size_t place) {
        row.append(place + 1 - written, ',');
        written = place + 1;
    };
    bool isInList = false;
    const auto endList = [&] {
        if (!isInList) return;
        m_list += m_record < 0 ? "[]" : "}]";
        AppendText(row, m_list);
        isInList = false;
    };
    while (const Fact_t* fact = m_facts.NextFact()) {
        check.Take(*fact);
        if (fact->record >= 0) {
            if (isInList) AddToList(*fact);
            continue;
        }
        endList();
        if (!IsShown(*fact)) continue;
        begin(PlaceOf(m_facts.Type(), columns, *fact));
        if (IsNumber(*fact)) {
            AppendNumber(row, *fact);
        } else if (fact->kind == FactKind_t::kList) {
            isInList = true;
            m_list.clear();
            m_record = -1;
        } else {
            AppendText(row, TextOf(*fact));
            m_files.FlushWhenFull(structure.Type());
        }
    }
    endList();
    row.append(columns.topFields - written, ',');
    m_files.EndRow(structure.Type());
}

// Adds a fact of a record as JSON.
void ClFactRows::AddToList(const Fact_t& fact) {
    if (fact.record != m_record)
        m_list += m_record < 0 ? "[{" : "},{";
    else
        m_list += ',';
    m_record = fact.record;
    m_list.append("\"").append(fact.Key()).append("\":");
    const auto quote = [this](std::string_view text) {
        m_list += '"';
        if (!AppendPlain<'"', '\\'>(m_list, text)) AppendJson(m_list, text);
        m_list += '"';
    };
    if (!IsShown(fact)) {
        m_list += "null";
    } else if (IsNumber(fact)) {
        AppendNumber(m_list, fact);
    } else if (fact.kind == FactKind_t::kBits) {
        m_list += '[';
        m_facts.ForEachWord(fact, [&](std::string_view word) {
            if (!m_list.ends_with('[')) m_list += ',';
            quote(word);
        });
        m_list += ']';
    } else {
        quote(TextOf(fact));
    }
}

// The value of a fact that isn't a number.
std::string_view ClFactRows::TextOf(const Fact_t& fact) {
    if (fact.kind == FactKind_t::kBits) {
        m_text.clear();
        m_facts.ForEachWord(fact,
                            [&](std::string_view word) { m_text.append(m_text.empty() ? "" : "; ").append(word); });
    } else if (fact.kind == FactKind_t::kBytes) {
        m_text = HexDigits(m_facts.Bytes(fact));
    } else if (fact.kind == FactKind_t::kCode && fact.state == FactState_t::kReserved) {
        m_text = CodeText(fact.number);
    } else {
        return fact.text;
    }
    return m_text;
}

void ClFactRows::WriteStrings(const TableStructure_t& structure) {
    const ClStrings& strings = m_facts.Strings();
    if (strings.Count() == 0) return;
    m_begin += ',';
    AppendDigits(m_begin, unsigned{structure.Type()});
    m_begin += ',';
    for (uint32_t number = 1; number <= strings.Count(); number++) {
        std::string& row = m_files.Row(kStrings);
        row += m_begin;
        AppendDigits(row, number);
        row += ',';
        AppendText(row, strings.Get(number));
        m_files.EndRow(kStrings);
    }
}
