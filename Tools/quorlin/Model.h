// The items of a table as structures and groups. Nothing is copied: the package owns the items.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Sources/Quorlin.h"
#include "Sources/SMBIOSType.h"
#include "Tools/quorlin/CommandLine.h"

// One structure: what its title stands for, and which items are its own.
struct Structure_t {
    uint8_t type;
    uint16_t handle;
    uint32_t instance;         // among the structures of its type, from 1
    std::string_view heading;  // the title as decoded: "TEXT {Type N}", "TEXT {Type N}_2"; empty where there is none
    std::string_view title;    // TEXT alone
    uint32_t firstItem, endItem;
};

// An item of a structure.
struct Item_t {
    std::string_view key, value;
    bool opensGroup;  // the items behind it, up to the next that opens one, are its group's; it has no value
};

class ClModel {
  public:
    // Decodes these types, in this order. The model holds until the package is uninitialised.
    ClModel(Quorlin& package, std::span<const uint8_t> types);

    std::span<const Structure_t> Structures() const { return m_structures; }
    Item_t Item(uint32_t index) const;

  private:
    void AddType(uint8_t type);

    Quorlin& m_package;
    std::vector<Structure_t> m_structures;
};

// Checks what --type was given. As ParseCommandLine when it is bad.
bool ChooseTypes(const Usage_t& usage, std::span<const std::string> names, std::vector<uint8_t>* types, int* exitCode);
// The types that a sweep takes, in its order.
std::vector<uint8_t> SweptTypes();
// All types that have a decoder's items to give: those of a sweep, and those that are decoded on demand.
std::vector<uint8_t> AllTypes();
