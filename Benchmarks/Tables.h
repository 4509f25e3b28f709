// Tables for benchmarks: generated ones, and the images in the folder QUORLIN_BENCH_IMAGES.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "Packages/FERROXExternal/StructureStore/ImageFile.h"

// The files in QUORLIN_BENCH_IMAGES that are tables, by name. Empty if the variable isn't set.
inline std::vector<std::filesystem::path> Images() {
    std::vector<std::filesystem::path> images;
    const char* folder = std::getenv("QUORLIN_BENCH_IMAGES");
    if (folder == nullptr) return images;
    Image_t image;
    std::string error;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.is_regular_file() && ReadImage(entry.path().string(), TableForm_t::kAny, &image, &error) == kSuccess)
            images.push_back(entry.path());
    std::ranges::sort(images);
    return images;
}

// Small structures, with the types 3 to 41 in turn.
inline std::vector<uint8_t> SmallStructures(int64_t count) {
    std::vector<uint8_t> table;
    for (int64_t place = 0; place < count; place++) {
        const auto type = static_cast<uint8_t>(3 + place % 39), low = static_cast<uint8_t>(place & 0xFF),
                   high = static_cast<uint8_t>(place >> 8);
        for (const uint8_t byte : {type, uint8_t{8}, low, high, uint8_t{1}, uint8_t{0}, uint8_t{0}, uint8_t{0},
                                   uint8_t{'a'}, uint8_t{0}, uint8_t{0}})
            table.push_back(byte);
    }
    return table;
}
