#include "Tests/Support/Enumerations.h"

#include <gtest/gtest.h>

void ExpectEnumeration(ClStructureBuilder structure, size_t offset, const std::string& key,
                       std::initializer_list<ListedText_t> listing,
                       const std::function<std::string(uint8_t)>& otherwise) {
    std::vector<std::string> expected(256);
    for (size_t value = 0; value < expected.size(); value++) expected[value] = otherwise(static_cast<uint8_t>(value));
    for (const ListedText_t& listed : listing) expected[listed.value] = listed.text;

    for (size_t value = 0; value < expected.size(); value++) {
        structure.Byte(offset, static_cast<uint8_t>(value));
        EXPECT_EQ(Decode(structure).Text(key), expected[value]) << key << ", value " << value;
    }
}

void ExpectEnumeration(ClStructureBuilder structure, size_t offset, const std::string& key,
                       std::initializer_list<ListedText_t> listing, const std::string& otherwise) {
    ExpectEnumeration(std::move(structure), offset, key, listing, [&](uint8_t) { return otherwise; });
}

std::vector<std::string> TextsOfRuns(const std::vector<Run_t>& runs, size_t count, const std::string& otherwise) {
    std::vector<std::string> texts(count, otherwise);
    for (const Run_t& run : runs)
        for (size_t place = 0; place < run.texts.size(); place++) texts.at(run.first + place) = run.texts[place];
    return texts;
}

void ExpectRuns(ClStructureBuilder structure, size_t offset, const std::string& key, const std::string& otherwise,
                const std::vector<Run_t>& runs) {
    const std::vector<std::string> expected = TextsOfRuns(runs, 256, otherwise);
    for (size_t value = 0; value < expected.size(); value++) {
        structure.Byte(offset, static_cast<uint8_t>(value));
        EXPECT_EQ(Decode(structure).Text(key), expected[value]) << key << ", value " << value;
    }
}
