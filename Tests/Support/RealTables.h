// Images of real machines, for tests that use them where they exist.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct RealTable_t {
    std::string name;
    std::vector<uint8_t> table;
    uint16_t version;
};

// Empty on machines without images.
const std::vector<RealTable_t>& RealTables();
