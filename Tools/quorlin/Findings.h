// Findings for the commands that show them, and their columns for formats that read them.
#pragma once

#include <cstddef>
#include <string>

#include "Packages/Analysis/Findings.h"
#include "Tools/quorlin/Table.h"
#include "Tools/quorlin/Writer.h"

// What check knows of a table. It is valid as long as the table's bytes.
CheckedTable_t Checked(ClTable& table);
// "Memory Device (type 17), Memory Type", or as much of it as there is.
std::string SubjectOf(const FindingGroup_t& group);

inline constexpr Column_t kFindingColumns[] = {{"rule"},  {"severity"}, {"type"},    {"name"},   {"key"},
                                               {"what"},  {"count"},    {"handle"},  {"offset"}, {"size"},
                                               {"bytes"}, {"found"},    {"expected"}};
enum FindingColumn_t : size_t {
    kRuleColumn,
    kSeverityColumn,
    kTypeColumn,
    kNameColumn,
    kKeyColumn,
    kWhatColumn,
    kCountColumn,
    kHandleColumn,
    kOffsetColumn,
    kSizeColumn,
    kBytesColumn,
    kFoundColumn,
    kExpectedColumn,
};
