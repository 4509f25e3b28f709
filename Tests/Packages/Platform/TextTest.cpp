#include <gtest/gtest.h>

#include <string>

#include "Packages/Platform/Platform.h"

// What Windows answers, measured with its own functions over all sequences of 1 to 4 bytes from the classes below.
TEST(Text, InvalidUtf8TurnsIntoReplacementsWhereWindowsPutsThem) {
    const struct {
        const char* what;
        std::string utf8;
        std::u16string wide;
    } kCases[] = {
        {"two bytes",                       "\xC3\xA9",         u"\u00E9"            },
        {"three bytes",                     "\xE2\x82\xAC",     u"\u20AC"            },
        {"four bytes",                      "\xF0\x9F\x98\x80", u"\U0001F600"        },
        {"last code",                       "\xF4\x8F\xBF\xBF", u"\U0010FFFF"        },
        {"lone following byte",             "a\x80z",           u"a\uFFFDz"          },
        {"overlong two bytes",              "\xC1\xBF",         u"\uFFFD\uFFFD"      },
        {"overlong, its second byte taken", "\xE0\x80\x80",     u"\uFFFD\uFFFD"      },
        {"surrogate",                       "\xED\xA0\x80",     u"\uFFFD\uFFFD"      },
        {"beyond the last code",            "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD"},
        {"lead byte that is none",          "\xF5\x80",         u"\uFFFD\uFFFD"      },
        {"spoiled, the spoiler stays",      "\xE2!?",           u"\uFFFD!?"          },
        {"spoiled at the third byte",       "\xE2\x82!",        u"\uFFFD!"           },
        {"cut by the end",                  "a\xE2\x82",        u"a\uFFFD"           },
        {"cut by the end, a letter too",    "a\xE9Z",           u"a\uFFFD"           },
        {"not cut, the letters stay",       "a\xE9ZZ",          u"a\uFFFDZZ"         },
    };
    for (const auto& c : kCases) {
        WCHAR wide[16];
        const int size = static_cast<int>(c.utf8.size());
        const int needed = MultiByteToWideChar(CP_UTF8, 0, c.utf8.data(), size, nullptr, 0);
        ASSERT_EQ(MultiByteToWideChar(CP_UTF8, 0, c.utf8.data(), size, wide, needed), needed) << c.what;
        EXPECT_EQ(std::u16string(wide, static_cast<size_t>(needed)), c.wide) << c.what;
    }
}

TEST(Text, WideTextComesBackAsUtf8) {
    const std::u16string wide = u"a\u00E9\u20AC\U0001F600";
    char text[32];
    const int length = WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), text, sizeof text,
                                           nullptr, nullptr);
    EXPECT_EQ(std::string(text, static_cast<size_t>(length)), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    const WCHAR lone[] = {0xDC00, 0xD800, '!', 0xD800};
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, lone, 4, text, sizeof text, nullptr, nullptr), 10);
    EXPECT_EQ(std::string(text, 10), "\xEF\xBF\xBD\xEF\xBF\xBD!\xEF\xBF\xBD");
}

TEST(Text, ArgumentsAreCheckedAsWindowsDoes) {
    WCHAR wide[4];
    const struct {
        const char* what;
        UINT codePage;
        DWORD flags;
        const char* text;
        int size;
        WCHAR* out;
        int outSize, result;
        DWORD error;
    } kCases[] = {
        {"fits",                   CP_UTF8, 0,                    "abc",              3,  wide,    4, 3, 0                           },
        {"with its NUL",           CP_UTF8, 0,                    "abc",              -1, wide,    4, 4, 0                           },
        {"small",                  CP_UTF8, 0,                    "abc",              3,  wide,    2, 0, ERROR_INSUFFICIENT_BUFFER   },
        {"half a pair",            CP_UTF8, 0,                    "\xF0\x9F\x98\x80", 4,  wide,    1, 0, ERROR_INSUFFICIENT_BUFFER   },
        {"no text",                CP_UTF8, 0,                    nullptr,            3,  wide,    4, 0, ERROR_INVALID_PARAMETER     },
        {"size 0",                 CP_UTF8, 0,                    "abc",              0,  wide,    4, 0, ERROR_INVALID_PARAMETER     },
        {"no room where promised", CP_UTF8, 0,                    "abc",              3,  nullptr, 4, 0, ERROR_INVALID_PARAMETER     },
        {"another code page",      1252,    0,                    "abc",              3,  wide,    4, 0, ERROR_INVALID_PARAMETER     },
        {"refused",                CP_UTF8, MB_ERR_INVALID_CHARS, "a\xFF",            2,  wide,    4, 0, ERROR_NO_UNICODE_TRANSLATION},
    };
    for (const auto& c : kCases) {
        SetLastError(0);
        EXPECT_EQ(MultiByteToWideChar(c.codePage, c.flags, c.text, c.size, c.out, c.outSize), c.result) << c.what;
        EXPECT_EQ(GetLastError(), c.error) << c.what;
    }
}
