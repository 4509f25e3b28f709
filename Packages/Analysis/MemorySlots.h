// The slots of a table's memory: what is in them, and which processors and channels they belong to.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Packages/Standard/Facts.h"

// Where a slot is, as its locators name it. What they don't name is empty.
struct SlotPlace_t {
    std::string owner;    // a processor, node, controller, board or card: "CPU0", "P1", "Node1, MemCard1"
    std::string channel;  // "A" or "0"
    bool operator==(const SlotPlace_t&) const = default;
};
SlotPlace_t PlaceOfSlot(std::string_view locator, std::string_view bank);

enum class MemorySlotState_t : uint8_t {
    kInstalled,
    kEmpty,
    kMismatched,  // not like most others of its array
    kDisabled,    // a part is named but no size, or its speed isn't configured as that of others is
    kError,       // an error is recorded for it, or its size isn't known
};

struct MemorySlot_t {
    TableStructure_t structure;
    uint16_t array;
    SlotPlace_t place;
    MemorySlotState_t state;
    bool otherSize, otherType, otherSpeed, otherPart;  // of kMismatched
    bool sharesBank;                                   // with some slots of the array, but not with all
    // What isn't known is empty.
    std::string locator, bank, type, manufacturer, part;
    std::optional<uint64_t> size, speed;  // in bytes; in million transfers a second, as configured or else as rated
};

struct MemoryArray_t {
    TableStructure_t structure;
    std::string use, location;
    std::optional<uint64_t> capacity;
    std::vector<MemorySlot_t> slots;  // in the order of the table

    uint64_t Installed() const;
};

// The arrays in the order of the table, those without slots too. Slots whose array isn't there are in a last one, whose
// structure is that of the first slot. A table from before 2.1 has none.
std::vector<MemoryArray_t> MemoryArraysOf(std::span<const uint8_t> table, const FactOptions_t& options);
