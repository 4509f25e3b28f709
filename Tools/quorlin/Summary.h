// What a machine is, from the facts of its table.
#pragma once

#include <compare>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Packages/Standard/Facts.h"

// What isn't known, and what is a filler, is an empty text or none. Numbers are in the units of facts.
using Known_t = std::optional<uint64_t>;

struct Product_t {
    std::string manufacturer, name, version, serialNumber, assetTag;
    std::optional<FactState_t> serialNumberState;  // none if there is no such structure
};

struct System_t {
    Product_t product;
    std::string uuid, skuNumber, family;
    std::optional<FactState_t> uuidState;
};

struct Chassis_t {
    Product_t product;
    std::string type;
    Known_t height;
};

struct Firmware_t {
    std::string vendor, version, date, release;
    Known_t romSize;
    bool isUefi = false, isVirtualMachine = false;
};

struct Processor_t {
    std::string name, manufacturer, family;
    Known_t cores, coresEnabled, threads, speed, maximumSpeed;
    auto operator<=>(const Processor_t&) const = default;
};

struct Cache_t {
    uint64_t level;
    std::string kind;  // "Data" or "Instruction"; empty for both
    uint64_t size;
    auto operator<=>(const Cache_t&) const = default;
};

struct Module_t {
    Known_t size;
    std::string type, formFactor, manufacturer, partNumber;
    Known_t speed, configuredSpeed;
    auto operator<=>(const Module_t&) const = default;
};

struct Slot_t {
    std::string type, width;
    auto operator<=>(const Slot_t&) const = default;
};

// Equal things, and how many there are. Deques, as a table may have very many.
template <class Kind>
struct Group_t {
    Kind kind;
    uint64_t count = 0, used = 0, free = 0;
};
template <class Kind>
using Groups_t = std::deque<Group_t<Kind>>;

// A socket for a processor or a slot for a module.
struct Place_t {
    static constexpr uint32_t kEmpty = ~0u;

    uint16_t handle;
    uint32_t group = kEmpty;      // of what is in it
    std::string_view name, bank;  // as on the board: bytes of the table, for WithSingleBlanks
};
using Places_t = std::deque<Place_t>;
// Without blanks around a text, and with single ones inside.
std::string WithSingleBlanks(std::string_view text);

struct Summary_t {
    System_t system;
    Chassis_t chassis;
    Product_t board;
    Firmware_t firmware;
    Places_t sockets;
    Groups_t<Processor_t> processors;
    Groups_t<Cache_t> caches;
    Places_t memorySlots;
    Known_t memoryInstalled, memoryMaximum;
    std::string errorCorrection;
    Groups_t<Module_t> modules;
    Groups_t<Slot_t> slots;
};

// Has views of the table, which must outlive it.
Summary_t SummaryOf(std::span<const uint8_t> table, const FactOptions_t& options);

// Its parts as lines for people; a part of which nothing is known has none.
struct SummarySection_t {
    std::string_view name;
    std::vector<std::string> lines;
};
std::vector<SummarySection_t> SectionsOf(const Summary_t& summary);

// The sum over all groups of count, used or free.
template <class Kind>
uint64_t Sum(const Groups_t<Kind>& groups, uint64_t Group_t<Kind>::*what) {
    uint64_t sum = 0;
    for (const Group_t<Kind>& group : groups) sum += group.*what;
    return sum;
}
// The sum over all things of a number of theirs; none if one of them doesn't have it, or if it is too large.
template <class Kind>
Known_t Total(const Groups_t<Kind>& groups, Known_t Kind::*what) {
    uint64_t sum = 0;
    for (const Group_t<Kind>& group : groups) {
        const Known_t number = group.kind.*what;
        if (!number || *number > (UINT64_MAX - sum) / group.count) return std::nullopt;
        sum += *number * group.count;
    }
    return groups.empty() ? std::nullopt : Known_t(sum);
}
