// The parts of the page. Each writes what is inside its <section>.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Packages/Format/Structures.h"
#include "Packages/Standard/Facts.h"
#include "Tools/quorlin/Html.h"
#include "Tools/quorlin/Report/Page.h"
#include "Tools/quorlin/Report/Texts.h"
#include "Tools/quorlin/Summary.h"

// What a page shows of a table: the structures that begin in its first bytes, about twice as many as a table of version
// 2 can have. Each gives some 60 bytes of the page, and broken ones up to 200.
inline constexpr uint32_t kMostShownBytes = 128u << 10;
// Bytes of the page for what differs from another table, or a little more.
inline constexpr size_t kMostOfDifferences = 4u << 20;

// The structures of the report's table that the page shows, in their order, and the summary of the whole table.
class ClStructures {
  public:
    struct Entry_t {
        TableStructure_t structure;
        uint32_t offset;    // in the table
        uint32_t number;    // in the table, from 0
        uint32_t instance;  // among the structures of its type, from 1
    };

    explicit ClStructures(const NamedTable_t& table);
    ClStructures(const ClStructures&) = delete;
    ClStructures& operator=(const ClStructures&) = delete;

    const std::vector<Entry_t>& All() const { return m_all; }
    // How many structures of the table come after them.
    uint32_t LeftOut() const { return m_leftOut; }
    std::span<const uint8_t> Table() const { return m_table; }
    // The table up to the end of the last one.
    std::span<const uint8_t> Shown() const;
    const Summary_t& Summary() const { return m_summary; }
    // How its facts are read.
    const FactOptions_t& Options() const { return m_options; }
    // The structure that these bytes are in, or the first one with this handle. Null if the page shows none.
    const Entry_t* At(uint32_t offset) const;
    const Entry_t* WithHandle(uint16_t handle) const;
    const Entry_t* Of(const TableStructure_t& structure) const {
        return At(static_cast<uint32_t>(structure.data - m_table.data()));
    }

  private:
    std::span<const uint8_t> m_table;
    ClHandles m_handles;
    FactOptions_t m_options;
    Summary_t m_summary;
    std::vector<Entry_t> m_all;
    uint32_t m_leftOut = 0;
    std::unordered_map<uint16_t, uint32_t> m_byHandle;
};

// "s-1100-12", which is what links to a structure name.
std::string IdOf(const ClStructures::Entry_t& entry);
// A link to a structure, or the text alone if there is no structure.
void PutLink(const ClStructures::Entry_t* entry, std::string_view text, ClHtml& html);
// What a structure calls itself, such as the locator of a memory device: its first text. Empty if there is none.
std::string DesignationOf(const ClStructures::Entry_t& entry, const FactOptions_t& options);

// Begins a table that scrolls in itself, with these headings. It ends with </table></div>.
void BeginTable(std::string_view label, std::initializer_list<ReportText_t> headings, ClHtml& html);
// The same without scrolling.
void BeginHead(std::initializer_list<ReportText_t> headings, ClHtml& html);
// What the page leaves out of the table, if it does.
void PutLeftOut(const ClStructures& structures, ClHtml& html);
// A text cut to so many characters, for where it doesn't wrap.
std::string Cut(std::string_view text, size_t characters);

void WriteSummary(const Report_t& report, const ClStructures& structures, ClHtml& html);
void WriteMemory(const Report_t& report, const ClStructures& structures, ClHtml& html);
void WriteSlots(const Report_t& report, const ClStructures& structures, ClHtml& html);
void WriteProcessors(const Report_t& report, const ClStructures& structures, ClHtml& html);
void WriteFirmware(const Report_t& report, const ClStructures& structures, ClHtml& html);
void WriteFindings(const Report_t& report, const ClStructures& structures, ClHtml& html);
void WriteStructures(const Report_t& report, const ClStructures& structures, ClHtml& html);
void WriteRaw(const Report_t& report, const ClStructures& structures, ClHtml& html);
// The whole section; nothing if there is nothing to compare with.
void WriteDifferences(const Report_t& report, const ClStructures& structures, ClHtml& html);
