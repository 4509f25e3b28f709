// What a command shows, in a vocabulary that every output format understands: documents, each with one list of rows, of
// structures, or of single items.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "Tools/quorlin/Columns.h"
#include "Tools/quorlin/FactTexts.h"
#include "Tools/quorlin/Structures.h"

// A value in a row; none means an empty cell, or nothing at all.
using Cell_t = std::variant<std::monostate, std::string_view, uint64_t, bool>;
using Row_t = std::vector<Cell_t>;

// Characters in place of pointers, which would cost relocations at start-up.
struct Column_t {
    char name[16];
    char heading[16] = "";  // in a table for people, which leaves out columns without one
};

// A list's name and the columns of its rows.
struct List_t {
    const char* name;
    std::span<const Column_t> columns;
    const char* innerName = nullptr;  // of the rows within a row
};

// A value of a document without a list: null, text, number, truth, list, or named members.
struct Member_t;
struct Node_t {
    using List_t = std::vector<Node_t>;
    using Members_t = std::vector<Member_t>;
    std::variant<std::monostate, std::string, uint64_t, bool, List_t, Members_t> value;
};
struct Member_t {
    const char* name;
    Node_t node;
};

// A document's own members, such as its source. The texts must live until the document ends.
using Members_t = std::vector<std::pair<const char*, std::string_view>>;

// An item that was asked for, and its group; empty for an item without one.
struct Hit_t {
    std::string_view group;
    ShownItem_t item;
};

// Writes in one format. The calls of a document are Begin, any number of one other kind, and End.
class ClWriter {
  public:
    explicit ClWriter(ClOutput& output) : m_output(output) {}
    virtual ~ClWriter() = default;
    ClWriter(const ClWriter&) = delete;
    ClWriter& operator=(const ClWriter&) = delete;

    // Begins a document with one list. `list` must live until End.
    virtual void Begin(const List_t& list, const Members_t& members) = 0;
    virtual void End() {}
    // Adds a row: a cell for each column, or fewer if the last ones are empty. The rows within it, of the same columns,
    // have empty cells where the row's own cells hold for them as well.
    virtual void Row(std::initializer_list<Cell_t> cells, std::span<const Row_t> inner = {}) = 0;
    // Adds a structure with all its items, or some items of one, to a list that has kItemColumns. Writes them as rows
    // unless the format has another way.
    virtual void Structure(const Structure_t& structure);
    virtual void Hits(const Structure_t& structure, std::span<const Hit_t> hits);
    // Adds the facts of a structure to a list that has kFactColumns.
    virtual void Facts(const FactStructure_t& structure);

    // Writes the members of a document whose list has no name. Only for formats that have kObjects and no People.
    virtual void Members(const Node_t::Members_t&) {}

    // Writes that there is no document for a table, as it can't be read. Only for formats that have `reportsErrors`.
    virtual void Failed(std::string_view, std::string_view) {}
    // Where a command writes lines for people. Null in formats for programs.
    virtual ClColumns* People() { return nullptr; }
    // False once the output can't be written, so that more work is useless.
    bool GoesOn() const { return !m_output.Failed(); }

  protected:
    ClOutput& m_output;
};

inline constexpr Column_t kItemColumns[] = {{"type"},  {"handle"}, {"instance"}, {"title"},
                                            {"group"}, {"key"},    {"value"}};
inline constexpr Column_t kFactColumns[] = {{"type"}, {"handle"}, {"instance"}, {"name"},   {"key"},  {"value"},
                                            {"unit"}, {"state"},  {"raw"},      {"offset"}, {"size"}, {"from"}};
