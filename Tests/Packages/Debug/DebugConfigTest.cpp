// debug.conf: its lines, and the settings that handles take from it.
#include <sstream>

#include "Tests/Packages/Debug/TraceFixture.h"

class ClDebugConfig : public ClTraceTest {
  protected:
    // As if the process had just started.
    void Restart(const std::string& config) {
        CloseAll();
        DebugResetForTest();
        WriteConfig(config);
    }
    // TraceMask, OutputType, TraceFormat and Flags of a handle A that is opened now; none if it can't be opened.
    using Settings_t = std::vector<uint64_t>;
    Settings_t SettingsOfA() {
        const DebugHandle_t a = Open("A");
        if (a == nullptr) return {};
        return {a->TraceMask, a->OutputType, a->TraceFormat, a->Flags};
    }
};

// Texts of tokens, each with the bits that it gives one setting of handle A. Other settings keep their defaults.
TEST_F(ClDebugConfig, TokensAddUpFromLeftToRight) {
    const struct {
        const char *key, *texts;
        size_t setting;
    } kCases[] = {
        {"TraceType",       "En 1 In 2 Pa 4 Wa 8 Er 16 Ex 32 Al 63 EnExEr 49 EnNoEx 32 AlNo 0 EnEn 1", 0},
        {"OutputType",      "Co 1 Fi 2 In 4 Al 7 No 0",                                                1},
        {"TraceFormatType", "Fn 1 Ln 2 Ti 4 Td 8 NoAl 15 No 0",                                        2},
        {"DebugFlagsType",  "Sy 1 Lo 4 Tr 16 Lg 8 Al 29 No 0",                                         3}, // all four
    };
    for (const auto& c : kCases) {
        std::istringstream texts(c.texts);
        std::string tokens;
        for (uint64_t bits; texts >> tokens >> bits;) {
            Settings_t expected = {0, 1, 15, 8};
            expected[c.setting] = bits;
            Restart("A:" + std::string(c.key) + "<" + tokens + ">");
            EXPECT_EQ(SettingsOfA(), expected) << c.key << tokens;
        }
    }
}

// Each text follows a line that gives handle A the mask 1. A bad text takes that mask away, too.
TEST_F(ClDebugConfig, TakesAndRefusesLines) {
    using namespace std::string_literals;
    const std::string comment255 = "#" + std::string(254, 'x');
    const struct {
        const char* what;
        std::string text;
        uint64_t traceMask, outputType, flags;
    } kCases[] = {
        {"white space anywhere",          "A : Trace\tType < I n >\r\n",                                2,  1, 8 },
        {"text after the value",          "A:TraceType<In>:<>#",                                        2,  1, 8 },
        {"the last of a key counts",      "A:TraceType<In>\nA:TraceType<Pa>",                           4,  1, 8 },
        {"an empty value",                "A:TraceType<>",                                              0,  1, 8 },
        {"another package",               "B:TraceType<In>",                                            1,  1, 8 },
        {"another case",                  "a:TraceType<In>",                                            1,  1, 8 },
        {"headers and empty lines",       "[GLOBAL]\n\n \t\n[ PACKAGES ]\nA:TraceType<In>",             2,  1, 8 },
        {"comments",                      "# A:TraceType<In>\n  #\n#:<>",                               1,  1, 8 },
        {"flush of a package, any value", "A:SyncFlag<?>",                                              1,  1, 8 },
        {"a package without a name",      ":TraceType<In>",                                             1,  1, 8 },
        {"first delimiters",              "A<>:TraceType<In>",                                          1,  1, 8 },
        {"a line of 255 characters",      comment255 + "\nA:TraceType<In>",                             2,  1, 8 },
        {"a longer line, in pieces",      comment255 + "A:TraceType<In>",                               2,  1, 8 },
        {"a second piece that is bad",    comment255 + "x",                                             0,  1, 8 },
        {"a NUL ends its line",           "A:TraceType<In>\0x\n\0A:TraceType<Pa>"s,                     2,  1, 8 },

        {"no colon",                      "A.TraceType<In>",                                            0,  1, 8 },
        {"no less-than",                  "A:TraceType.In>",                                            0,  1, 8 },
        {"no greater-than",               "A:TraceType<In",                                             0,  1, 8 },
        {"delimiters in another order",   "A<TraceType:In>",                                            0,  1, 8 },
        {"unknown key",                   "A:Foo<Al>",                                                  0,  1, 8 },
        {"unknown key, other package",    "B:Foo<Al>",                                                  0,  1, 8 },
        {"another case of the key",       "A:tracetype<Al>",                                            0,  1, 8 },
        {"a single letter",               "A:TraceType<Inx>",                                           0,  1, 8 },
        {"unknown token",                 "A:TraceType<InXx>",                                          0,  1, 8 },
        {"a token of another key",        "A:TraceType<Co>",                                            0,  1, 8 },
        {"a header with more after it",   "[GLOBAL]x",                                                  0,  1, 8 },
        {"good lines after a bad one",    "x\nA:TraceType<Al>",                                         0,  1, 8 },

        {"Global is applied last",        "Global:TraceType<ErWa>\nA:TraceType<Al>",                    24, 1, 8 },
        {"another key of Global's",       "A:TraceType<Al>\nA:OutputType<Co>\nGlobal:OutputType<CoFi>", 63, 3, 8 },
        {"Global's flags",                "Global:DebugFlagsType<Lg>\nA:DebugFlagsType<Lo>",            1,  1, 8 },
        {"a lock stops no configuration", "Global:DebugFlagsType<Lo>\nGlobal:TraceType<Al>",            63, 1, 4 },
        {"flush of all, any value",       "Global:SyncFlag<Y>",                                         1,  1, 10},
        {"flush of all, twice",           "Global:SyncFlag<Y>\nGlobal:SyncFlag<y>",                     1,  1, 8 },
        {"another case of Global",        "global:TraceType<Er>\nA:TraceType<Al>",                      63, 1, 8 },
    };
    for (const auto& c : kCases) {
        Restart("A:TraceType<En>\n" + c.text);
        EXPECT_EQ(SettingsOfA(), (Settings_t{c.traceMask, c.outputType, 15, c.flags})) << c.what;
    }
}

