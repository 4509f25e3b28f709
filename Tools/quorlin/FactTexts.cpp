#include "Tools/quorlin/FactTexts.h"

#include <algorithm>

#include "Tools/quorlin/CommandLine.h"

namespace {

bool IsWanted(std::span<const std::string> keys, std::string_view key) {
    return keys.empty() || std::ranges::find(keys, key) != keys.end();
}

}  // namespace

void FactStructure_t::ForEach(const std::function<void(const ClFacts&, const Fact_t&)>& take) const {
    ClFacts facts(structure, options);
    bool isInWantedList = false;
    while (facts.Next()) {
        const Fact_t& fact = *facts;
        bool isWanted = IsWanted(choice.keys, fact.Key());
        if (fact.kind == FactKind_t::kList) {
            isInWantedList = isWanted;
            // A list is shown for the sake of a fact in it.
            for (const StandardField_t& field : facts.Type().RecordFields(*fact.field))
                isWanted |= IsWanted(choice.keys, facts.Type().Text(field.key));
        } else if (fact.record >= 0) {
            isWanted |= isInWantedList;
        }
        if (isWanted) take(facts, fact);
    }
}

void CheckFactKeys(const std::vector<std::string>& keys) {
    for (const std::string& key : keys)
        if (!IsFactKey(key)) throw BadUsage_t{"unknown key '" + key + "'; try quorlin facts --sample --format csv"};
}
