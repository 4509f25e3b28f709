#include "Tools/quorlin/Report/Page.h"

#include <algorithm>
#include <cstdio>

#include "Packages/Standard/Texts.h"
#include "Tools/quorlin/Report/Files.h"
#include "Tools/quorlin/Report/Sections.h"
#include "Tools/quorlin/Text.h"

ClStructures::ClStructures(const NamedTable_t& table)
    : m_table(table.bytes),
      m_handles(table.bytes),
      m_options{.version = table.version, .handles = &m_handles, .listsAbsent = false},
      m_summary(SummaryOf(table.bytes, {.version = table.version})) {
    uint32_t counts[256] = {};
    for (const TableStructure_t& structure : ClWalk(m_table)) {
        const auto offset = static_cast<uint32_t>(structure.data - m_table.data());
        if (offset >= kMostShownBytes) {
            m_leftOut++;
            continue;
        }
        const auto number = static_cast<uint32_t>(m_all.size());
        m_all.push_back({structure, offset, number, ++counts[structure.Type()]});
        m_byHandle.try_emplace(structure.Handle(), number);
    }
}

std::span<const uint8_t> ClStructures::Shown() const {
    return m_table.first(m_all.empty() ? 0 : m_all.back().offset + m_all.back().structure.size);
}

const ClStructures::Entry_t* ClStructures::At(uint32_t offset) const {
    const auto after = std::ranges::upper_bound(m_all, offset, {}, &Entry_t::offset);
    if (after == m_all.begin()) return nullptr;
    const Entry_t& entry = *std::prev(after);
    return offset - entry.offset < entry.structure.size ? &entry : nullptr;
}

const ClStructures::Entry_t* ClStructures::WithHandle(uint16_t handle) const {
    const auto found = m_byHandle.find(handle);
    return found == m_byHandle.end() ? nullptr : &m_all[found->second];
}

std::string IdOf(const ClStructures::Entry_t& entry) {
    char id[32];
    std::snprintf(id, sizeof id, "s-%04X-%u", static_cast<unsigned>(entry.structure.Handle()), entry.number);
    return id;
}

void PutLink(const ClStructures::Entry_t* entry, std::string_view text, ClHtml& html) {
    if (entry == nullptr) {
        html.Text(text);
        return;
    }
    html << "<a href=#";
    html.Text(IdOf(*entry)) << ">";
    html.Text(text) << "</a>";
}

std::string DesignationOf(const ClStructures::Entry_t& entry, const FactOptions_t& options) {
    ClFacts facts(entry.structure, options);
    while (facts.Next())
        if (facts->kind == FactKind_t::kText && facts->IsValue() && !facts->isDerived) return Printable(facts->text);
    return {};
}

void BeginTable(std::string_view label, std::initializer_list<ReportText_t> headings, ClHtml& html) {
    html << "<div class=wide tabindex=0 role=group aria-label=\"";
    html.Text(Filled(kTextScroll, {label})) << "\">";
    BeginHead(headings, html);
}

void BeginHead(std::initializer_list<ReportText_t> headings, ClHtml& html) {
    html << "<table>\n<thead><tr>";
    for (const ReportText_t heading : headings) {
        html << "<th>";
        html.Text(TextOf(heading));
    }
    html << "<tbody>\n";
}

void PutLeftOut(const ClStructures& structures, ClHtml& html) {
    const size_t size = structures.Table().size();
    if (size <= kMostShownBytes) return;
    html << "<p><strong>";
    html.Text(Filled(kTextLeftOut, structures.LeftOut(), size - kMostShownBytes)) << "</strong></p>\n";
}

std::string Cut(std::string_view text, size_t characters) {
    std::string cut = Printable(text);
    size_t count = 0, end = 0, last = 0;
    while (end < cut.size() && count < characters) {
        last = end;
        end += std::max<size_t>(SequenceLength(std::string_view(cut).substr(end)), 1);
        count++;
    }
    if (end >= cut.size()) return cut;
    cut.resize(last);
    return cut += "\u2026";
}

namespace {

class ClPage {
  public:
    explicit ClPage(const Report_t& report) : m_report(report), m_structures(report.table) {}

    std::string Make() {
        // The markup of the parts alone comes from literals; the files are the program's own.
        std::string_view rest = ReportFile_html().text;
        for (size_t at = rest.find("{{"); at != rest.npos; at = rest.find("{{")) {
            const size_t end = rest.find("}}", at);
            m_html.Markup(rest.substr(0, at));
            Put(rest.substr(at + 2, end - at - 2));
            rest.remove_prefix(end + 2);
        }
        m_html.Markup(rest);
        return m_html.Take();
    }

