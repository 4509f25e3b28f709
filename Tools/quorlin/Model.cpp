#include "Tools/quorlin/Model.h"

#include <algorithm>
#include <cctype>

#include "Sources/Types.h"
#include "Tools/quorlin/Text.h"

namespace {

// Titles are "TEXT {Type N}".
std::string_view TitleText(std::string_view title) { return title.substr(0, title.rfind(" {Type ")); }

std::string HexOf(std::span<const uint8_t> bytes, std::string_view separator) {
    std::string text;
    for (const uint8_t byte : bytes) {
        constexpr char kDigits[] = "0123456789ABCDEF";
        if (!text.empty()) text += separator;
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

// The items of a structure that has none of its own.
void AddBytesAndStrings(const Structure_t& structure, ClItemList& items) {
    const ItemFacts_t facts{structure.instance, structure.handle, structure.type};
    items.Add("Bytes", HexOf(structure.Bytes(), " "), facts);
    ClStringWalk strings(structure.data);
    if (strings.IsEmpty()) return;
    // A structure names its strings by a byte, so that it has no more.
    for (uint32_t number = 1; number <= 255; number++) {
        const char* text = strings.Next();
        if (text == nullptr) break;
        items.Add("String " + std::to_string(number), std::string_view(text), facts);
    }
}

struct TypeWord_t {
    std::string_view word;
    std::initializer_list<uint8_t> types;
};
// The words of the field's table printers.
const TypeWord_t kTypeWords[] = {
    {"bios",      {0, 13}            },
    {"system",    {1, 12, 15, 23, 32}},
    {"baseboard", {2, 10, 41}        },
    {"chassis",   {3}                },
    {"processor", {4}                },
    {"memory",    {5, 6, 16, 17}     },
    {"cache",     {7}                },
    {"connector", {8}                },
    {"slot",      {9}                },
};

// One part of a list: a word, a number, or a range of two.
bool AddTypes(std::string_view part, std::vector<uint8_t>* types) {
    const auto add = [types](uint64_t type) {
        if (std::ranges::find(*types, type) == types->end()) types->push_back(static_cast<uint8_t>(type));
    };
    for (const TypeWord_t& known : kTypeWords) {
        if (!EqualsIgnoringCase(part, known.word)) continue;
        for (const uint8_t type : known.types) add(type);
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

std::string Structure_t::Heading() const {
    std::string heading;
    if (isUndecoded) {
        heading.append(title).append(" {Type ").append(std::to_string(type)).append("}");
        if (instance > 1) heading.append("_").append(std::to_string(instance));
    } else if (firstItem != 0) {
        heading = items[0].Title();
    } else {
        return heading;
    }
    return heading.append(", handle ").append(HandleText(handle));
}

ShownItem_t Structure_t::Item(size_t index) const {
    const Item_t& item = items[index];
    return {Trimmed(item.key), Trimmed(item.value), item.facts.kind == ItemKind_t::kGroup};
}

void VisitStructures(Quorlin& package, std::span<const uint8_t> types,
                     const std::function<void(const Structure_t& structure)>& visit, Which_t which) {
    uint32_t count = 0, lastType = 256;
    std::string title;
    ClItemList rawItems;
    package.VisitTypes(types, [&](const uint8_t* data, const ClItemList& items) {
        const uint8_t type = data[0];
        if (type != lastType) {
            lastType = type;
            count = 0;
            title.clear();
        }
        count++;
        const auto handle = static_cast<uint16_t>(data[2] | data[3] << 8);
        if (items.Size() == 0) {
            const Structure_t structure{type, handle, count, NameOfType(type), true, data, rawItems, 0};
            rawItems.Clear();
            AddBytesAndStrings(structure, rawItems);
            visit(structure);
            return which == Which_t::kAll;
        }
        const bool hasTitle = items[0].facts.kind == ItemKind_t::kTitle;
        if (hasTitle) title = TitleText(items[0].key);
        visit({type, handle, count, title, false, data, items, hasTitle ? 1u : 0u});
        return which == Which_t::kAll;
    });
}

std::string HexDigits(std::span<const uint8_t> bytes) { return HexOf(bytes, ""); }

bool ChooseTypes(const Usage_t& usage, std::span<const std::string> names, std::vector<uint8_t>* types, int* exitCode) {
    for (const std::string& name : names) {
        std::string_view rest = name;
        for (bool isLast = false; !isLast;) {
            const size_t comma = std::min(rest.find(','), rest.size());
            if (!AddTypes(rest.substr(0, comma), types))
                return SayBadUsage(usage,
                                   "'" + name +
                                       "' is no structure type from 0 to 255, no range or list of them, "
                                       "and no word for some",
                                   exitCode);
            isLast = comma == rest.size();
            rest.remove_prefix(std::min(comma + 1, rest.size()));
        }
    }
    return true;
}

std::vector<uint8_t> SweptTypes() {
    std::vector<uint8_t> types;
    for (const TypeRow_t& row : TypeRows())
        if (row.sweep == Sweep_t::kSwept) types.push_back(row.type);
    return types;
}

std::vector<uint8_t> AllTypes(bool onDemand) {
    std::vector<uint8_t> types;
    for (unsigned type = 0; type < 256; type++)
        if (onDemand || !IsOnDemand(static_cast<uint8_t>(type))) types.push_back(static_cast<uint8_t>(type));
    return types;
}
