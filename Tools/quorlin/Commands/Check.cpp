// quorlin check: what is wrong with a table.
#include <map>
#include <tuple>

#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Findings.h"
#include "Tools/quorlin/Formats.h"
#include "Tools/quorlin/NameList.h"
#include "Tools/quorlin/Text.h"

namespace {

constexpr List_t kList = {.name = "findings", .columns = kFindingColumns, .innerName = "places"};
constexpr Choice_t kSeverities[] = {{"error"}, {"warning"}, {"note"}};

// A text as it is, or in quotes if blanks at its ends would be lost.
std::string Quoted(const std::string& text) {
    const bool isBare = !text.empty() && text.front() != ' ' && text.back() != ' ';
    return isBare ? text : std::string("\"").append(text).append("\"");
}

// The places with the same bytes in one line: the bytes and where they are, what they read, and the structures.
void ShowPlaces(const FindingGroup_t& group, ClColumns& people) {
    struct Line_t {
        const FindingPlace_t* first;
        std::string handles;
    };
    std::map<std::tuple<std::string_view, std::string_view, std::string_view>, size_t> known;
    std::vector<Line_t> lines;
    for (const FindingPlace_t& place : group.places) {
        const auto [entry, isNew] = known.try_emplace({place.bytes, place.found, place.expected}, lines.size());
        if (isNew) lines.push_back({&place, ""});
        std::string& handles = lines[entry->second].handles;
        handles.append(handles.empty() ? "" : ", ").append(HandleText(place.handle));
    }
    for (const auto& [first, handles] : lines) {
        std::string line;
        const auto add = [&line](std::string_view text) { line.append(line.empty() ? "" : "; ").append(text); };
        if (!first->found.empty()) add(Quoted(first->found));
        if (!first->expected.empty()) add("expected " + first->expected);
        if (group.type >= 0) add("handle " + handles);
        add("at " + CodeText(first->offset));
        const bool isText = group.rule == RuleId_t::kFiller || group.rule == RuleId_t::kBlankString;
        if (!first->bytes.empty() && !isText) line.append(": ").append(first->bytes);
        people.Line(4, line);
    }
    if (group.count > group.places.size())
        people.Line(4, "and " + std::to_string(group.count - group.places.size()) + " more");
}

void ShowGroup(const FindingGroup_t& group, ClColumns& people) {
    const Rule_t rule = RuleOf(group.rule);
    std::string line(rule.id);
    line.append(" ").append(SeverityWord(rule.severity)).append(": ");
    if (const std::string subject = SubjectOf(group); !subject.empty()) line.append(subject).append(": ");
    line.append(rule.what);
    if (group.count > 1) line.append(", ").append(std::to_string(group.count)).append(" times");
    people.Line(0, line);
    ShowPlaces(group, people);
}

void WriteGroup(const FindingGroup_t& group, ClWriter& writer) {
    const Rule_t rule = RuleOf(group.rule);
    const bool isTable = group.type < 0;
    std::vector<Row_t> places;
    for (const FindingPlace_t& place : group.places) {
        Row_t row(std::size(kFindingColumns));
        if (!isTable) row[kHandleColumn] = place.handle;
        row[kOffsetColumn] = uint64_t{place.offset};
        row[kSizeColumn] = uint64_t{place.size};
        if (!place.bytes.empty()) row[kBytesColumn] = std::string_view(place.bytes);
        row[kFoundColumn] = std::string_view(place.found);
        row[kExpectedColumn] = std::string_view(place.expected);
        places.push_back(std::move(row));
    }
    const Cell_t type = isTable ? Cell_t() : Cell_t(static_cast<uint64_t>(group.type));
    const std::string subject = SubjectOf(group);
    writer.Row({rule.id, SeverityWord(rule.severity), type, subject.empty() ? Cell_t() : std::string_view(subject),
                group.key.empty() ? Cell_t() : Cell_t(group.key), rule.what, group.count},
               places);
}

class ClCheckCommand : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForMany();
        options.push_back({"--only", "RULE", "Only this rule, such as QR0501; may be given more than once", &m_only});
        options.push_back({"--ignore", "RULE", "All rules but this one; may be given more than once", &m_ignored});
        options.push_back({.name = "--severity",
                           .typeName = "WHICH",
                           .help = "Only findings at least as severe",
                           .target = &m_severity,
                           .choices = kSeverities});
        options.push_back({"--profile", "FILE", "Which rules are on and off, for a type or a maker", &m_profile});
        options.push_back(m_format.Option());
        return options;
    }

    int Run() override {
        m_source.Check();
        m_format.Check(m_source);
        const RuleChoice_t choice = Choice();
        return WriteTables(m_source, m_format.Chosen(), kList, kCheckCommand.trouble,
                           [&](ClTable& table, ClWriter& writer) {
                               table.CloseLargePackage();
                               const std::vector<FindingGroup_t> groups = FindGroups(Checked(table), choice);
                               ClColumns* people = writer.People();
                               uint64_t count = 0;
                               for (const FindingGroup_t& group : groups) {
                                   count += group.count;
                                   people != nullptr ? ShowGroup(group, *people) : WriteGroup(group, writer);
                               }
                               if (people != nullptr)
                                   people->Line(0, count == 0   ? "No findings"
                                                   : count == 1 ? "1 finding"
                                                                : std::to_string(count) + " findings");
                               return count == 0 ? kExitDone : kExitNo;
                           });
    }

  private:
    // The profile comes first, so that options decide.
    RuleChoice_t Choice() const {
        RuleChoice_t choice;
        choice.least = m_severity == "error"  ? Severity_t::kError
                       : m_severity == "note" ? Severity_t::kNote
                                              : Severity_t::kWarning;
        ClNameList lines(m_profile);
        for (std::string line; lines.Next(&line);)
            if (const std::string problem = choice.AddLine(line); !problem.empty())
                throw BadUsage_t{std::string("--profile: ").append(problem).append(": ").append(line)};
        if (!lines.Problem().empty()) throw BadUsage_t{"--profile: " + m_profile + ": " + lines.Problem()};
        if (!m_only.empty()) choice.settings.push_back({.isOn = false, .rule = "", .maker = ""});
        for (const std::string& rule : m_only) AddRule(rule, true, &choice);
        for (const std::string& rule : m_ignored) AddRule(rule, false, &choice);
        return choice;
    }

    static void AddRule(const std::string& id, bool isOn, RuleChoice_t* choice) {
        RuleId_t rule;
        if (!FindRule(id, &rule)) throw BadUsage_t{"unknown rule '" + id + "'; Docs/Checks.md lists them"};
        choice->settings.push_back({.isOn = isOn, .rule = id, .maker = ""});
    }

    Source_t m_source;
    std::vector<std::string> m_only, m_ignored;
    std::string m_severity, m_profile;
    ClFormatOption m_format{kFindings};
};

}  // namespace

constexpr Command_t kCheckCommand = {
    .name = "check",
    .summary = "what is wrong with a table",
    .description =
        "Says what is wrong with a table by level 3.9 of the SMBIOS standard: lengths, strings, references, codes, and "
        "values that contradict each other. Notes are shown with --severity note.",
    .footer =
        "Example: quorlin check --image table.bin\n"
        "Exit codes: 0 nothing found, 1 something found, 2 bad usage, no table or an unreadable one.",
    .trouble = kExitTrouble,
    .make = MakeCommand<ClCheckCommand>,
};
