// What a decoder is to those who use it alone, without a package: its items one by one, and a structure that isn't
// there.
#include <gtest/gtest.h>

#include <memory>

#include "Sources/Decoders.h"
#include "Tests/Support/Structures.h"

namespace {

template <class... Decoders>
std::vector<std::unique_ptr<ClSMBIOSType>> Made() {
    std::vector<std::unique_ptr<ClSMBIOSType>> made;
    (made.push_back(std::make_unique<Decoders>()), ...);
    return made;
}

// Every item's key, read through the decoder's own cursor.
std::vector<std::string> Keys(ClSMBIOSType& decoder) {
    std::vector<std::string> keys;
    for (ItemPair item; decoder.GetNextItem(&item) == kSuccess;) keys.push_back(item.key);
    return keys;
}

}  // namespace

TEST(Decoder, GivesItsItemsOnceAndEachAsACopy) {
    ClSMBIOSType3 decoder;
    ItemPair item;
    EXPECT_EQ(decoder.GetNextItem(&item), kFailure);
    decoder.PrintStructure(ClStructureBuilder(3, 13).Strings({"Maker"}).Byte(4, 1).Image().data());
    EXPECT_EQ(decoder.GetNextItem(nullptr), kBadValue);
    ASSERT_EQ(decoder.GetNextItem(&item), kSuccess);
    EXPECT_EQ(item.key, "System Enclosure or Chassis Types {Type 3}#GROUPNAME");
    EXPECT_EQ(Keys(decoder).front(), "Type");
    EXPECT_EQ(decoder.GetNextItem(&item), kFailure);
    decoder.PrintStructure(ClStructureBuilder(3, 13).Image().data());
    EXPECT_EQ(Keys(decoder).front(), "System Enclosure or Chassis Types {Type 3}_2#GROUPNAME");
}

// Of a structure that isn't there the title comes, counted, and nothing else.
TEST(Decoder, OfANullStructureGivesNoMoreThanItsTitle) {
    auto decoders = Made<ClSMBIOSType0, ClSMBIOSType1, ClSMBIOSType2, ClSMBIOSType3, ClSMBIOSType7, ClSMBIOSType8,
                         ClSMBIOSType9, ClSMBIOSType10, ClSMBIOSType11, ClSMBIOSType12, ClSMBIOSType14, ClSMBIOSType15,
                         ClSMBIOSType16, ClSMBIOSType17, ClSMBIOSType18, ClSMBIOSType19, ClSMBIOSType20, ClSMBIOSType21,
                         ClSMBIOSType22, ClSMBIOSType23, ClSMBIOSType24, ClSMBIOSType25, ClSMBIOSType26, ClSMBIOSType27,
                         ClSMBIOSType28, ClSMBIOSType29, ClSMBIOSType30, ClSMBIOSType32, ClSMBIOSType33, ClSMBIOSType34,
                         ClSMBIOSType35, ClSMBIOSType36, ClSMBIOSType37, ClSMBIOSType38, ClSMBIOSType39, ClSMBIOSType41,
                         ClSMBIOSType130, ClSMBIOSType131, ClSMBIOSType221, ClSMBIOSType222>();
    decoders.push_back(std::make_unique<ClSMBIOSType4>(0));
    decoders.push_back(std::make_unique<ClSMBIOSType13>(3, 0));
    for (const auto& decoder : decoders) {
        decoder->PrintStructure(nullptr);
        decoder->PrintStructure(nullptr);
        const std::vector<std::string> keys = Keys(*decoder);
        ASSERT_FALSE(keys.empty());
        for (const std::string& key : keys) EXPECT_TRUE(key.ends_with("#GROUPNAME")) << key;
        EXPECT_LE(keys.size(), 2u) << keys.front();
    }
}
