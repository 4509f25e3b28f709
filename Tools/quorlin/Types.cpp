#include "Tools/quorlin/Types.h"

#include <algorithm>
#include <numeric>

#include "Sources/Quorlin.h"
#include "Sources/Types.h"
#include "Tools/quorlin/Text.h"

namespace {

// The words that table printers have for types, each with its types.
constexpr Choice_t kWords[] = {{"bios"},   {"system"}, {"baseboard"}, {"chassis"}, {"processor"},
                               {"memory"}, {"cache"},  {"connector"}, {"slot"}};
struct TypesOfWord_t {
    uint8_t count;
    uint8_t types[5];
};
constexpr TypesOfWord_t kTypesOfWords[] = {
    {2, {0, 13}            },
    {5, {1, 12, 15, 23, 32}},
    {3, {2, 10, 41}        },
    {1, {3}                },
    {1, {4}                },
    {4, {5, 6, 16, 17}     },
    {1, {7}                },
    {1, {8}                },
    {1, {9}                },
};
static_assert(std::size(kWords) == std::size(kTypesOfWords));

// One part of a list: a word, a number, or a range of two.
bool AddTypes(std::string_view part, std::vector<uint8_t>* types) {
    const auto add = [types](uint64_t type) {
        if (std::ranges::find(*types, type) == types->end()) types->push_back(static_cast<uint8_t>(type));
    };
    for (size_t place = 0; place < std::size(kWords); place++) {
        if (!EqualsIgnoringCase(part, kWords[place].word)) continue;
        const TypesOfWord_t& row = kTypesOfWords[place];
        for (const uint8_t type : std::span(row.types, row.count)) add(type);
        return true;
    }
    const size_t dash = std::min(part.find('-'), part.size());
    uint64_t first, last;
    if (!ParseNumber(part.substr(0, dash), 255, &first)) return false;
    last = first;
    if (dash != part.size() && (!ParseNumber(part.substr(dash + 1), 255, &last) || last < first)) return false;
    for (uint64_t type = first; type <= last; type++) add(type);
    return true;
}

}  // namespace

Option_t TypeOption(std::vector<std::string>* names) {
    return {.name = "--type",
            .typeName = "TYPES",
            .help =
                "Only structures of these types: numbers, ranges and lists (0-3,17), or bios, system, baseboard, "
                "chassis, processor, memory, cache, connector, slot; may be given more than once",
            .target = names,
            .letter = 't',
            .choices = kWords,
            .takesOthers = true};
}

Choices_t TypeWords() { return kWords; }

std::vector<uint8_t> TypesByName(std::span<const std::string> names) {
    std::vector<uint8_t> types;
    for (const std::string& name : names) {
        std::string_view rest = name;
        for (bool isLast = false; !isLast;) {
            const size_t comma = std::min(rest.find(','), rest.size());
            if (!AddTypes(rest.substr(0, comma), &types))
                throw BadUsage_t{"unknown structure type '" + name +
                                 "'; use numbers from 0 to 255, ranges and lists "
                                 "(0-3,17), or words such as memory"};
            isLast = comma == rest.size();
            rest.remove_prefix(std::min(comma + 1, rest.size()));
        }
    }
    return types;
}

std::vector<uint8_t> SweptTypes() {
    std::vector<uint8_t> types;
    for (const TypeRow_t& row : TypeRows())
        if (row.sweep == Sweep_t::kSwept) types.push_back(row.type);
    return types;
}

std::vector<uint8_t> AllTypes(bool onDemand) {
    std::vector<uint8_t> types(256);
    std::iota(types.begin(), types.end(), uint8_t{0});
    for (const TypeRow_t& row : TypeRows())
        if (row.sweep == Sweep_t::kOnDemand && !onDemand) std::erase(types, row.type);
    return types;
}
