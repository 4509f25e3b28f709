#include "Tools/quorlin/Writer.h"

void ClWriter::Structure(const Structure_t& structure) {
    std::string_view group;
    for (size_t index = structure.firstItem; index < structure.EndItem(); index++) {
        const ShownItem_t item = structure.Item(index);
        if (item.opensGroup)
            group = item.key;
        else
            Row({structure.type, structure.handle, structure.instance, structure.title, group, item.key, item.value});
    }
}

void ClWriter::Hits(const Structure_t& structure, std::span<const Hit_t> hits) {
    for (const Hit_t& hit : hits)
        Row({structure.type, structure.handle, structure.instance, structure.title, hit.group, hit.item.key,
             hit.item.value});
}

void ClWriter::Facts(const FactStructure_t& structure) {
    const TableStructure_t& bytes = structure.structure;
    const std::string_view name = structure.Name();
    std::string list;
    structure.ForEach([&](const ClFacts& facts, const Fact_t& fact) {
        if (fact.kind == FactKind_t::kList) list = fact.Key();
        std::string key(fact.Key());
        if (fact.record >= 0) key = list + "[" + std::to_string(fact.record) + "]." + key;
        const bool hasValue = fact.IsValue() && fact.kind != FactKind_t::kList;
        const std::string value = hasValue ? PlainValue(facts, fact) : std::string();
        const std::string raw = RawDigits(facts, fact);
        std::string from;
        for (uint32_t i = 0; i < fact.field->sources; i++)
            from.append(i == 0 ? "" : " ").append(facts.SourceKey(fact, i));
        const auto place = [&](uint64_t number) { return fact.size == 0 ? Cell_t() : Cell_t(number); };
        Row({bytes.Type(), bytes.Handle(), structure.instance, name, key, value, UnitName(fact.unit),
             StateName(fact.state), raw, place(fact.offset), place(fact.size), from});
    });
}
