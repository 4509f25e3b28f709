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

void ExpectBytes(const ClStructureBuilder& structure, std::span<const Reading_t> readings) {
    for (const auto& [offset, value, key, text] : readings)
        EXPECT_EQ(Decode(ClStructureBuilder(structure).Byte(offset, static_cast<uint8_t>(value))).Text(key), text)
            << key << " of " << value;
}

void ExpectWords(const ClStructureBuilder& structure, std::span<const Reading_t> readings) {
    for (const auto& [offset, value, key, text] : readings)
        EXPECT_EQ(Decode(ClStructureBuilder(structure).Word(offset, static_cast<uint16_t>(value))).Text(key), text)
            << key << " of " << value;
}

void ExpectEnumeration(ClStructureBuilder structure, size_t offset, const std::string& key,
                       const std::string& otherwise, const Stretch_t& stretch, const Stretch_t& second,
                       const Stretch_t& third, const Stretch_t& fourth) {
    for (uint32_t value = 0; value < 256; value++) {
        std::string expected = otherwise;
        bool isInside = false;
        for (const Stretch_t* part : {&stretch, &second, &third, &fourth}) {
            const uint8_t last = part->lastText == nullptr ? part->first : part->last;
            if (part->firstText == nullptr || value < part->first || value > last) continue;
            isInside = value != part->first && value != last;
            expected = value == part->first ? part->firstText : part->lastText;
        }
        if (isInside) continue;
        const std::string text = Decode(structure.Byte(offset, static_cast<uint8_t>(value))).Text(key);
        EXPECT_EQ(text, expected) << key << " of " << value;
    }
}
