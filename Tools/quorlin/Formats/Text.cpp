// Text for people: headings, and keys and values in columns.
#include <cstdio>
#include <deque>

#include "Tools/quorlin/Formats.h"
#include "Tools/quorlin/Text.h"

namespace {

// Where a fact comes from: "  [08h: 48 00, value]".
std::string WhereText(const ClFacts& facts, const Fact_t& fact) {
    std::string text = "  [";
    if (fact.isDerived) {
        text += "from";
        for (uint32_t i = 0; i < fact.field->sources; i++)
            text.append(i == 0 ? " " : ", ").append(facts.SourceKey(fact, i));
    } else if (fact.size != 0) {
        char place[8];
        std::snprintf(place, sizeof place, "%02Xh:", fact.offset);
        text += place;
        const std::string digits = HexDigits(facts.Bytes(fact));
        for (size_t i = 0; i < digits.size(); i += 2) text.append(" ").append(digits, i, 2);
    } else {
        text += fact.string.empty() ? "no bytes" : "a string";
    }
    return text.append(", ").append(StateName(fact.state)).append("]");
}

class ClTextWriter : public ClWriter {
  public:
    explicit ClTextWriter(ClOutput& output) : ClWriter(output), m_columns(output) {}

    void Begin(const List_t& list, const Members_t&) override {
        m_list = &list;
        std::string line;
        for (const Column_t& column : list.columns)
            if (column.heading[0] != '\0') line.append(line.empty() ? "" : "  ").append(column.heading);
        if (!line.empty()) m_columns.Line(0, line);
    }

    // Numbers end where their heading ends.
    void Row(std::initializer_list<Cell_t> cells, std::span<const Row_t>) override {
        std::string line;
        const Column_t* column = m_list->columns.data();
        for (const Cell_t& cell : cells) {
            const std::string_view heading = column++->heading;
            if (heading.empty()) continue;
            if (!line.empty()) line += "  ";
            if (const auto* text = std::get_if<std::string_view>(&cell)) line += *text;
            if (const auto* truth = std::get_if<bool>(&cell)) line += *truth ? "yes" : "no";
            if (const auto* number = std::get_if<uint64_t>(&cell)) {
                const std::string digits = std::to_string(*number);
                line.append(heading.size() - std::min(heading.size(), digits.size()), ' ').append(digits);
            }
        }
        if (!line.empty()) m_columns.Line(0, line);
    }

    void Structure(const Structure_t& structure) override {
        if (const std::string heading = structure.Heading(); !heading.empty()) m_columns.Heading(heading);
        size_t indent = 2;
        for (size_t index = structure.firstItem; index < structure.EndItem(); index++) {
            const ShownItem_t item = structure.Item(index);
            if (!item.opensGroup) {
                m_columns.Pair(item.key, item.value);
                continue;
            }
            m_columns.Finish(indent);
            m_columns.Line(2, item.key);
            indent = 4;
        }
        m_columns.Finish(indent);
    }

    void Hits(const Structure_t& structure, std::span<const Hit_t> hits) override {
        const std::string heading = structure.Heading();
        m_columns.Heading(heading.empty() ? std::string(structure.title) + ", handle " + HandleText(structure.handle)
                                          : heading);
        for (const Hit_t& hit : hits) m_columns.Pair(hit.item.key, hit.item.value);
        m_columns.Finish(2);
    }

    void Facts(const FactStructure_t& structure) override {
        const TableStructure_t& bytes = structure.structure;
        m_columns.Heading(std::string(structure.Name()) + ", type " + std::to_string(bytes.Type()) + ", handle " +
                          HandleText(bytes.Handle()) + ", " + std::to_string(bytes.Length()) + " bytes");
        std::deque<std::string> values;  // live until the block is written
        std::string list;
        int record = -1;
        structure.ForEach([&](const ClFacts& facts, const Fact_t& fact) {
            if (fact.record != record) {
                m_columns.Finish(record < 0 ? 2 : 4);
                record = fact.record;
                if (record >= 0) m_columns.Line(2, list + " " + std::to_string(record + 1));
            }
            if (fact.kind == FactKind_t::kList) list = fact.Name();
            if (fact.kind == FactKind_t::kList && fact.IsValue() && fact.number != 0) return;  // its records show it
            std::string value = ShownValue(facts, fact);
            if (structure.choice.showsWhere) value += WhereText(facts, fact);
            m_columns.Pair(fact.Name(), values.emplace_back(std::move(value)));
        });
        m_columns.Finish(record < 0 ? 2 : 4);
    }

    ClColumns* People() override { return &m_columns; }

  private:
    ClColumns m_columns;
    const List_t* m_list = nullptr;
};

std::unique_ptr<ClWriter> Make(ClOutput& output, bool) { return std::make_unique<ClTextWriter>(output); }

}  // namespace

constexpr Format_t kTextFormat = {
    .name = "text",
    .remark = "for people",
    .contents = kAnyContent | kObjects,
    .takesMany = false,
    .reportsErrors = false,
    .isSweep = false,
    .make = Make,
};
