// The items of a table as structures and groups, one structure after the other.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Sources/Quorlin.h"
#include "Sources/SMBIOSType.h"
#include "Tools/quorlin/CommandLine.h"

// An item as it is shown: without the blanks at the end of its texts, which say nothing.
struct ShownItem_t {
    std::string_view key, value;
    bool opensGroup;  // the items after it, up to the next that opens one, are its group's; it has no value
};

// One structure: what its title says, and its items. One that has none of its own, as it has no decoder or one
// that leaves it out, has its bytes and strings as items: "Bytes", "String 1", "String 2".
struct Structure_t {
    uint8_t type;
    uint16_t handle;
    uint32_t instance;       // among the structures of its type, from 1
    std::string_view title;  // its text alone; that of the first structure for one that has no title of its own
    bool isUndecoded;
    const uint8_t* data;  // the record's body
    const ClItemList& items;
    size_t firstItem;  // after the title

    // Title, type and handle; empty for a structure that has no title of its own.
    std::string Heading() const;
    size_t EndItem() const { return items.Size(); }
    ShownItem_t Item(size_t index) const;
    // The bytes of an undecoded structure's formatted area.
    std::span<const uint8_t> Bytes() const { return {data, data[1]}; }
};

enum class Which_t { kAll, kFirstOfType };

// Decodes these types, in this order, and calls `visit` with each structure. What it gets lives for the length of the
// call: a table's items are never held all at once.
void VisitStructures(Quorlin& package, std::span<const uint8_t> types,
                     const std::function<void(const Structure_t& structure)>& visit, Which_t which = Which_t::kAll);

inline constexpr char kTypeHelp[] =
    "Only structures of these types: numbers, ranges and lists (0-3,17), or bios, system, baseboard, chassis, "
    "processor, memory, cache, connector, slot; may be given more than once";
// The digits alone.
std::string HexDigits(std::span<const uint8_t> bytes);
// Checks what --type was given. As ParseCommandLine when it is bad.
bool ChooseTypes(const Usage_t& usage, std::span<const std::string> names, std::vector<uint8_t>* types, int* exitCode);
// The types that a sweep takes, in its order.
std::vector<uint8_t> SweptTypes();
// All types, in rising order; without those that are decoded only when asked for, if `onDemand` is false.
std::vector<uint8_t> AllTypes(bool onDemand);
