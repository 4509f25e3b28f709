// What differs between two tables. Structures are paired by what they are, such as the memory device of a slot, so that
// other handles or another order are no difference.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Packages/Format/Structures.h"

enum class Change_t : uint8_t {
    kRemoved,
    kAdded,
    kChanged,
    kReplaced,  // the place has another part, by its serial or part number
    kMoved,     // the part was at another place
};

// Returns its name, such as "moved".
const char* ChangeName(Change_t change);

// A fact of both structures that differs, or a run of bytes.
struct FactChange_t {
    std::string_view key, name;
    int record;     // of a fact in a list; otherwise -1
    int offset;     // of a run of bytes, in its structure; otherwise -1
    std::string a;  // as people read it; empty where a structure doesn't have the fact
    std::string b;
};

// What differs in one structure. The texts live for the call that reports it.
struct Difference_t {
    Change_t change;
    const TableStructure_t* a;  // null if it was added
    const TableStructure_t* b;  // null if it was removed
    std::string_view place;     // its locator or designation; empty if it has none
    std::string_view from;      // of kMoved: where the part was, which is the place of `a`
    std::span<const FactChange_t> facts;

    const TableStructure_t& Either() const { return a != nullptr ? *a : *b; }
};

// One side of a comparison: a table's structures and references. The table must outlive it. It can be compared with
// others any number of times, in one thread at a time.
class ClDiffTable {
  public:
    // Facts with the keys `ignored` are left out, and those that such a fact is derived from.
    ClDiffTable(std::span<const uint8_t> table, uint16_t version, std::span<const std::string> ignored);
    ~ClDiffTable();

    struct Parts_t;

  private:
    friend void DiffTables(const ClDiffTable&, const ClDiffTable&, const std::function<void(const Difference_t&)>&);
    std::unique_ptr<Parts_t> m_parts;
};

// Compares two tables for which the same facts are ignored. Reports in the order of `a`, and what was added last.
void DiffTables(const ClDiffTable& a, const ClDiffTable& b, const std::function<void(const Difference_t&)>& report);