  private:
    void Put(std::string_view name) {
        using Write_t = void (*)(const Report_t&, const ClStructures&, ClHtml&);
        if (!name.starts_with('=')) {
            m_html.Text(TextByName(name));
            return;
        }
        name.remove_prefix(1);
        const Write_t write = name == "summary"       ? WriteSummary
                              : name == "memory"      ? WriteMemory
                              : name == "slots"       ? WriteSlots
                              : name == "processors"  ? WriteProcessors
                              : name == "firmware"    ? WriteFirmware
                              : name == "findings"    ? WriteFindings
                              : name == "structures"  ? WriteStructures
                              : name == "raw"         ? WriteRaw
                              : name == "differences" ? WriteDifferences
                                                      : nullptr;
        if (write != nullptr) {
            const size_t before = m_html.Out().size();
            write(m_report, m_structures, m_html);
            if (m_html.Out().size() == before && write != WriteDifferences) {
                m_html << "<p class=\"quiet\">";
                m_html.Text(TextOf(kTextNothing)) << "</p>\n";
            }
            return;
        }
        if (name == "style") m_html.Markup(ReportFile_css().text);
        if (name == "script") m_html.Markup(ReportFile_js().text);
        if (name == "style_hash") m_html.Text(Base64(ReportFile_css().sha256));
        if (name == "script_hash") m_html.Text(Base64(ReportFile_js().sha256));
        if (name == "title") m_html.Text(Filled(kTextTitle, {MachineName()}));
        if (name == "header") PutHeader();
        if (name == "footer") m_html.Text(Filled(kTextFooter, {QUORLIN_VERSION}));
        if (name == "differences_link" && m_report.base != nullptr) {
            m_html << "<li><a href=\"#differences\">";
            m_html.Text(TextOf(kTextDifferences)) << "</a></li>\n";
        }
    }

    // Maker and product.
    std::string MachineName() const {
        const Product_t& product = m_structures.Summary().system.product;
        const std::string& maker = product.manufacturer;
        std::string name = product.name.starts_with(maker) || maker.empty() ? product.name
                           : product.name.empty()                           ? maker
                                                                            : maker + " " + product.name;
        return name.empty() ? std::string(TextOf(kTextUnknownMachine)) : name;
    }

    void PutHeader() {
        const uint16_t version = m_report.table.version;
        const std::string level = std::to_string(version >> 8) + "." + std::to_string(version & 0xFF);
        m_html << "<p>";
        m_html.Text(Filled(kTextSmbios, {level})) << " \u00B7 ";
        const size_t count = m_structures.All().size() + m_structures.LeftOut();
        m_html.Text(Filled(kTextStructureCount, count, m_report.table.bytes.size())) << " \u00B7 ";
        m_html.Text(TextOf(kTextSource)) << ": ";
        m_html.Text(m_report.table.name);
        if (m_report.isRedacted) {
            m_html << " \u00B7 <strong>";
            m_html.Text(TextOf(kTextRedacted)) << "</strong>";
        }
        m_html << "</p>\n";
        PutLeftOut(m_structures, m_html);
    }

    const Report_t& m_report;
    const ClStructures m_structures;
    ClHtml m_html;
};

}  // namespace

void WriteSummary(const Report_t&, const ClStructures& structures, ClHtml& html) {
    html << "<dl>\n";
    for (const SummarySection_t& section : SectionsOf(structures.Summary())) {
        if (section.lines.empty()) continue;
        html << "<dt>";
        html.Text(section.name) << "\n";
        for (const std::string& line : section.lines) {
            html << "<dd>";
            html.Text(line) << "\n";
        }
    }
    html << "</dl>\n";
}

// The facts of a structure that people know what to do with: words, fillers too, and numbers with a unit.
static void PutCard(const ClStructures::Entry_t& entry, const FactOptions_t& options, ClHtml& html) {
    html << "<div class=\"card\"><h3>";
    PutLink(&entry, FindStandardType(entry.structure.Type()).Name(), html);
    html << "</h3><dl>\n";
    ClFacts facts(entry.structure, options);
    while (facts.Next()) {
        const Fact_t& fact = *facts;
        const bool isWord = fact.kind != FactKind_t::kNumber && fact.kind != FactKind_t::kBits &&
                            fact.kind != FactKind_t::kHandle && fact.kind != FactKind_t::kList &&
                            fact.kind != FactKind_t::kBytes;
        const bool isMeasure = fact.IsValue() && fact.unit != Unit_t::kNone && fact.number != 0;
        const bool isFiller = fact.state == FactState_t::kFiller;
        if (fact.record >= 0 || !(isMeasure || (isWord && (fact.IsValue() || isFiller)))) continue;
        const std::string value = isFiller ? PlainValue(facts, fact) : ShownValue(facts, fact);
        if (value.empty()) continue;
        html << "<dt>";
        html.Text(fact.Name());
        if (isFiller)
            html << "<dd class=filler>";
        else
            html << "<dd>";
        html.Text(value) << "\n";
    }
    html << "</dl></div>\n";
}

void WriteFirmware(const Report_t&, const ClStructures& structures, ClHtml& html) {
    constexpr size_t kMost = 16;  // boards and chassis of a large machine
    size_t count = 0;
    for (const ClStructures::Entry_t& entry : structures.All()) {
        if (entry.structure.Type() > 3 || count == kMost) continue;
        if (count++ == 0) html << "<div class=\"cards\">\n";
        PutCard(entry, structures.Options(), html);
    }
    if (count != 0) html << "</div>\n";
}

std::string MakeReport(const Report_t& report) { return ClPage(report).Make(); }
