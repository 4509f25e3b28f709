#include "Tools/quorlin/Model.h"

#include <charconv>

namespace {

constexpr std::string_view kTypeMark = " {Type ";

// A title is "TEXT {Type N}", and from the second structure of the type on "TEXT {Type N}_I".
uint32_t InstanceOf(std::string_view title) {
    const size_t underscore = title.rfind("}_");
    uint32_t instance = 1;
    if (underscore != title.npos) std::from_chars(title.data() + underscore + 2, title.data() + title.size(), instance);
    return instance;
}

Item_t ItemOf(const ItemPair& pair) {
    Item_t item{pair.key.View(), pair.value.View(), false};
    if (item.key.ends_with(kGroupMark)) {
        item.key.remove_suffix(kGroupMark.size());
        // A group item of a setting carries a value and reads as an item.
        item.opensGroup = item.value.empty();
    }
    if (item.value == " ") item.value = {};
    return item;
}

}  // namespace

Item_t Structure_t::Item(size_t index) const { return ItemOf(items[index]); }

void VisitStructures(Quorlin& package, std::span<const uint8_t> types,
                     const std::function<void(const Structure_t& structure)>& visit) {
    for (const uint8_t type : types) {
        uint32_t count = 0;
        std::string title;
        package.VisitType(type, [&](const uint8_t* data, const ClItemList& items) {
            count++;
            if (items.Size() == 0) return;
            const auto handle = static_cast<uint16_t>(data[2] | data[3] << 8);
            Structure_t structure{type, handle, count, {}, title, items, 0};
            const Item_t first = ItemOf(items[0]);
            const size_t mark = first.opensGroup ? first.key.find(kTypeMark) : first.key.npos;
            if (mark != first.key.npos) {
                structure.instance = InstanceOf(first.key.substr(mark));
                structure.heading = first.key;
                structure.title = title = first.key.substr(0, mark);
                structure.firstItem = 1;
            }
            visit(structure);
        });
    }
}

bool ChooseTypes(const Usage_t& usage, std::span<const std::string> names, std::vector<uint8_t>* types, int* exitCode) {
    for (const std::string& name : names) {
        uint64_t type;
        if (!ParseNumber(name, 254, &type))
            return SayBadUsage(usage, "'" + name + "' is no structure type from 0 to 254", exitCode);
        types->push_back(static_cast<uint8_t>(type));
    }
    return true;
}

std::vector<uint8_t> SweptTypes() {
    std::vector<uint8_t> types;
    for (unsigned type = 0; type < Quorlin::kSweep; type++)
        if (Quorlin::IsSwept(static_cast<uint8_t>(type))) types.push_back(static_cast<uint8_t>(type));
    return types;
}

std::vector<uint8_t> AllTypes() {
    std::vector<uint8_t> types;
    for (unsigned type = 0; type < Quorlin::kSweep; type++) types.push_back(static_cast<uint8_t>(type));
    return types;
}
