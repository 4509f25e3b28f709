// The output formats. Each is one file in Formats and one row in Formats.inc.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Table.h"
#include "Tools/quorlin/Writer.h"

// What a command writes. A format says which of them it can write.
enum Content_t : uint8_t {
    kStructures = 1,
    kTableRows = 2,    // rows or items, in a document for each table
    kComparison = 4,   // rows on what differs between two tables
    kFactLists = 8,    // structures with their facts
    kObjects = 16,     // a document of named values, without a list
    kFindings = 32,    // rows on what is wrong with a table
    kAnyContent = 47,  // but kObjects
};

struct Format_t {
    char name[12];
    char remark[20] = "";  // in help texts
    uint8_t contents;      // bits of Content_t
    bool takesMany;        // documents of several tables may follow each other
    bool reportsErrors;  // remarks and tables that can't be read are in the output, so standard error doesn't have them
    bool isSweep;        // shows only what the library's own sweep gives
    // hasMany tells whether there are several tables, so that documents have to name theirs.
    std::unique_ptr<ClWriter> (*make)(ClOutput& output, bool hasMany);
};

#define FORMAT(name) extern const Format_t k##name##Format;
#include "Tools/quorlin/Formats.inc"
#undef FORMAT

// A command's --format option.
class ClFormatOption {
  public:
    explicit ClFormatOption(Content_t content) : m_content(content) {}

    // It points to this object.
    Option_t Option();
    const Format_t& Chosen() const;
    bool IsGiven() const { return !m_name.empty(); }
    // Throws BadUsage_t if there are several tables and the format takes only one.
    void Check(const Source_t& source) const;

  private:
    Content_t m_content;
    std::string m_name;
    std::vector<Choice_t> m_choices;
};

// Writes a document for each table of `source`, whose list `work` fills in; returns the exit code. `trouble` is that of
// a table that can't be read and of output that can't be written. `base` is the table that each is compared with.
int WriteTables(const Source_t& source, const Format_t& format, const List_t& list, int trouble,
                const std::function<int(ClTable& table, ClWriter& writer)>& work, std::string_view base = {});

// A command whose only options are tables and a format, and which writes a list of rows for each table.
template <int (*work)(ClTable& table, ClWriter& writer), const List_t& list, const Command_t& command>
class ClListCommand : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForMany();
        options.push_back(m_format.Option());
        return options;
    }
    int Run() override {
        m_source.Check();
        m_format.Check(m_source);
        return WriteTables(m_source, m_format.Chosen(), list, command.trouble,
                           [](ClTable& table, ClWriter& writer) { return work(table, writer); });
    }

  private:
    Source_t m_source;
    ClFormatOption m_format{kTableRows};
};
