#include "Packages/Analysis/Findings.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <tuple>

#include "Packages/Format/Ascii.h"
#include "Packages/Standard/Texts.h"

namespace {

// Takes the first word of a line.
std::string_view TakeWord(std::string_view* line) {
    line->remove_prefix(std::min(line->find_first_not_of(" \t\r"), line->size()));
    const std::string_view word = line->substr(0, line->find_first_of(" \t\r"));
    line->remove_prefix(word.size());
    return word;
}

// The texts that name a table's maker.
std::string MakersOf(const CheckedTable_t& table) {
    std::string makers;
    for (const TableStructure_t& structure : ClWalk(table.bytes)) {
        if (structure.Type() > 1) continue;
        ClFacts facts(structure, {.version = table.version});
        while (facts.Next())
            if (facts->Key() == "vendor" || facts->Key() == "manufacturer") makers.append(facts->string) += '\n';
    }
    return makers;
}

std::string CutText(std::string_view text) {
    if (text.size() <= kMostFoundBytes) return std::string(text);
    const std::string left = std::to_string(text.size() - kMostFoundBytes);
    return std::string(text.substr(0, kMostFoundBytes)).append("... and ").append(left).append(" more bytes");
}

std::string_view NameOf(uint8_t type, std::string_view key) {
    const StandardType_t table = FindStandardType(type);
    for (const StandardField_t& field : table.fields)
        if (table.Text(field.key) == key) return table.Text(field.name);
    return "";
}

}  // namespace

bool FindRule(std::string_view id, RuleId_t* rule) {
    for (const RuleId_t each : kRules) {
        if (RuleOf(each).id != id) continue;
        *rule = each;
        return true;
    }
    return false;
}

std::string RuleChoice_t::AddLine(std::string_view line) {
    line = WithoutBlanks(line);
    if (line.empty() || line.front() == '#') return "";
    const std::string_view state = TakeWord(&line), rule = TakeWord(&line), scope = TakeWord(&line);
    RuleId_t known;
    if (state != "on" && state != "off") return "a line begins with on or off";
    if (rule != "all" && !FindRule(rule, &known)) return "unknown rule '" + std::string(rule) + "'";
    Setting_t setting = {.isOn = state == "on", .rule = rule == "all" ? "" : std::string(rule), .maker = ""};
    const std::string_view value = WithoutBlanks(line);
    if (scope == "type") {
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), setting.type);
        if (error != std::errc() || end != value.data() + value.size() || setting.type < 0 || setting.type > 255)
            return "a type is a number from 0 to 255";
    } else if (scope == "maker") {
        if (value.empty()) return "a maker is missing";
        setting.maker = value;
    } else if (!scope.empty()) {
        return "after a rule comes type N or maker TEXT";
    }
    settings.push_back(std::move(setting));
    return "";
}

bool RuleChoice_t::Wants(RuleId_t rule, int type, std::string_view makers) const {
    const Rule_t row = RuleOf(rule);
    if (row.severity < least) return false;
    bool isWanted = true;
    for (const Setting_t& setting : settings)
        if ((setting.rule.empty() || setting.rule == row.id) && (setting.type < 0 || setting.type == type) &&
            ContainsIgnoringCase(makers, setting.maker))
            isWanted = setting.isOn;
    return isWanted;
}

std::vector<FindingGroup_t> FindGroups(const CheckedTable_t& table, const RuleChoice_t& choice) {
    std::vector<FindingGroup_t> groups;
    std::map<std::tuple<RuleId_t, int, std::string_view>, size_t> known;
    const std::string makers = MakersOf(table);
    CheckTable(table, [&](const Finding_t& finding) {
        const int type = finding.structure == nullptr ? -1 : finding.structure->Type();
        const auto [entry, isNew] = known.try_emplace({finding.rule, type, finding.key}, groups.size());
        if (isNew)
            groups.push_back({finding.rule,
                              type,
                              finding.key,
                              type < 0 ? std::string_view() : NameOf(static_cast<uint8_t>(type), finding.key),
                              0,
                              {}});
        FindingGroup_t& group = groups[entry->second];
        if (group.count++ >= kMostPlaces) return;
        const uint16_t handle = finding.structure == nullptr ? uint16_t{0} : finding.structure->Handle();
        const size_t shown = std::min<size_t>(finding.size, kMostBytes);
        group.places.push_back({handle, finding.offset, finding.size,
                                HexDigits(table.bytes.subspan(finding.offset, shown)), CutText(finding.found),
                                std::string(finding.expected)});
    });
    std::erase_if(groups, [&](const FindingGroup_t& group) { return !choice.Wants(group.rule, group.type, makers); });
    std::ranges::stable_sort(groups, std::ranges::greater(),
                             [](const FindingGroup_t& group) { return RuleOf(group.rule).severity; });
    return groups;
}
