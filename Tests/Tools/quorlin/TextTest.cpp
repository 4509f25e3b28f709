// Texts that need no cleaning, which all formats copy in one pass.
#include "Tools/quorlin/Text.h"

#include <gtest/gtest.h>

namespace {

// Sizes on both sides of each word's, around bytes on both bounds of what is plain.
TEST(Text, CopiesPlainTextAndRefusesAnyOtherByteAtAnyPlace) {
    for (const char around : {' ', '~'}) {
        for (size_t size = 1; size <= 20; size++) {
            for (size_t place = 0; place < size; place++) {
                for (unsigned byte = 0; byte < 256; byte++) {
                    std::string text(size, around), copy(size + 1, '#');
                    text[place] = static_cast<char>(byte);
                    const bool isPlain = byte >= ' ' && byte <= '~' && byte != '"' && byte != ',';
                    const char* end = CopyPlain<'"', ','>(copy.data(), text);
                    ASSERT_EQ(end, isPlain ? copy.data() + size : nullptr) << size << ", " << place << ": " << byte;
                    ASSERT_EQ(copy, isPlain ? text + "#" : copy);
                    ASSERT_EQ(copy.back(), '#');
                }
            }
        }
    }
    char nothing = '#';
    EXPECT_EQ(CopyPlain(&nothing, {}), &nothing);
    EXPECT_EQ(nothing, '#');
}

}  // namespace
