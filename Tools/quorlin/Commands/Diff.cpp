// quorlin diff: what differs between two tables, or between one and many.
#include "Packages/Analysis/Diff.h"

#include <optional>

#include "Packages/Standard/Texts.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Formats.h"

namespace {

constexpr Column_t kColumns[] = {{"change"}, {"type"}, {"name"},   {"place"},  {"from"}, {"handle_a"}, {"handle_b"},
                                 {"key"},    {"fact"}, {"record"}, {"offset"}, {"a"},    {"b"}};
constexpr size_t kStructureColumns = 7;  // the others are those of its facts
constexpr List_t kList = {.name = "differences", .columns = kColumns, .innerName = "facts"};

std::string_view NameOf(const Difference_t& difference) { return FindStandardType(difference.Either().Type()).Name(); }

std::string FactLine(const FactChange_t& fact) {
    std::string line(fact.name);
    if (fact.record >= 0) line.append(" ").append(std::to_string(fact.record + 1));
    if (fact.offset >= 0) line.append(", offset ").append(CodeText(static_cast<uint64_t>(fact.offset)));
    line.append(": ");
    if (!fact.a.empty() && !fact.b.empty())
        line.append(fact.a).append(" -> ").append(fact.b);
    else
        line.append(fact.a.empty() ? "added, " : "removed, ").append(fact.a).append(fact.b);
    return line;
}

// "DIMM A1, from DIMM B1, handle 1100h".
std::string SubjectOf(const Difference_t& difference) {
    std::string text(difference.place);
    if (!difference.from.empty()) text.append(", from ").append(difference.from);
    text.append(text.empty() ? "handle " : ", handle ").append(HandleText(difference.Either().Handle()));
    if (difference.a != nullptr && difference.b != nullptr && difference.a->Handle() != difference.b->Handle())
        text.append(" and ").append(HandleText(difference.b->Handle()));
    return text;
}

// Lines for people. Structures in which the same has changed, such as all memory devices, share their lines.
class ClDiffText {
  public:
    ClDiffText(ClColumns& people, std::string_view a, std::string_view b) : m_people(people), m_a(a), m_b(b) {}

    void Add(const Difference_t& difference) {
        std::string head(ChangeName(difference.change));
        head.append(": ").append(NameOf(difference)).append(" (type ");
        head.append(std::to_string(difference.Either().Type())).append("): ");
        std::vector<std::string> facts;
        for (const FactChange_t& fact : difference.facts) facts.push_back(FactLine(fact));
        if (head != m_head || facts != m_facts) {
            Finish();
            m_head = std::move(head);
            m_facts = std::move(facts);
        }
        m_subjects.append(m_subjects.empty() ? "" : "; ").append(SubjectOf(difference));
    }

    // Writes what hasn't been written so far.
    void Finish() {
        if (m_subjects.empty()) return;
        if (!m_hasBegun) {
            m_people.Line(0, "a: " + m_a);
            m_people.Line(0, "b: " + m_b);
            m_hasBegun = true;
        }
        m_people.Line(0, m_head + m_subjects);
        for (const std::string& fact : m_facts) m_people.Line(4, fact);
        m_subjects.clear();
    }

  private:
    ClColumns& m_people;
    std::string m_a, m_b;
    bool m_hasBegun = false;
    std::string m_head, m_subjects;
    std::vector<std::string> m_facts;
};

void WriteRow(const Difference_t& difference, ClWriter& writer) {
    const auto text = [](std::string_view value) { return value.empty() ? Cell_t() : Cell_t(value); };
    const auto number = [](int value) { return value < 0 ? Cell_t() : Cell_t(static_cast<uint64_t>(value)); };
    const auto handle = [](const TableStructure_t* structure) {
        return structure == nullptr ? Cell_t() : Cell_t(uint64_t{structure->Handle()});
    };
    std::vector<Row_t> facts;
    for (const FactChange_t& fact : difference.facts) {
        Row_t row(kStructureColumns);
        row.insert(row.end(),
                   {fact.key, fact.name, number(fact.record), number(fact.offset), text(fact.a), text(fact.b)});
        facts.push_back(std::move(row));
    }
    writer.Row(
        {std::string_view(ChangeName(difference.change)), uint64_t{difference.Either().Type()}, NameOf(difference),
         text(difference.place), text(difference.from), handle(difference.a), handle(difference.b)},
        facts);
}

class ClDiffCommand : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForMany();
        options.push_back({"base", "FILE", "One table: a dump, a bare table, or a folder of both", &m_base, true});
        options.push_back({"image", "FILE", "The other tables, each compared with the first one", &m_source.images});
        options.push_back({"--ignore", "KEY",
                           "Leave out facts with this key, such as serial_number; may be given more "
                           "than once",
                           &m_ignored});
        options.push_back(m_format.Option());
        return options;
    }

    int Run() override {
        m_source.Check();
        m_format.Check(m_source);
        CheckFactKeys(m_ignored);
        // Two tables can't be up at the same time.
        std::vector<uint8_t> bytes;
        uint16_t version = 0;
        Source_t base = m_source;
        base.sample = base.sampleIfNone = false;
        base.imageList.clear();
        base.images = {m_base};
        if (ForEachTable(base, kDiffCommand.trouble, [&](ClTable& table) {
                const std::span<const uint8_t> own = table.Bytes();
                bytes.assign(own.begin(), own.end());
                version = table.Version();
                table.ClosePackage();
                return kExitDone;
            }) != kExitDone)
            return kDiffCommand.trouble;
        const ClDiffTable a(bytes, version, m_ignored);
        return WriteTables(
            m_source, m_format.Chosen(), kList, kDiffCommand.trouble,
            [&](ClTable& table, ClWriter& writer) { return Compare(a, table, writer); }, m_base);
    }

  private:
    int Compare(const ClDiffTable& a, ClTable& table, ClWriter& writer) const {
        const std::span<const uint8_t> bytes = table.Bytes();
        table.ClosePackage();
        bool isSame = true;
        std::optional<ClDiffText> text;
        if (ClColumns* people = writer.People()) text.emplace(*people, m_base, table.Name());
        DiffTables(a, {bytes, table.Version(), m_ignored}, [&](const Difference_t& difference) {
            isSame = false;
            text ? text->Add(difference) : WriteRow(difference, writer);
        });
        if (text) text->Finish();
        return isSame ? kExitDone : kExitNo;
    }

    Source_t m_source;
    std::string m_base;
    std::vector<std::string> m_ignored;
    ClFormatOption m_format{kComparison};
};

}  // namespace

constexpr Command_t kDiffCommand = {
    .name = "diff",
    .summary = "what differs between two tables",
    .description =
        "Shows what differs between two tables. Structures are paired by what they are, such as the memory device of a "
        "slot, so other handles or another order are no difference. Without a second name the other table is this "
        "machine's, or the one that --sample names.",
    .footer =
        "Example: quorlin diff before.bin after.bin --ignore serial_number\n"
        "Exit codes: 0 the same, 1 different, 2 bad usage, no table or an unreadable one.",
    .trouble = kExitTrouble,
    .make = MakeCommand<ClDiffCommand>,
};
