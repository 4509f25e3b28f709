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

void ClFactRows::Write(uint64_t record, const TableStructure_t& structure, uint32_t instance,
                       const FactOptions_t& options) {
    m_facts.Begin(structure, options);
    if (HasDataset(structure.Type())) WriteFacts(record, structure, instance);
    WriteStrings(record, structure);
}

void ClFactRows::WriteFacts(uint64_t record, const TableStructure_t& structure, uint32_t instance) {
    const StandardType_t columns = FindStandardType(structure.Type());
    ClRow row(m_files.Row(structure.Type()));
    row.Number(record);
    row.Number(structure.Handle());
    row.Number(instance);
    size_t written = 0;
    bool isInList = false;
    const auto endList = [&] {
        if (!isInList) return;
        m_list += m_record < 0 ? "[]" : "}]";
        row.Text(m_list);
        written++;
        isInList = false;
    };
    while (const Fact_t* fact = m_facts.NextFact()) {
        if (fact->record >= 0) {
            if (isInList) AddToList(*fact);
            continue;
        }
        endList();
        if (!IsShown(*fact)) continue;
        const size_t place = PlaceOf(m_facts.Type(), columns, *fact);
        row.Nulls(place - written);
        written = place;
        if (fact->kind == FactKind_t::kList) {
            isInList = true;
            m_list.clear();
            m_record = -1;
            continue;
        }
        written++;
        if (IsNumber(*fact))
            AppendNumber(row.Next(), *fact);
        else
            row.Text(TextOf(*fact));
    }
    endList();
    row.Nulls(columns.topFields - written);
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
        AppendJson(m_list, text);
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

void ClFactRows::WriteStrings(uint64_t record, const TableStructure_t& structure) {
    const ClStrings& strings = m_facts.Strings();
    for (uint32_t number = 1; number <= strings.Count(); number++) {
        ClRow row(m_files.Row(kStrings));
        row.Number(record);
        row.Number(structure.Handle());
        row.Number(unsigned{structure.Type()});
        row.Number(number);
        row.Text(strings.Get(number));
        m_files.EndRow(kStrings);
    }
}
