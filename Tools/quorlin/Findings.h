// The columns of findings, for the command that writes them and for formats that read them.
#pragma once

#include <cstddef>

#include "Tools/quorlin/Writer.h"

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
