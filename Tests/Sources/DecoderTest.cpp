// Decoders without a package: their items one by one, and null structures.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Sources/SMBIOSType.h"
#include "Tests/Support/Structures.h"

namespace {

// Every item's key, read through the decoder's own cursor.
std::vector<std::string> Keys(ClSMBIOSType& decoder) {
    std::vector<std::string> keys;
    for (ItemPair item; decoder.GetNextItem(&item) == kSuccess;) keys.push_back(item.key);
    return keys;
}

}  // namespace

TEST(Decoder, ReturnsEachItemOnce) {
    const std::unique_ptr<ClSMBIOSType> made(NewDecoder(3, {}));
    ClSMBIOSType& decoder = *made;
    ItemPair item;
    EXPECT_EQ(decoder.GetNextItem(&item), kFailure);
    const auto first = ClStructureBuilder(3, 13).Strings({"Maker"}).Byte(4, 1).Image();
    const auto second = ClStructureBuilder(3, 13).Image();
    decoder.PrintStructure(first.data());
    EXPECT_EQ(decoder.GetNextItem(nullptr), kBadValue);
    ASSERT_EQ(decoder.GetNextItem(&item), kSuccess);
    EXPECT_EQ(item.key, "System Enclosure or Chassis Types {Type 3}#GROUPNAME");
    EXPECT_EQ(Keys(decoder).front(), "Type");
    EXPECT_EQ(decoder.GetNextItem(&item), kFailure);
    decoder.PrintStructure(second.data());
    EXPECT_EQ(Keys(decoder).front(), "System Enclosure or Chassis Types {Type 3}_2#GROUPNAME");
}

TEST(Decoder, ShowsOnlyTheTitleOfANullStructure) {
    for (const TypeRow_t& row : TypeRows()) {
        const std::unique_ptr<ClSMBIOSType> decoder(NewDecoder(row.type, {.smbiosMajor = 3}));
        ASSERT_EQ(decoder == nullptr, row.sweep == Sweep_t::kNotDecoded) << row.Title();
        if (decoder == nullptr) continue;
        decoder->PrintStructure(nullptr);
        decoder->PrintStructure(nullptr);
        const std::string title = std::string(row.Title()) + "#GROUPNAME";
        std::vector<std::string> expected;
        // Type 148 tests for null before it counts a structure.
        if (row.head != Head_t::kNone && row.type != 148) expected = {title};
        if (!expected.empty() && row.head != Head_t::kFirstTitle)
            expected.push_back(std::string(row.Title()) + "_2#GROUPNAME");
        EXPECT_EQ(Keys(*decoder), expected) << row.Title();
    }
}
