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

// An item of a structure.
struct Item_t {
    std::string_view key, value;
    bool opensGroup;  // the items behind it, up to the next that opens one, are its group's; it has no value
};

// One structure: what its title stands for, and the items behind it.
struct Structure_t {
    uint8_t type;
    uint16_t handle;
    uint32_t instance;         // among the structures of its type, from 1
    std::string_view heading;  // the title as decoded: "TEXT {Type N}", "TEXT {Type N}_2"; empty where there is none
    std::string_view title;    // TEXT alone
    const ClItemList& items;
    size_t firstItem;  // behind the title

    size_t EndItem() const { return items.Size(); }
    Item_t Item(size_t index) const;
};

// Decodes these types, in this order, and calls `visit` with each structure that has items. What it gets lives for the
// length of the call: a table's items are never held all at once.
void VisitStructures(Quorlin& package, std::span<const uint8_t> types,
                     const std::function<void(const Structure_t& structure)>& visit);

// Checks what --type was given. As ParseCommandLine when it is bad.
bool ChooseTypes(const Usage_t& usage, std::span<const std::string> names, std::vector<uint8_t>* types, int* exitCode);
// The types that a sweep takes, in its order.
std::vector<uint8_t> SweptTypes();
// All types that have a decoder's items to give: those of a sweep, and those that are decoded on demand.
std::vector<uint8_t> AllTypes();
