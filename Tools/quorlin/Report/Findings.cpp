// What check and verify find, and what differs from another table.
#include "Tools/quorlin/Findings.h"

#include <set>

#include "Packages/Analysis/Diff.h"
#include "Packages/Analysis/Hardware.h"
#include "Packages/Standard/Texts.h"
#include "Tools/quorlin/Report/Sections.h"

namespace {

constexpr size_t kMostPlaces = 24;  // of a finding

void PutPlace(const FindingGroup_t& group, const FindingPlace_t& place, const ClStructures& structures, ClHtml& html) {
    html << "<li>";
    const ClStructures::Entry_t* entry = group.type < 0 ? nullptr : structures.At(place.offset);
    if (entry != nullptr) {
        const std::string name = DesignationOf(*entry, structures.Options());
        PutLink(entry, HandleText(place.handle).append(name.empty() ? "" : " ").append(name), html);
        html << ", ";
    }
    html.Text(Filled(kTextAt, {CodeText(place.offset)}));
    if (!place.found.empty()) html.Raw("; ").Text(Filled(kTextFound, {place.found}));
    if (!place.expected.empty()) html.Raw("; ").Text(Filled(kTextExpected, {place.expected}));
    html << "\n";
}

// `explains` why the rule matters, which is said once.
void PutGroup(const FindingGroup_t& group, bool explains, const ClStructures& structures, ClHtml& html) {
    const Rule_t rule = RuleOf(group.rule);
    const std::string_view severity = SeverityWord(rule.severity);
    html << "<div class=\"finding\"><p><span class=\"badge ";
    html.Text(severity) << "\">";
    html.Text(severity) << "</span> ";
    html.Text(rule.id).Raw(" ");
    if (const std::string subject = SubjectOf(group); !subject.empty()) html.Text(subject).Raw(": ");
    html.Text(rule.what);
    if (group.count > 1) html.Raw(", ").Text(Filled(kTextTimes, group.count));
    html << "</p>";
    if (explains) {
        html << "<p class=quiet>";
        html.Text(Filled(kTextWhy, {rule.why, rule.fix})) << "</p>";
    }
    html << "<ul>\n";
    size_t shown = 0;
    for (; shown < std::min(group.places.size(), kMostPlaces); shown++)
        PutPlace(group, group.places[shown], structures, html);
    if (group.count > shown) {
        html << "<li>";
        html.Text(Filled(kTextMore, group.count - shown)) << "\n";
    }
    html << "</ul></div>\n";
}

void PutVerification(const Verification_t& verification, const ClStructures& structures, ClHtml& html) {
    const VerifyRow_t row = VerifyRowOf(verification.rule);
    html << "<tr><td><span class=\"badge ";
    html.Text(VerdictWord(verification.verdict)) << "\">";
    html.Text(VerdictWord(verification.verdict)) << "</span><td>";
    html.Text(row.id).Raw(" ").Text(row.claim) << "<td>";
    html.Text(verification.claim) << "<td>";
    html.Text(verification.hardware) << "<td>";
    html.Text(row.source) << "<td>";
    if (verification.structure != nullptr)
        PutLink(structures.Of(*verification.structure), HandleText(verification.structure->Handle()), html);
    html << "\n";
}

void PutDifference(const Difference_t& difference, const ClStructures& structures, ClHtml& html) {
    const std::string_view change = ChangeName(difference.change);
    std::string name(FindStandardType(difference.Either().Type()).Name());
    name.append(" ").append(HandleText(difference.Either().Handle()));
    size_t row = 0;
    const auto begin = [&] {
        html << "<tr><td>";
        if (row++ == 0) {
            html << "<span class=\"badge ";
            html.Text(change) << "\">";
            html.Text(change) << "</span>";
        }
        html << "<td>";
        if (row > 1) return;
        PutLink(difference.b == nullptr ? nullptr : structures.Of(*difference.b), name, html);
        if (!difference.place.empty()) html.Raw(" ").Text(difference.place);
        if (!difference.from.empty()) html.Raw(" ").Text(Filled(kTextFrom, {difference.from}));
    };
    for (const FactChange_t& fact : difference.facts) {
        begin();
        html << "<td>";
        html.Text(fact.name);
        if (fact.record >= 0) html.Raw(" ").Number(static_cast<uint64_t>(fact.record) + 1);
        if (fact.offset >= 0) html.Raw(" ").Text(Filled(kTextAt, {CodeText(static_cast<uint64_t>(fact.offset))}));
        html << "<td>";
        html.Text(fact.a) << "<td>";
        html.Text(fact.b) << "\n";
    }
    if (row != 0) return;
    begin();
    html << "<td><td><td>\n";
}

}  // namespace

void WriteFindings(const Report_t& report, const ClStructures& structures, ClHtml& html) {
    html << "<p>";
    html.Text(TextOf(kTextCheckIntro)) << "</p>\n";
    const std::vector<FindingGroup_t> groups =
        FindGroups(report.checked, {.least = Severity_t::kWarning, .settings = {}});
    std::set<RuleId_t> explained;
    for (const FindingGroup_t& group : groups) PutGroup(group, explained.insert(group.rule).second, structures, html);
    if (groups.empty()) {
        html << "<p>";
        html.Text(TextOf(kTextNoFindings)) << "</p>\n";
    }
    if (report.hardware == nullptr) return;
    html << "<h3>";
    html.Text(TextOf(kTextVerify)) << "</h3>\n<p>";
    html.Text(TextOf(kTextVerifyIntro)) << "</p>\n";
    BeginTable(TextOf(kTextVerify),
               {kTextVerdict, kTextClaim, kTextFirmwareSays, kTextHardware, kTextReadFrom, kTextStructure}, html);
    const RecordedHardware_t& hardware = *report.hardware;
    VerifyTable(report.table.bytes, report.table.version,
                HardwareFactsOf(hardware.facts, hardware.processors, hardware.tables, hardware.functions),
                [&](const Verification_t& verification) { PutVerification(verification, structures, html); });
    html << "</table></div>\n";
}

void WriteDifferences(const Report_t& report, const ClStructures& structures, ClHtml& html) {
    if (report.base == nullptr) return;
    html << "<section id=\"differences\" aria-labelledby=\"h-differences\">\n<h2 id=\"h-differences\">";
    html.Text(TextOf(kTextDifferences)) << "</h2>\n<p>";
    html.Text(Filled(kTextDifferencesIntro, {report.base->name, report.table.name})) << "</p>\n";
    ClHtml rows;
    uint64_t leftOut = 0;
    DiffTables({report.base->bytes, report.base->version, {}}, {report.table.bytes, report.table.version, {}},
               [&](const Difference_t& difference) {
                   if (rows.Out().size() < kMostOfDifferences)
                       PutDifference(difference, structures, rows);
                   else
                       leftOut++;
               });
    if (rows.Out().empty()) {
        html << "<p>";
        html.Text(TextOf(kTextNoDifferences)) << "</p>\n";
    } else {
        BeginTable(TextOf(kTextDifferences), {kTextChange, kTextStructure, kTextFact, kTextBefore, kTextAfter}, html);
        html.Markup(rows) << "</table></div>\n";
    }
    if (leftOut != 0) {
        html << "<p><strong>";
        html.Text(Filled(kTextMoreDifferences, leftOut)) << "</strong></p>\n";
    }
    html << "</section>\n";
}
