// Finds structures after a damaged one.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

struct Recovered_t {
    struct Skipped_t {
        uint32_t offset, size;
    };
    std::vector<uint8_t> table;  // the plausible structures, one after the other
    std::vector<Skipped_t> skipped;

    // Which bytes were skipped, for people; empty if none.
    std::string Remark() const;
};

// Walks a table. If a structure isn't plausible (its Length is below a header's or below what its type needs, or no
// double NUL ends it), skips to the next place where two plausible structures follow each other, or one ends the table.
Recovered_t RecoverTable(std::span<const uint8_t> table);
