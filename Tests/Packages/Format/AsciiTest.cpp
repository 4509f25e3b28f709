// Each of the 256 bytes by itself. Where `char` has no sign, bytes from 80h are above all others; elsewhere, below.
#include "Packages/Format/Ascii.h"

#include <gtest/gtest.h>

namespace {

TEST(Ascii, EveryByteIsWhatItIsSignedOrNot) {
    std::string printable, upper, lower;
    for (unsigned byte = 0; byte < 256; byte++) {
        const auto c = static_cast<char>(byte);
        if (IsPrintableAscii(c)) printable += c;
        if (LowerCase(c) != c) upper += c, lower += LowerCase(c);
    }
    EXPECT_EQ(printable,
              R"( !"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\]^_`abcdefghijklmnopqrstuvwxyz{|}~)");
    EXPECT_EQ(upper, "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    EXPECT_EQ(lower, "abcdefghijklmnopqrstuvwxyz");
}

}  // namespace
