// A table of the C interface, for facts and for analysis.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "CInterface/quorlin_c.h"
#include "Packages/FERROXExternal/StructureStore/ImageFile.h"
#include "Packages/Standard/Facts.h"

struct quorlin_fact_table {
    Image_t image;  // of this machine too, whose bytes are copied here
    std::string form, remark;
    std::vector<quorlin_structure> structures;
    std::optional<ClHandles> handles;
};

inline std::span<const uint8_t> BytesOf(const quorlin_fact_table& table) {
    return {table.image.source.table, table.image.source.length};
}

// As 0304h for 3.4.
inline uint16_t VersionOf(const quorlin_fact_table& table) {
    return static_cast<uint16_t>(table.image.source.major << 8 | table.image.source.minor);
}
