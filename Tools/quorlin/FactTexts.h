// Facts as the program shows them: which ones of a structure.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Packages/Standard/Texts.h"

// How facts are shown.
struct FactChoice_t {
    std::vector<std::string> keys;  // empty for all
    bool isFull = false;            // with units, states, bytes and sources
    bool showsWhere = false;        // with places, bytes and states, for people
};

// A structure whose facts are shown.
struct FactStructure_t {
    const TableStructure_t& structure;
    uint32_t instance;  // among the structures of its type, from 1
    uint32_t offset;    // in the table
    const FactOptions_t& options;
    const FactChoice_t& choice;

    std::string_view Name() const { return FindStandardType(structure.Type()).Name(); }
    // Calls `take` with each fact that is shown.
    void ForEach(const std::function<void(const ClFacts& facts, const Fact_t& fact)>& take) const;
};

// Throws BadUsage_t for a key that no type has.
void CheckFactKeys(const std::vector<std::string>& keys);
