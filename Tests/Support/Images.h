// Table images of invented machines, for tests that want many tables: of SMBIOS versions 2.3 to 3.7, with either entry
// point, small and large, sound and with the faults that firmware leaves. Always the same bytes.
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
