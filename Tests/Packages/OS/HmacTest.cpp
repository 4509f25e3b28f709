#include "Packages/OS/Hmac.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

std::span<const uint8_t> Bytes(const std::string& text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

std::string Hex(std::span<const uint8_t, 32> bytes) {
    char digits[65];
    for (size_t i = 0; i < bytes.size(); i++) std::snprintf(digits + 2 * i, 3, "%02x", bytes[i]);
    return digits;
}

std::string HmacOf(const std::string& key, const std::string& message) {
    uint8_t mac[32];
    return os_HmacSha256(Bytes(key), Bytes(message), mac) ? Hex(mac) : "none";
}

// A case of FIPS 180-4's examples, and no bytes.
TEST(Sha256, IsAsPublished) {
    uint8_t hash[32];
    ASSERT_TRUE(os_Sha256(Bytes("abc"), hash));
    EXPECT_EQ(Hex(hash), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    ASSERT_TRUE(os_Sha256({}, hash));
    EXPECT_EQ(Hex(hash), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
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
