// The lines of items, at all sizes that are copied or searched in different ways.
#include "Sources/Items.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

std::string LineOf(const Item_t& item) {
    std::string line(item.MostLineBytes() + 1, '#');
    const char* const end = item.PutLine(line.data());
    EXPECT_EQ(line.back(), '#');
    line.resize(static_cast<size_t>(end - line.data()));
    return line;
}

TEST(Items, LinesHaveNoQuotesFromValues) {
    for (size_t size = 0; size <= 40; size++) {
        for (size_t place = 0; place <= size; place++) {
            std::string key, value;
            for (size_t i = 0; i < size; i++) {
                key += static_cast<char>('a' + i % 26);
                value += i == place ? '"' : static_cast<char>(i % 2 == 0 ? 0x21 + i : 0xA3 - i);
            }
            std::string plain = value;
            std::erase(plain, '"');
            EXPECT_EQ(LineOf({key, value, {}}), '"' + key + "\", \"" + plain + '"') << size << ", " << place;
        }
    }
}

TEST(Items, LinesOfBlanksMarksAndNumbers) {
    EXPECT_EQ(LineOf({"key", " ", {}}), R"("key", "")");
    EXPECT_EQ(LineOf({"key", "  ", {}}), R"("key", "  ")");
    const ItemFacts_t first = {1, 0, 17, ItemKind_t::kTitle}, last = {0xFFFFFFFF, 0, 17, ItemKind_t::kTitle};
    EXPECT_EQ(LineOf({"Memory", "", first}), R"("Memory#GROUPNAME", "")");
    EXPECT_EQ(LineOf({"Memory", "", last}), R"("Memory_4294967295#GROUPNAME", "")");
    EXPECT_EQ(LineOf({"Group", "", last.As(ItemKind_t::kGroup)}), R"("Group#GROUPNAME", "")");
    EXPECT_EQ(LineOf({"Marked", "value", last.As(ItemKind_t::kMarkedItem)}), R"("Marked#GROUPNAME", "value")");
    EXPECT_EQ((Item_t{"Memory", "", last}.Title()), "Memory_4294967295");
}

}  // namespace
