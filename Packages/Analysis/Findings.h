// Findings on a table as people want them: chosen by rules, and repeated ones as one group.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Packages/Analysis/Check.h"

// Which findings are wanted. What comes last in `settings` decides.
struct RuleChoice_t {
    struct Setting_t {
        bool isOn;
        std::string rule;   // an id; empty for all
        int type = -1;      // of the structure; -1 for all
        std::string maker;  // a part of the table's vendor or manufacturer, in any case; empty for all
    };
    Severity_t least = Severity_t::kNote;
    std::vector<Setting_t> settings;

    // Adds a line of a profile: "on" or "off", an id or "all", and perhaps "type N" or "maker TEXT". A line that begins
    // with # says nothing. Returns what is wrong with the line; empty if it is right.
    std::string AddLine(std::string_view line);
    bool Wants(RuleId_t rule, int type, std::string_view makers) const;
};

// Returns the rule with this id, or false.
bool FindRule(std::string_view id, RuleId_t* rule);

struct FindingPlace_t {
    uint16_t handle;
    uint32_t offset;    // of the bytes in the table
    uint32_t size;      // 0 for the structure as a whole
    std::string bytes;  // in hexadecimal, the first ones if there are many
    std::string found;
    std::string expected;
};

// The findings by one rule on one fact of one structure type.
struct FindingGroup_t {
    RuleId_t rule;
    int type;               // -1 for the table as a whole
    std::string_view key;   // of the fact; empty for the structure as a whole
    std::string_view name;  // of the fact
    uint64_t count;
    std::vector<FindingPlace_t> places;  // the first ones
};

inline constexpr size_t kMostPlaces = 256;
inline constexpr size_t kMostBytes = 64;              // of a place
inline constexpr size_t kMostFoundBytes = 16u << 10;  // of `found`; a longer text ends with how many bytes are left out

// Checks a table. The groups are in the order of their first findings, errors before warnings before notes.
std::vector<FindingGroup_t> FindGroups(const CheckedTable_t& table, const RuleChoice_t& choice);
