// The items of a table as structures and groups, one structure after the other.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "Sources/Quorlin.h"
#include "Sources/SMBIOSType.h"
#include "Tools/quorlin/Text.h"

// An item as it is shown: without the blanks at the end of its texts.
struct ShownItem_t {
    std::string_view key, value;
    bool opensGroup;  // the items after it, up to the next that opens one, are its group's; it has no value
};

// One structure: the text of its title, and its items. A structure without items of its own, because it has no decoder
// or its decoder leaves it out, has its bytes and strings as items: "Bytes", "String 1", "String 2".
struct Structure_t {
    uint8_t type;
    uint16_t handle;
    uint32_t instance;       // among the structures of its type, from 1
    std::string_view title;  // its text alone; a structure without a title has that of its type's first structure
    bool isUndecoded;
    const uint8_t* data;  // the record's body
    const ClItemList& items;
    size_t firstItem;  // after the title

    // Title, type and handle; empty for a structure without a title.
    std::string Heading() const;
    size_t EndItem() const { return items.Size(); }
    ShownItem_t Item(size_t index) const {
        const Item_t& item = items[index];
        return {Trimmed(item.key), Trimmed(item.value), item.facts.kind == ItemKind_t::kGroup};
    }
    // The bytes of an undecoded structure's formatted area.
    std::span<const uint8_t> Bytes() const { return {data, data[1]}; }
};

enum class Which_t { kAll, kDecoded };

// Decodes these types, in this order, and calls `visit` with each structure. A table's items are never in memory all at
// once: a structure lives for the length of the call. `visit` returns whether to go on with structures of its type.
void VisitStructures(Quorlin& package, std::span<const uint8_t> types,
                     const std::function<bool(const Structure_t& structure)>& visit, Which_t which = Which_t::kAll);
