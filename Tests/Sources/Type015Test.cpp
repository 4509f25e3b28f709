// The decoder of type 15.
#include <gtest/gtest.h>

#include "Tests/Support/Expectations.h"

namespace {

// A log of the later form with room for three descriptors, which count themselves as `count`.
ClStructureBuilder LogWith(uint8_t count) {
    return ClStructureBuilder(15, 0x1D)
        .Byte(0x15, count)
        .Byte(0x16, 2)
        .Bytes(0x17, {0x01, 0x00, 0x08, 0x04, 0x10, 0xFF})
        .Strings({"behind"});
}

TEST(Type15, EarlyFormEndsWithTheAddress) {
    ClStructureBuilder log(15, 0x14);
    log.Word(0x04, 1024).Word(0x06, 0).Word(0x08, 16).Bytes(0x0A, {3, 1}).Dword(0x0C, 0x1A2B).Dword(0x10, 0x00710070);
    ExpectItems(log, "System Event Log {Type 15}",
                "Log Area Length=1024 (400h)\nLog Header Start Offset=0 (00h)\nLog Data Start Offset=16 (10h)\n"
                "Access Method=3\nLog Status=01h (Log Area: Not Full, Valid)\nLog Change Token=00001A2Bh\n"
                "Access Method Address=00710070h\n");
    // One byte less than the later form needs.
    EXPECT_EQ(Decode(ClStructureBuilder(15, 0x16)).Count(), 4u + 7u);
    EXPECT_EQ(Decode(ClStructureBuilder(15, 0x17)).Count(), 4u + 10u);
}

TEST(Type15, DescriptorsStopAtTheFormattedArea) {
    const std::string key = "List of Supported Event Log Type Descriptors";
    using Texts = std::vector<std::string>;
    EXPECT_EQ(Decode(LogWith(3)).Texts(key), (Texts{"\t\t01h 00h", "\t\t08h 04h", "\t\t10h FFh"}));
    EXPECT_EQ(Decode(LogWith(2)).Texts(key), (Texts{"\t\t01h 00h", "\t\t08h 04h"}));
    EXPECT_EQ(Decode(LogWith(0)).Texts(key), Texts{});
    EXPECT_EQ(Decode(LogWith(255)).Texts(key).size(), 3u);
    // The stated size of a descriptor doesn't change the step.
    EXPECT_EQ(Decode(LogWith(3).Byte(0x16, 3)).Texts(key)[1], "\t\t08h 04h");
}

}  // namespace
