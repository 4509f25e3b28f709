#include "Packages/OS/OS.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

TEST(OS, StrncpyLeavesRoomForTheNul) {
    char destination[129];
    std::memset(destination, '#', sizeof destination);
    EXPECT_EQ(os_strncpy(destination, std::string(200, 'x').c_str(), 127), destination);
    EXPECT_EQ(std::string(destination), std::string(127, 'x'));
    EXPECT_EQ(destination[128], '#');

    // Unlike the standard function it writes nothing after the NUL.
    std::memset(destination, '#', sizeof destination);
    os_strncpy(destination, "ab", 10);
    EXPECT_EQ(std::string(destination, 4), std::string("ab\0#", 4));
}

TEST(OS, MemsetAndMemcpyKeepToTheDestination) {
    constexpr size_t kTooLarge = (size_t{1} << 63) + 1;
    const struct {
        const char* what;
        size_t size, count;
        bool hasDestination, hasSource;
        status_t memsetStatus;
        const char* memsetBytes;
        status_t memcpyStatus;
        const char* memcpyBytes;
    } kCases[] = {
        {"within",             8,         3, true,  true,  1, "sss.....", 1, "abc....."},
        {"exact",              8,         8, true,  true,  1, "ssssssss", 1, "abcdefgh"},
        {"count of 0",         8,         0, true,  true,  1, "........", 1, "........"},
        {"count above size",   4,         5, true,  true,  2, "ssss....", 2, "0000...."},
        {"no source",          4,         2, true,  false, 1, "ss......", 4, "0000...."},
        {"nothing, no source", 4,         0, true,  false, 1, "........", 1, "........"},
        {"no destination",     8,         3, false, true,  4, "........", 4, "........"},
        {"size out of range",  kTooLarge, 3, true,  true,  2, "........", 2, "........"},
    };
    for (const auto& c : kCases) {
        char destination[9] = "........";
        EXPECT_EQ(os_memset(c.hasDestination ? destination : nullptr, c.size, 's', c.count), c.memsetStatus) << c.what;
        EXPECT_STREQ(destination, c.memsetBytes) << c.what;

        std::strcpy(destination, "........");
        const char* source = c.hasSource ? "abcdefgh" : nullptr;
        EXPECT_EQ(os_memcpy(c.hasDestination ? destination : nullptr, c.size, source, c.count), c.memcpyStatus)
            << c.what;
        for (char& byte : destination)
            if (byte == '\0' && &byte != destination + 8) byte = '0';
        EXPECT_STREQ(destination, c.memcpyBytes) << c.what;
    }
}

TEST(OS, SnprintfCutsBySizeAndByCount) {
    const struct {
        const char* what;
        size_t size, count;
        int32_t length;
        const char* text;
    } kCases[] = {
        {"fits",                   16, 15,       6,  "123456"},
        {"fits exactly",           7,  6,        6,  "123456"},
        {"cut by count",           16, 3,        -1, "123"   },
        {"cut by size",            4,  15,       -1, "123"   },
        {"largest count",          4,  SIZE_MAX, -1, "123"   },
        {"room for the NUL alone", 1,  15,       -1, ""      },
        {"nothing wanted",         16, 0,        -1, ""      },
    };
    for (const auto& c : kCases) {
        char buffer[17] = "################";
        EXPECT_EQ(os_snprintf(buffer, c.size, c.count, "%d%s", 123, "456"), c.length) << c.what;
        EXPECT_STREQ(buffer, c.text) << c.what;
    }
    EXPECT_EQ(os_snprintf(nullptr, 8, 7, "x"), -1);
    char untouched = '#';
    EXPECT_EQ(os_snprintf(&untouched, 0, 7, "x"), -1);
    EXPECT_EQ(untouched, '#');
}
