// Facts as the program shows them: which ones of a structure, and their values as text.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Packages/Standard/Facts.h"

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

// The value as decoded, in its unit: a number, text, word, or words with ", " between them.
std::string PlainValue(const ClFacts& facts, const Fact_t& fact);
// The value for people: with its unit, sizes in the largest unit that fits; or why there is none.
std::string ShownValue(const ClFacts& facts, const Fact_t& fact);
// Hexadecimal digits of the bytes that a fact comes from: of a text, the string's number and the string.
std::string RawDigits(const ClFacts& facts, const Fact_t& fact);
// A size in the largest unit that it is a whole number of: 16 GiB.
std::string SizeText(uint64_t bytes);
// The code or number as hexadecimal: 0x26.
std::string CodeText(uint64_t code);
