// The facts of one structure, found by their keys.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "Packages/Standard/Facts.h"

struct Value_t {
    std::string_view key;
    FactState_t state;
    bool isReference;
    uint64_t number;
    std::string_view string;  // of a text, in the structure
    std::string_view word;    // of a code
    uint16_t offset;
    uint16_t size;
};

// Its texts are views of the structure and of the standard's tables.
class ClValues {
  public:
    ClValues() = default;
    ClValues(const TableStructure_t& structure, const FactOptions_t& options) {
        ClFacts facts(structure, options);
        while (facts.Next()) Add(*facts);
    }
    void Clear() { m_values.clear(); }
    // Adds a fact, unless it is in a list.
    void Add(const Fact_t& fact) {
        if (fact.record < 0)
            m_values.push_back({fact.Key(), fact.state, fact.isReference, fact.number, fact.string,
                                fact.kind == FactKind_t::kCode ? fact.text : std::string_view(), fact.offset,
                                fact.size});
    }
    // Null if the structure doesn't have the fact.
    const Value_t* Find(std::string_view key) const {
        for (const Value_t& value : m_values)
            if (value.key == key) return &value;
        return nullptr;
    }
    // The number if it is a value.
    std::optional<uint64_t> Number(std::string_view key) const {
        const Value_t* value = Find(key);
        return value != nullptr && value->state == FactState_t::kValue ? std::optional(value->number) : std::nullopt;
    }
    // The text if it is a value, and otherwise nothing.
    std::string_view Text(std::string_view key) const {
        const Value_t* value = Find(key);
        return value != nullptr && value->state == FactState_t::kValue ? value->string : std::string_view();
    }

  private:
    std::vector<Value_t> m_values;
};
