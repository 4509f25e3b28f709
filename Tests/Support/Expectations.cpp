#include "Tests/Support/Expectations.h"

#include <gtest/gtest.h>

void ExpectItems(const ClStructureBuilder& structure, const std::string& title, const std::string& lines) {
    const std::vector<uint8_t> image = structure.Image();
    EXPECT_EQ(Decode(structure).Lines(), title + "#GROUPNAME=\nType=" + std::to_string(image[0]) +
                                             "\nLength=" + std::to_string(image[1]) +
                                             "\nHandle=" + std::to_string(image[2] | image[3] << 8) + "\n" + lines);
}

void ExpectTexts(const ClItems& items, std::span<const KeyText_t> texts) {
    for (const auto& [key, text] : texts) EXPECT_EQ(items.Text(key), text) << key;
}
