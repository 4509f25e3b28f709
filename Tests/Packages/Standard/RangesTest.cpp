// A fact depends on the bytes in its range and on nothing else. Changes each byte of many structures to see that.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "Packages/Sample/Sample.h"
#include "Packages/Standard/Facts.h"
#include "Tests/Support/Structures.h"

namespace {

// A fact as it was at one time.
struct Seen_t {
    FactState_t state;
    uint64_t number;
    std::string text;
    std::string raw;
    uint32_t begin, end;              // its bytes in the formatted area
    uint32_t stringBegin, stringEnd;  // and in the strings
    bool isSelector;                  // it decides how others read
    std::vector<std::string> from;

    bool Covers(uint32_t place) const {
        return (place >= begin && place < end) || (place >= stringBegin && place < stringEnd);
    }
    bool Says(const Seen_t& other) const {
        return state == other.state && number == other.number && text == other.text && raw == other.raw;
    }
};

using Facts_t = std::map<std::string, Seen_t>;

Facts_t FactsOf(const std::vector<uint8_t>& bytes) {
    const TableStructure_t structure = {bytes.data(), static_cast<uint32_t>(bytes.size())};
    const uint32_t formatted = std::min<uint32_t>(structure.Length(), structure.size);
    ClFacts facts(structure, {.version = 0x0309});
    Facts_t all;
    std::string list;
    while (facts.Next()) {
        const Fact_t& fact = *facts;
        if (fact.kind == FactKind_t::kList) list = fact.Key();
        const auto path = [&](std::string_view key) {
            return fact.record < 0 ? std::string(key)
                                   : list + "[" + std::to_string(fact.record) + "]." + std::string(key);
        };
        Seen_t seen = {};
        seen.state = fact.state;
        seen.number = fact.number;
        seen.text = fact.text;
        for (const uint8_t byte : facts.Bytes(fact)) seen.raw += static_cast<char>(byte);
        seen.raw += fact.string;
        seen.begin = fact.offset;
        seen.end = fact.offset + fact.size;
        if (!fact.string.empty()) {
            seen.stringBegin =
                static_cast<uint32_t>(reinterpret_cast<const uint8_t*>(fact.string.data()) - bytes.data());
            seen.stringEnd = seen.stringBegin + static_cast<uint32_t>(fact.string.size());
        }
        // The records of a broken list may begin with their length.
        seen.isSelector = fact.field->form == Form_t::kCount || fact.field->form == Form_t::kStep ||
                          (fact.kind == FactKind_t::kList && fact.state == FactState_t::kBroken);
        for (uint32_t i = 0; i < fact.field->sources; i++) seen.from.push_back(path(facts.SourceKey(fact, i)));
        EXPECT_LE(seen.end, formatted) << fact.Key() << " leaves the structure";
        EXPECT_LE(seen.stringEnd, bytes.size()) << fact.Key();
        EXPECT_TRUE(all.emplace(path(fact.Key()), seen).second) << "two facts have the key " << path(fact.Key());
    }
    return all;
}

// Changes each byte that may be changed alone, and compares.
void ExpectRanges(std::vector<uint8_t> bytes, std::mt19937& random) {
    const uint32_t formatted = std::min<uint32_t>(bytes[1], static_cast<uint32_t>(bytes.size()));
    const Facts_t before = FactsOf(bytes);
    for (uint32_t place = kHeaderSize; place < bytes.size(); place++) {
        const bool isSelector = std::ranges::any_of(
            before, [=](const auto& entry) { return entry.second.isSelector && entry.second.Covers(place); });
        if (isSelector || (place >= formatted && bytes[place] == 0)) continue;
        const uint8_t old = bytes[place];
        auto changed = static_cast<uint8_t>(old ^ (1 + random() % 255));
        if (place >= formatted && changed == 0) changed = old == 1 ? 2 : 1;
        bytes[place] = changed;
        const Facts_t after = FactsOf(bytes);
        bytes[place] = old;
        ASSERT_EQ(before.size(), after.size()) << "place " << place;
        for (const auto& [key, fact] : before) {
            const auto found = after.find(key);
            ASSERT_NE(found, after.end()) << key << " goes with the byte at " << place;
            const Seen_t& other = found->second;
            if (fact.Covers(place)) {
                EXPECT_NE(fact.raw, other.raw) << key << " has the byte at " << place;
            } else if (!fact.Says(other)) {
                EXPECT_TRUE(std::ranges::any_of(fact.from,
                                                [&](const std::string& source) {
                                                    return before.contains(source) && before.at(source).Covers(place);
                                                }))
                    << key << " changes with the byte at " << place;
            }
        }
        if (::testing::Test::HasFailure()) return;
    }
}

TEST(Ranges, OfTheSample) {
    std::mt19937 random(1);
    for (const TableStructure_t& structure : ClWalk(SampleTable())) {
        SCOPED_TRACE("type " + std::to_string(structure.Type()) + ", handle " + std::to_string(structure.Handle()));
        ExpectRanges({structure.data, structure.data + structure.size}, random);
        if (HasFailure()) return;
    }
}

// Structures of all types and lengths, with random bytes, often small ones, as those make short lists.
TEST(Ranges, OfStructuresOfAllLengths) {
    std::mt19937 random(2);
    for (unsigned type = 0; type < 134; type++) {
        for (uint8_t length = 4; length < 108; length++) {
            std::vector<uint8_t> bytes(length);
            for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random() % 3 == 0 ? random() : random() % 6);
            bytes[0] = static_cast<uint8_t>(type);
            bytes[1] = length;
            for (auto strings = random() % 4; strings > 0; strings--) {
                for (auto size = 1 + random() % 5; size > 0; size--)
                    bytes.push_back(static_cast<uint8_t>('0' + random() % 40));
                bytes.push_back(0);
            }
            bytes.push_back(0);
            if (bytes.size() == length + 1u) bytes.push_back(0);
            SCOPED_TRACE("type " + std::to_string(type) + ", length " + std::to_string(length));
            if (type > 46 && type < 126) continue;
            ExpectRanges(bytes, random);
            if (HasFailure()) return;
        }
    }
}

// Garbage of all sizes: only its walk counts.
TEST(Ranges, OfStructuresThatTheTableCutsOff) {
    std::mt19937 random(3);
    for (int round = 0; round < 20000; round++) {
        std::vector<uint8_t> bytes(kHeaderSize + random() % 40);
        for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random() % 2 == 0 ? random() : random() % 4);
        bytes[0] = static_cast<uint8_t>(random() % 48);
        FactsOf(bytes);
        if (HasFailure()) return;
    }
}

}  // namespace
