// The decoder of type 148: its translators, and items that later items depend on. Structures.txt tests its layouts.
#include <gtest/gtest.h>

#include "Sources/SMBIOSType148.h"
#include "Tests/Support/Structures.h"

namespace {

constexpr uint32_t kMrn = 0x30670, kDnm = 0x406C0, kTvl = 0x506C0, kTvlToo = 0x706A0, kNoFamily = 0x906E0;
const std::string kTitle = "Firmware Version Information {Type 148}#GROUPNAME=\n";

ClItems DecodeOn(uint32_t signature, const std::vector<ClStructureBuilder>& structures) {
    return Decode(structures, {.signature = signature});
}

// Texts whose number is 1, and texts without a number in a signed 32 bits.
const std::vector<std::string> kOnes = {"1", " 1", "\t\n\v\f\r1", "+1", "001", "1x", "1 2", "1.9"};
const std::vector<std::string> kBadNumbers = {
    "", " ", "x3", "-", "+", "+-1", "--1", "- 1", "x", "99999999999", "2147483648", "-2147483649", "(null string)",
};

TEST(Type148Translators, ReturnTheWordsOfSettings) {
    const struct {
        const char* name;
        std::string (*translate)(const char* text);
        const char *last, *word;  // the last number with a word
        const char* without;      // a number without one
    } kSettings[] = {
        {"SecureBoot",   ClSMBIOSType148::GetSecureBootStatus, "1",  "ON",       "2"},
        {"S0ix",         ClSMBIOSType148::GetS0ix,             "1",  "ON",       "2"},
        {"RC6",          ClSMBIOSType148::GetRC6,              "1",  "ON",       "2"},
        {"Cadrel",       ClSMBIOSType148::GetCadrelStatus,     "1",  "ON",       "2"},
        {"CPUTurbo",     ClSMBIOSType148::GetCPUTurboStatus,   "2",  "Auto",     "3"},
        {"GfxTurbo",     ClSMBIOSType148::GetGfxTurboStatus,   "2",  "Auto",     "3"},
        {"BootMode",     ClSMBIOSType148::GetBootMode,         "20", "Recovery", "2"},
        {"MaxCState",    ClSMBIOSType148::GetMaxCState,        "3x", "C7",       "1"},
        {"MaxPkgCState", ClSMBIOSType148::GetMaxPkgCState,     "2",  "C2",       "3"},
    };
    for (const auto& setting : kSettings) {
        EXPECT_EQ(setting.translate(setting.last), setting.word) << setting.name;
        for (const char* none : {setting.without, "21", "-1", static_cast<const char*>(nullptr)})
            EXPECT_EQ(setting.translate(none), "ERR") << setting.name;
        for (const std::string& text : kBadNumbers)
            EXPECT_EQ(setting.translate(text.c_str()), "ERR") << setting.name << text;
    }
    for (const std::string& text : kOnes) EXPECT_EQ(ClSMBIOSType148::GetBootMode(text.c_str()), "Fast Boot") << text;
}

TEST(Type148Translators, ReturnAStatusForBadNumbers) {
    for (const auto translate : {ClSMBIOSType148::GetMaxCoreCState, ClSMBIOSType148::GetCPUFlavorString}) {
        std::string out = "untouched";
        for (const std::string& text : kBadNumbers) EXPECT_EQ(translate(text.c_str(), &out), kBadValue) << text;
        EXPECT_EQ(translate(nullptr, &out), kBadValue);
        EXPECT_EQ(out, "untouched");
    }
}

// The board of a new decoder is number 0.
TEST(Type148Translators, NameBoardsAndTheirRevisions) {
    const struct {
        uint32_t signature;
        const char *board, *boardName, *revision, *revisionName;
    } kCases[] = {
        {kMrn,      "0",     "GRANITE DELL (00)",            "0",     "FAB1 (00)"                  },
        {kMrn,      "245",   "MARNHOLT FFRD8 (f5)",          "2",     "FAB3 (02)"                  },
        {kMrn,      "245",   "MARNHOLT FFRD8 (f5)",          "3",     "Unknown FAB (03)"           },
        {kMrn,      "241",   "HOLTMERE FFRD (f1)",           "0",     "PR0 (00)"                   },
        {kMrn,      "241",   "HOLTMERE FFRD (f1)",           "3",     "PR1.1 (03)"                 },
        {kMrn,      "241",   "HOLTMERE FFRD (f1)",           "4",     "Unknown FAB (04)"           },
        {kMrn,      "6x",    "Unknown MRN BOARD (06)",       "1",     "Unknown MRN FAB (01)"       },
        {kMrn,      "-1",    "Unknown MRN BOARD (ffffffff)", nullptr, "Board Revision is not valid"},
        {kMrn,      nullptr, "BoardType is not valid",       "1",     "FAB2 (01)"                  },
        {kDnm,      "0",     "Unknown DNM BOARD (00)",       "0",     "Unknown FAB (00)"           },
        {kDnm,      "1",     "DUNMARROW CR (01)",            "2",     "FAB3 (02)"                  },
        {kDnm,      "10",    "DUNMARROW FESTAL FFD (0a)",    "0",     "FAB1 (00)"                  },
        {kDnm,      "244",   "DUNMARROW CRB (f4)",           "3",     "Unknown DNM FAB (03)"       },
        {kTvl,      "0",     "Tarvelle RVP (00)",            "0",     "FAB B/C (00)"               },
        {kTvlToo,   "2",     "Tarvelle FFD (02)",            "4",     "FABD (04)"                  },
        {kTvl,      "2",     "Tarvelle FFD (02)",            "5",     "Unknown DNM FAB (05)"       },
        {kTvl,      "3",     "Unknown TVL BOARD (03)",       "0",     ""                           },
        {kNoFamily, "0",     "Unknown BOARD (00)",           "-1",    "Unknown FAB (ffffffff)"     },
    };
    for (const auto& c : kCases) {
        ClSMBIOSType148 decoder(c.signature);
        EXPECT_EQ(decoder.GetBoardTypeString(c.board), c.boardName);
        EXPECT_EQ(decoder.GetBoardRevString(c.revision), c.revisionName) << c.boardName;
        for (const std::string& text : kBadNumbers) {
            EXPECT_EQ(decoder.GetBoardTypeString(text.c_str()), "BoardType is not valid") << text;
            EXPECT_EQ(decoder.GetBoardRevString(text.c_str()), "Board Revision is not valid") << text;
        }
    }
}

TEST(Type148Translators, NamePowerChips) {
    const struct {
        uint32_t signature;
        const char *board, *revision;  // decoded before; null: none
        const char *text, *expected;
    } kCases[] = {
        {kDnm,      nullptr, nullptr, "2B.02",      "DIALOG (2B) 02"          },
        {kMrn,      nullptr, nullptr, "00.zz",      "DIALOG (00) zz"          },
        {kMrn,      nullptr, nullptr, "0z.01",      "DIALOG (0z) 01"          },
        {kMrn,      nullptr, nullptr, "10.01 rest", "ERR (10) 01"             },
        {kMrn,      nullptr, nullptr, "+0. 1",      "DIALOG (+0)  1"          },
        {kTvl,      nullptr, nullptr, "1F.02",      "RUSSET NOOK (02) 1F"     },
        {kTvlToo,   nullptr, nullptr, "zz.00",      "AMBER NOOK (00) zz"      },
        {kTvl,      nullptr, nullptr, "2B.2B",      "ERR (2B) 2B"             },
        {kTvl,      nullptr, nullptr, "02.zz",      "ERR"                     },
        {kMrn,      nullptr, nullptr, "zz.02",      "ERR"                     },
        {kMrn,      nullptr, nullptr, "1F",         "ERR"                     },
        {kMrn,      nullptr, nullptr, "1FA.0",      "ERR"                     },
        {kMrn,      nullptr, nullptr, "1F.B",       "PMIC String is not valid"},
        {kMrn,      nullptr, nullptr, nullptr,      "Null Pointer"            },
        {kMrn,      "241",   "3",     "1F.B3",      "PR1.4 (03)"              },
        {kNoFamily, "241",   "3",     "1F.B3x",     "PR1.4 (03)"              },
        {kTvl,      "241",   "3",     "1F.B3",      "ERR (B3) 1F"             },
        {kMrn,      "241",   "3",     "1f.B3",      "ROHM (1f) B3"            },
        {kMrn,      "241",   "3",     "1F.b3",      "ROHM (1F) b3"            },
        {kMrn,      "241",   "2",     "1F.B3",      "ROHM (1F) B3"            },
        {kMrn,      "242",   "3",     "1F.B3",      "ROHM (1F) B3"            },
    };
    for (const auto& c : kCases) {
        ClSMBIOSType148 decoder(c.signature);
        decoder.GetBoardTypeString(c.board);
        decoder.GetBoardRevString(c.revision);
        EXPECT_EQ(decoder.GetPMICString(c.text), c.expected) << c.expected;
    }
}

TEST(Type148Translators, MakeTextPrintable) {
    EXPECT_EQ(ClSMBIOSType148::GetPrintableString("a\x01\x1F ~\x7F\x80\xFF\nb\""), "a   ~    b\"");
}

// The structure with pair `n` added: a key named "Kn" and, unless it is empty, this value.
ClStructureBuilder WithPair(ClStructureBuilder structure, size_t n, const std::string& value) {
    structure.String(4 + 2 * n, std::string("K").append(std::to_string(n)));
    return value.empty() ? structure : structure.String(5 + 2 * n, value);
}

const ClStructureBuilder kPairs = ClStructureBuilder(148, 56).String(4, "Tar\tvelle");

TEST(Type148, KeyValueLayoutTranslatesThreePairsForNumbersOnly) {
    const std::string longText(150, 'x'), cutText(100, 'x');
    const struct {
        size_t pair;
        std::string text, expected;
    } kCases[] = {
        {11, "0",           "0"                            },
        {11, "abc",         "abc"                          },
        {11, "-0x",         "-0x"                          },
        {11, " 7",          "Unknown TVL BOARD (07)"       },
        {11, "1x",          "Tarvelle PR (01)"             },
        {11, "99999999999", "BoardType is not valid"       },
        {12, "x3",          "x3"                           },
        {12, "3x",          "FABC (03)"                    },
        {12, "99999999999", "Board Revision is not valid"  },
        {13, "00\x01",      "00 "                          },
        {13, "20",          "Unknown CPU Flavor (14)"      },
        {13, "-1",          "Unknown CPU Flavor (ffffffff)"},
        {22, "9",           "ERR"                          },
        {22, "-1",          "ERR"                          },
        {13, longText,      cutText                        },
    };
    for (const auto& c : kCases)
        EXPECT_EQ(DecodeOn(kTvl, {WithPair(kPairs, c.pair, c.text)}).Lines(),
                  kTitle + "Platform=Tar velle\nK" + std::to_string(c.pair) + "=" + c.expected + "\n")
            << c.text;
    // The board that a pair shows as it is leaves the board as it was: 3, whose revisions have no text.
    const ClStructureBuilder first = WithPair(WithPair(kPairs, 11, "3"), 12, "1");
    const ClStructureBuilder second = WithPair(WithPair(kPairs, 11, "0"), 12, "1");
    EXPECT_EQ(DecodeOn(kTvl, {first, second}).Texts("K12"), (std::vector<std::string>{"", ""}));
}

TEST(Type148, KeyValueLayoutEndsAtAFailedPair) {
    const auto Structure = [](const std::string& flavor, const std::string& coreState) {
        return WithPair(WithPair(WithPair(WithPair(kPairs, 12, "1"), 13, flavor), 22, coreState), 25, "1");
    };
    const ClItems items = DecodeOn(kTvl, {Structure("99999999999", "1"), Structure("1", "x3"), Structure("1", "1")});
    const std::string title = "Firmware Version Information {Type 148}", group = "#GROUPNAME=\n",
                      start = "Platform=Tar velle\nK12=FABA (01)\n", flavor = "K13=TVL Notebook (01)\n";
    EXPECT_EQ(items.Lines(), kTitle + start + title + "_2" + group + start + flavor + title + "_3" + group + start +
                                 flavor + "K22=C1\nK25=ON\n");
}

// A structure that doesn't set the board or its revision uses those of the structure before it.
TEST(Type148, LaterStructuresUseTheBoardOfEarlierOnes) {
    ClStructureBuilder first(148, 26), second(148, 26), third(148, 26);
    first.String(12, "241").String(13, "3");
    second.String(13, "abc").String(16, "1F.B3");
    third.String(12, "x").String(13, "1").String(16, "1F.B3");
    const ClItems items = DecodeOn(kMrn, {first, second, third});
    EXPECT_EQ(items.Texts("BoardType"),
              (std::vector<std::string>{"HOLTMERE FFRD (f1)", "None", "BoardType is not valid"}));
    EXPECT_EQ(items.Texts("BoardRev"),
              (std::vector<std::string>{"PR1.1 (03)", "Board Revision is not valid", "PR0.5 (01)"}));
    EXPECT_EQ(items.Texts("PMIC"), (std::vector<std::string>{"None", "PR1.4 (03)", "ROHM (1F) B3"}));
    EXPECT_EQ(items.Text("Firmware Version Information {Type 148}_3#GROUPNAME"), "");
}

TEST(Type148, ShowsNothingForNull) {
    ClSMBIOSType148 decoder(kTvl);
    decoder.PrintStructure(nullptr);
    ItemPair item;
    EXPECT_EQ(decoder.GetNextItem(&item), kFailure);
}

}  // namespace
