// The page of quorlin report: one HTML file that needs nothing else.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "Packages/Analysis/Check.h"
#include "Packages/FERROXExternal/FERROXLib/RecordedHardware.h"

// A table with a name.
struct NamedTable_t {
    std::span<const uint8_t> bytes;
    uint16_t version = 0x0300;  // as 0304h for 3.4
    std::string name;
};

struct Report_t {
    NamedTable_t table;
    CheckedTable_t checked;  // the same table
    bool isRedacted = false;
    const RecordedHardware_t* hardware = nullptr;  // of the table's machine; null for a table alone
    const NamedTable_t* base = nullptr;            // what the table is compared with; null for nothing
};

std::string MakeReport(const Report_t& report);
