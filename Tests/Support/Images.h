// Images of parts of the sample, for tests that need many tables: SMBIOS versions 2.3 to 3.7, both entry points, sound
// and with typical faults of firmware.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

inline constexpr size_t kImageTableOffset = 32;  // of the table in every image

struct TableImage_t {
    std::string name;
    std::vector<uint8_t> bytes;  // a dump: an entry point, zeros up to kImageTableOffset, the table
};

std::vector<TableImage_t> GeneratedImages();