TEST_F(ClDebugConfig, NamesCountTo63Characters) {
    const std::string name63(63, 'n'), file63(63, 'f');
    Restart(name63 + "xyz:TraceType<Al>\n" + name63 + ":FileName<" + file63 + "ghi>");
    DebugHandle_t handle = Open((name63 + "other").c_str());
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(handle->TraceMask, 63u);
    EXPECT_TRUE(std::filesystem::exists(file63));
}

TEST_F(ClDebugConfig, LogFilesBelongToEntries) {
    WriteFile("global.log", "old");
    Restart(
        "Global:FileName<global.log>\nGlobal:OutputType<Fi>\nGlobal:TraceType<Al>\nGlobal:TraceFormatType<No>\n"
        "A:FileName<a.log>\n");
    DebugHandle_t a = Open("A"), b = Open("B");
    EXPECT_NE(a->PackageStream, nullptr);
    EXPECT_EQ(b->PackageStream, nullptr);
    EXPECT_EQ(a->GlobalStream, b->GlobalStream);
    DebugTrace(a, "", "F", 1, kInfo, "from a");
    DebugTrace(b, "", "F", 1, kInfo, "from b");
    CloseAll();
    EXPECT_EQ(ReadFile("global.log"), "\n from a\n from b");
    EXPECT_EQ(ReadFile("a.log"), "\n from a");
    EXPECT_EQ(Printed(), "");

    // Two entries with one file name open it twice.
    Restart("A:FileName<x.log>\nB:FileName<x.log>");
    EXPECT_NE(Open("A")->PackageStream, Open("B")->PackageStream);

    // A file output without a file is no output.
    Restart("A:OutputType<Fi>\nA:TraceType<Al>");
    EXPECT_EQ(DebugTrace(Open("A"), "", "F", 1, kInfo, "m"), kSuccess);
    EXPECT_EQ(Printed(), "");
}

TEST_F(ClDebugConfig, ALogFileThatCannotBeOpenedIsAFailure) {
    for (const char* config :
         {"Global:FileName<.>", "A:FileName<>", "A:FileName<a.log>\nGlobal:FileName<no-such-folder/g.log>",
          "A:FileName<no-such-folder/a.log>\nB:TraceType<Al>"}) {
        Restart(config);
        EXPECT_EQ(SettingsOfA(), Settings_t()) << config;
    }
    EXPECT_EQ(Open("B")->TraceMask, 63u);  // only the handles that need the file are lost
}

TEST_F(ClDebugConfig, TheFileIsReadOnceInAProcess) {
    const Settings_t defaults = {0, 1, 15, 8}, all = {63, 1, 15, 8}, none;
    const struct {
        const char* config;
        Settings_t first, second;  // of handles that are opened one after the other
    } kCases[] = {
        {"",                     defaults, defaults},
        {"A:TraceType<Al>",      all,      defaults}, // the entries went with the last handle
        {"A:TraceType<Al>\nbad", defaults, defaults},
        {"Global:TraceType<Al>", all,      none    }, // that there was a Global entry is remembered
    };
    for (const auto& c : kCases) {
        Restart(c.config);
        EXPECT_EQ(SettingsOfA(), c.first) << c.config;
        CloseAll();
        WriteConfig("A:TraceType<Al>");
        EXPECT_EQ(SettingsOfA(), c.second) << c.config;
    }
}

TEST_F(ClDebugConfig, HostsTextReplacesTheFile) {
    const std::string longLine = "#" + std::string(254, 'x') + "A:TraceType<In>";
    const struct {
        std::string text;
        status_t status;
        uint64_t traceMask;
    } kCases[] = {
        {"A:TraceType<In>;A:TraceType<Pa>",          1, 4},
        {"A:TraceType<In>\n; ;A : TraceType < Pa >", 1, 4},
        {"A:TraceType<In>;#A:TraceType<Pa>;",        1, 2},
        {"",                                         1, 0},
        {longLine,                                   1, 2}, // in pieces, as from a file
        {"Global:TraceType<In>;bad",                 5, 1}, // the file is read after a refused text
    };
    for (const auto& c : kCases) {
        Restart("A:TraceType<En>");
        EXPECT_EQ(DebugUseConfigText(c.text.c_str()), c.status) << c.text;
        EXPECT_EQ(SettingsOfA(), (Settings_t{c.traceMask, 1, 15, 8})) << c.text;
        EXPECT_EQ(DebugUseConfigText("A:TraceType<Pa>"), kFailure) << c.text;
    }
    EXPECT_EQ(DebugUseConfigText(nullptr), kNullPointer);
}
