#include "Packages/OS/Hmac.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

std::string HmacOf(const std::string& key, const std::string& message) {
    const auto bytes = [](const std::string& text) {
        return std::span(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    };
    uint8_t mac[32];
    if (!os_HmacSha256(bytes(key), bytes(message), mac)) return "none";
    char digits[65];
    for (size_t i = 0; i < sizeof mac; i++) std::snprintf(digits + 2 * i, 3, "%02x", mac[i]);
    return digits;
}

// Cases of RFC 4231: a short key, a shorter one, and one longer than a block.
TEST(Hmac, IsAsPublished) {
    EXPECT_EQ(HmacOf(std::string(20, '\x0B'), "Hi There"),
              "b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7");
    EXPECT_EQ(HmacOf("Jefe", "what do ya want for nothing?"),
              "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843");
    EXPECT_EQ(HmacOf(std::string(131, '\xAA'), "Test Using Larger Than Block-Size Key - Hash Key First"),
              "60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54");
}

TEST(Hmac, RandomKeysDiffer) {
    std::vector<uint8_t> first(32), second(32);
    ASSERT_TRUE(os_FillRandom(first) && os_FillRandom(second));
    EXPECT_NE(first, second);
    EXPECT_NE(first, std::vector<uint8_t>(32));
}

}  // namespace
