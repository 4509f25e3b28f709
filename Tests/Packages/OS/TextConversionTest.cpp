#include "Packages/OS/TextConversion.h"

#include <gtest/gtest.h>

// The expected texts are what Windows' own functions give.
TEST(Text, InvalidUtf8IsReplacedAsOnWindows) {
    const std::string kR = "\xEF\xBF\xBD";
    const struct {
        const char* what;
        std::string text, valid;
    } kCases[] = {
        {"plain",                           "abc",              "abc"             },
        {"two bytes",                       "\xC3\xA9",         "\xC3\xA9"        },
        {"three bytes",                     "\xE2\x82\xAC",     "\xE2\x82\xAC"    },
        {"four bytes",                      "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},
        {"last code",                       "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
        {"a NUL within",                    {"a\0b", 3},        {"a\0b", 3}       },
        {"lone following byte",             "a\x80z",           "a" + kR + "z"    },
        {"overlong two bytes",              "\xC1\xBF",         kR + kR           },
        {"overlong, its second byte taken", "\xE0\x80\x80",     kR + kR           },
        {"surrogate",                       "\xED\xA0\x80",     kR + kR           },
        {"beyond the last code",            "\xF4\x90\x80\x80", kR + kR + kR      },
        {"lead byte that is none",          "\xF5\x80",         kR + kR           },
        {"spoiled, the spoiler stays",      "\xE2!?",           kR + "!?"         },
        {"spoiled at the third byte",       "\xE2\x82!",        kR + "!"          },
        {"cut by the end",                  "a\xE2\x82",        "a" + kR          },
        {"cut by the end, a letter too",    "a\xE9Z",           "a" + kR          },
        {"not cut, the letters stay",       "a\xE9ZZ",          "a" + kR + "ZZ"   },
    };
    for (const auto& c : kCases) {
        std::string valid;
        ASSERT_TRUE(os_RevalidateUtf8(c.text, &valid)) << c.what;
        EXPECT_EQ(valid, c.valid) << c.what;
    }
}
