// The decoder of type 148: its three layouts, its translators, and what one item leaves for those behind it.
#include <gtest/gtest.h>

#include <map>

#include "Sources/Decoders.h"
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
    "", " ", "x3", "-", "+", "+-1", "--1", "- 1", "x", "99999999999", "2147483648", "-2147483649",
};

TEST(Type148Translators, GiveTheWordsOfSettings) {
    using Words_t = std::map<int, std::string>;
    const Words_t offOn = {
        {0, "OFF"},
        {1, "ON" },
    };
    const Words_t offOnAuto = {
        {0, "OFF" },
        {1, "ON"  },
        {2, "Auto"},
    };
    const struct {
        const char* name;
        std::string (*translate)(const char* text);
        Words_t words;
    } kSettings[] = {
        {"SecureBoot",   ClSMBIOSType148::GetSecureBootStatus, offOn                                                   },
        {"S0ix",         ClSMBIOSType148::GetS0ix,             offOn                                                   },
        {"RC6",          ClSMBIOSType148::GetRC6,              offOn                                                   },
        {"Cadrel",       ClSMBIOSType148::GetCadrelStatus,     offOn                                                   },
        {"CPUTurbo",     ClSMBIOSType148::GetCPUTurboStatus,   offOnAuto                                               },
        {"GfxTurbo",     ClSMBIOSType148::GetGfxTurboStatus,   offOnAuto                                               },
        {"BootMode",     ClSMBIOSType148::GetBootMode,         {{0, "Normal Boot"}, {1, "Fast Boot"}, {20, "Recovery"}}},
        {"MaxCState",    ClSMBIOSType148::GetMaxCState,        {{0, "C1"}, {2, "C6"}, {3, "C7"}}                       },
        {"MaxPkgCState", ClSMBIOSType148::GetMaxPkgCState,     {{0, "C0"}, {1, "C1"}, {2, "C2"}}                       },
    };
    for (const auto& setting : kSettings) {
        const auto wordOf = [&](int number) {
            const auto word = setting.words.find(number);
            return word == setting.words.end() ? "ERR" : word->second;
        };
        for (int number = -1; number <= 22; number++)
            EXPECT_EQ(setting.translate(std::to_string(number).c_str()), wordOf(number)) << setting.name << number;
        for (const std::string& text : kOnes)
            EXPECT_EQ(setting.translate(text.c_str()), wordOf(1)) << setting.name << text;
        for (const std::string& text : kBadNumbers)
            EXPECT_EQ(setting.translate(text.c_str()), "ERR") << setting.name << text;
        EXPECT_EQ(setting.translate(nullptr), "ERR") << setting.name;
        EXPECT_EQ(setting.translate("(null string)"), "ERR") << setting.name;
    }
    EXPECT_EQ(ClSMBIOSType148::GetMaxCState("3x"), "C7");
    EXPECT_EQ(ClSMBIOSType148::GetBootMode("20"), "Recovery");
}

TEST(Type148Translators, TellAFailureByStatus) {
    const struct {
        status_t (*translate)(const char* text, std::string* out);
        std::vector<std::string> words;  // of the numbers from 0 on
        const char *other, *minusOne;
    } kCases[] = {
        {ClSMBIOSType148::GetMaxCoreCState,   {"C0", "C1", "C3", "C6", "C7", "C8", "C9", "C10", "Fused"}, "ERR", "ERR"                          },
        {ClSMBIOSType148::GetCPUFlavorString,
         {"TVL Tablet (00)", "TVL Notebook (01)", "TVL Desktop (02)"},
         "Unknown CPU Flavor (09)",                                                                              "Unknown CPU Flavor (ffffffff)"},
    };
    for (const auto& c : kCases) {
        const auto textOf = [&](const std::string& text) {
            std::string out;
            EXPECT_EQ(c.translate(text.c_str(), &out), kSuccess) << text;
            return out;
        };
        for (size_t number = 0; number < c.words.size(); number++)
            EXPECT_EQ(textOf(std::to_string(number)), c.words[number]);
        EXPECT_EQ(textOf("9"), c.other);
        EXPECT_EQ(textOf("-1"), c.minusOne);
        for (const std::string& text : kOnes) EXPECT_EQ(textOf(text), c.words[1]) << text;
        std::string out = "untouched";
        for (const std::string& text : kBadNumbers) EXPECT_EQ(c.translate(text.c_str(), &out), kBadValue) << text;
        EXPECT_EQ(c.translate(nullptr, &out), kBadValue);
        EXPECT_EQ(out, "untouched");
    }
}

TEST(Type148Translators, NameBoards) {
    const struct {
        uint32_t signature;
        std::map<int, std::string> boards;
        const char* other;
    } kFamilies[] = {
        {kMrn,
         {{0, "GRANITE DELL (00)"},
          {5, "HOLT MERE RVP DDR3L (05)"},
          {7, "QPV- TROX (07)"},
          {32, "OSPREY NOOK (20)"},
          {48, "TANNERSLIP (30)"},
          {241, "HOLTMERE FFRD (f1)"},
          {242, "HOLTMERE RVP (f2)"},
          {245, "MARNHOLT FFRD8 (f5)"}},
         "Unknown MRN BOARD"                                                                                          },
        {kDnm,
         {{1, "DUNMARROW CR (01)"},
          {2, "DUNMARROW COPOP (02)"},
          {3, "DUNMARROW TABLET (03)"},
          {4, "DUNMARROW ORVALE (04)"},
          {8, "DUNMARROW FFD (08)"},
          {9, "DUNMARROW FESTAL RVP (09)"},
          {10, "DUNMARROW FESTAL FFD (0a)"},
          {68, "ELSMOOR ID (44)"},
          {85, "ELSMOOR CR (55)"},
          {96, "ELSMOOR RVP (60)"},
          {128, "ELSMOOR PLUM KNOLL (80)"},
          {130, "ELSMOOR PLUM ISLE (82)"},
          {238, "SV BOARD (ee)"},
          {243, "DUNMARROW ERB (f3)"},
          {244, "DUNMARROW CRB (f4)"}},
         "Unknown DNM BOARD"                                                                                          },
        {kTvl,      {{0, "Tarvelle RVP (00)"}, {1, "Tarvelle PR (01)"}, {2, "Tarvelle FFD (02)"}}, "Unknown TVL BOARD"},
        {kTvlToo,   {{0, "Tarvelle RVP (00)"}, {1, "Tarvelle PR (01)"}, {2, "Tarvelle FFD (02)"}}, "Unknown TVL BOARD"},
        {kNoFamily, {},                                                                            "Unknown BOARD"    },
        {0,         {},                                                                            "Unknown BOARD"    },
    };
    for (const auto& family : kFamilies) {
        ClSMBIOSType148 decoder(family.signature);
        for (int number = 0; number < 256; number++) {
            const std::string text = decoder.GetBoardTypeString(std::to_string(number).c_str());
            const auto board = family.boards.find(number);
            if (board != family.boards.end())
                EXPECT_EQ(text, board->second);
            else
                EXPECT_EQ(text.substr(0, text.find(" (")), family.other) << number;
        }
        EXPECT_EQ(decoder.GetBoardTypeString("-1"), family.other + std::string(" (ffffffff)"));
        EXPECT_EQ(decoder.GetBoardTypeString("6x"), family.other + std::string(" (06)"));
        for (const std::string& text : kBadNumbers)
            EXPECT_EQ(decoder.GetBoardTypeString(text.c_str()), "BoardType is not valid") << text;
        EXPECT_EQ(decoder.GetBoardTypeString(nullptr), "BoardType is not valid");
    }
}

TEST(Type148Translators, NameRevisionsByTheBoardLeftBehind) {
    const std::vector<std::string> kFabs = {"FAB1 (00)", "FAB2 (01)", "FAB3 (02)"};
    const std::vector<std::string> kTarvelleFabs = {"FAB B/C (00)", "FABA (01)", "FABB (02)", "FABC (03)", "FABD (04)"};
    const struct {
        uint32_t signature;
        std::vector<const char*> boards;
        std::vector<std::string> revisions;  // from 0 on
        std::string other;                   // of revision 6; empty: no text at all
    } kCases[] = {
        {kMrn,      {"0", "5", "7", "32", "48", "242", "245"},       kFabs,                                                "Unknown FAB (06)"    },
        {kMrn,      {"241"},                                         {"PR0 (00)", "PR0.5 (01)", "PR1 (02)", "PR1.1 (03)"}, "Unknown FAB (06)"    },
        {kMrn,      {"1", "240", "-1"},                              {},                                                   "Unknown MRN FAB (06)"},
        {kDnm,      {"1", "2", "3", "4", "8", "9", "10", "68"},      kFabs,                                                "Unknown DNM FAB (06)"},
        {kDnm,      {"85", "96", "128", "130", "238", "243", "244"}, kFabs,                                                "Unknown DNM FAB (06)"},
        {kDnm,      {"0", "241", "245"},                             {},                                                   "Unknown FAB (06)"    },
        {kTvl,      {"0", "1", "2"},                                 kTarvelleFabs,                                        "Unknown DNM FAB (06)"},
        {kTvlToo,   {"0", "2"},                                      kTarvelleFabs,                                        "Unknown DNM FAB (06)"},
        {kTvl,      {"3", "241", "-1"},                              {},                                                   ""                    },
        {kNoFamily, {"0", "1", "241"},                               {},                                                   "Unknown FAB (06)"    },
    };
    for (const auto& c : kCases) {
        for (const char* board : c.boards) {
            ClSMBIOSType148 decoder(c.signature);
            decoder.GetBoardTypeString(board);
            for (size_t revision = 0; revision < c.revisions.size(); revision++)
                EXPECT_EQ(decoder.GetBoardRevString(std::to_string(revision).c_str()), c.revisions[revision]) << board;
            EXPECT_EQ(decoder.GetBoardRevString("6"), c.other) << board;
            for (const std::string& text : kBadNumbers)
                EXPECT_EQ(decoder.GetBoardRevString(text.c_str()), "Board Revision is not valid") << text;
            EXPECT_EQ(decoder.GetBoardRevString(nullptr), "Board Revision is not valid");
        }
    }
    EXPECT_EQ(ClSMBIOSType148(kNoFamily).GetBoardRevString("-1"), "Unknown FAB (ffffffff)");
    // A new decoder's board is number 0, and a text without a number leaves the board as it was.
    ClSMBIOSType148 decoder(kMrn);
    EXPECT_EQ(decoder.GetBoardRevString("1"), "FAB2 (01)");
    decoder.GetBoardTypeString("241");
    decoder.GetBoardTypeString("99999999999");
    EXPECT_EQ(decoder.GetBoardRevString("1"), "PR0.5 (01)");
}

TEST(Type148Translators, NamePowerChips) {
    const struct {
        uint32_t signature;
        const char *text, *expected;
    } kCases[] = {
        {kNoFamily, "1F.A0",      "ROHM (1F) A0"            },
        {kMrn,      "1f.A0",      "ROHM (1f) A0"            },
        {kDnm,      "2B.02",      "DIALOG (2B) 02"          },
        {kMrn,      "00.zz",      "DIALOG (00) zz"          },
        {kMrn,      "0x.01",      "DIALOG (0x) 01"          },
        {kMrn,      "0z.01",      "DIALOG (0z) 01"          },
        {kMrn,      "10.01 rest", "ERR (10) 01"             },
        {kMrn,      "-1.01",      "ERR (-1) 01"             },
        {kMrn,      "+0. 1",      "DIALOG (+0)  1"          },
        {kMrn,      "1F.B3",      "ROHM (1F) B3"            },
        {kTvl,      "1F.02",      "RUSSET NOOK (02) 1F"     },
        {kTvlToo,   "zz.00",      "AMBER NOOK (00) zz"      },
        {kTvl,      "2B.2B",      "ERR (2B) 2B"             },
        {kTvl,      "02.zz",      "ERR"                     },
        {kMrn,      "zz.02",      "ERR"                     },
        {kMrn,      "",           "ERR"                     },
        {kMrn,      "1F",         "ERR"                     },
        {kMrn,      "1FA.0",      "ERR"                     },
        {kMrn,      "1F.",        "PMIC String is not valid"},
        {kMrn,      "1F.B",       "PMIC String is not valid"},
        {kTvl,      "1F.B",       "PMIC String is not valid"},
        {kMrn,      nullptr,      "Null Pointer"            },
    };
    for (const auto& c : kCases) EXPECT_EQ(ClSMBIOSType148(c.signature).GetPMICString(c.text), c.expected) << c.text;
    // One board tells a later revision by its chip.
    const struct {
        uint32_t signature;
        const char *board, *revision, *text, *expected;
    } kOnBoards[] = {
        {kMrn,      "241", "3", "1F.B3",  "PR1.4 (03)"  },
        {kDnm,      "241", "3", "1F.B3x", "PR1.4 (03)"  },
        {kNoFamily, "241", "3", "1F.B3",  "PR1.4 (03)"  },
        {kTvl,      "241", "3", "1F.B3",  "ERR (B3) 1F" },
        {kMrn,      "241", "3", "1f.B3",  "ROHM (1f) B3"},
        {kMrn,      "241", "3", "1F.b3",  "ROHM (1F) b3"},
        {kMrn,      "241", "2", "1F.B3",  "ROHM (1F) B3"},
        {kMrn,      "242", "3", "1F.B3",  "ROHM (1F) B3"},
    };
    for (const auto& c : kOnBoards) {
        ClSMBIOSType148 decoder(c.signature);
        decoder.GetBoardTypeString(c.board);
        decoder.GetBoardRevString(c.revision);
        EXPECT_EQ(decoder.GetPMICString(c.text), c.expected) << c.board << " " << c.revision << " " << c.text;
    }
}

TEST(Type148Translators, MakeTextPrintable) {
    EXPECT_EQ(ClSMBIOSType148::GetPrintableString("a\x01\x1F ~\x7F\x80\xFF\nb\""), "a   ~    b\"");
    EXPECT_EQ(ClSMBIOSType148::GetPrintableString(std::string(150, 'x').c_str()), std::string(100, 'x'));
    EXPECT_EQ(ClSMBIOSType148::GetPrintableString(""), "");
    EXPECT_EQ(ClSMBIOSType148::GetHexSuffix(0xF1, 2), " (f1)");
    EXPECT_EQ(ClSMBIOSType148::GetHexSuffix(3, 2), " (03)");
    EXPECT_EQ(ClSMBIOSType148::GetHexSuffix(0xABCDE, 2), " (abcde)");
}

// A structure whose every string number names a string, which tells the byte that it stands in.
ClStructureBuilder EachByteNamed(uint8_t from, uint8_t length) {
    ClStructureBuilder structure(148, length);
    for (uint8_t offset = from; offset < length; offset++) structure.String(offset, std::to_string(offset));
    return structure;
}

TEST(Type148, BoardLayoutShowsEachField) {
    const std::string expected =
        kTitle +
        "OMFI=5\nBMCFW=6\nCVXFW=7\nFRUSDR=8\nFRU=9\nSDR=10\nCPUuCode1=11\nCPUuCode2=12\nCPUuCode3=13\nBIOSHCM=14\n"
        "LOADHCM=15\nMTC=16\nLNKRF=17\nPSUFW=18\nReserve1=19\nReserve2=20\nReserve3=21\nReserve4=22\nReserve5=23\n"
        "DKSvSATAROM=24\nDKSvSSATAROM=25\nDKSvSATAEFI=26\nDKSvSSATAEFI=27\nSATAAHCI=28\nBrendPxe=29\nHolmPxe=30\n"
        "ArdenPxe=31\n1GEFI=32\n10GEFI=33\niBMCVideo=34\niBMCGOP=35\n";
    for (const uint32_t signature : {kMrn, kDnm, kNoFamily})
        EXPECT_EQ(DecodeOn(signature, {EachByteNamed(5, 36).Byte(4, 2)}).Lines(), expected);
    // Fields without a string, those behind the length among them.
    const ClItems shorter = DecodeOn(
        kNoFamily,
        {ClStructureBuilder(148, 7).Byte(4, 2).String(5, std::string("v\x80").append(150, '1')).String(6, "\x01 2")});
    EXPECT_EQ(shorter.Count(), 32u);
    EXPECT_EQ(shorter.Text("OMFI"), std::string("v ").append(98, '1'));
    EXPECT_EQ(shorter.Text("BMCFW"), "  2");
    EXPECT_EQ(shorter.Text("CVXFW"), "None");
    EXPECT_EQ(shorter.Text("iBMCGOP"), "None");
}

TEST(Type148, PlatformLayoutShowsEachField) {
    const std::string expected =
        kTitle +
        "GOP=4\nKRN=7\nMTC=6\nuCode=5\nVPCU=10\nPMC=9\nLPCTL=8\nSoC=11\nBoardType=Unknown BOARD (0c)\n"
        "BoardRev=Unknown FAB (0d)\nCPUFlavor=14\nBIOS=15\nPMIC=ERR\nTouch=17\nSecureBoot=ERR\nBootMode=ERR\n"
        "Cadrel=ERR\nCPUTurbo=ERR\nMaxCState=ERR\nGfxTurbo=ERR\nS0ix=ERR\nRC6=ERR\n";
    EXPECT_EQ(DecodeOn(kNoFamily, {EachByteNamed(4, 26)}).Lines(), expected);
    // No string at all, and no field behind the length: three fields then go out as groups.
    const std::string nothing =
        kTitle +
        "GOP=None\nKRN=None\nMTC=None\nuCode=None\nVPCU=None\nPMC=None\nLPCTL=None\nSoC=None\nBoardType=None\n"
        "BoardRev=None\nCPUFlavor=None\nBIOS=None\nPMIC=None\nTouch=None\nSecureBoot=None\nBootMode=None\n"
        "Cadrel=None\nCPUTurbo=None\nMaxCState#GROUPNAME=None\nGfxTurbo=None\nS0ix#GROUPNAME=None\n"
        "RC6#GROUPNAME=None\n";
    EXPECT_EQ(DecodeOn(kMrn, {ClStructureBuilder(148, 26)}).Lines(), nothing);
    EXPECT_EQ(DecodeOn(kMrn, {ClStructureBuilder(148, 4).Strings({"\x01\x01\x01", "\x01\x01\x01\x01\x01"})}).Lines(),
              nothing);
    // The words of each setting.
    ClStructureBuilder structure(148, 26);
    structure.String(12, "241").String(13, "3").String(16, "1F.B3").String(18, "1").String(19, "20").String(20, "0");
    structure.String(21, "2").String(22, "3x").String(23, " 1").String(24, "+1").String(25, "x3");
    const ClItems items = DecodeOn(kMrn, {structure});
    const struct {
        const char *key, *text;
    } kCases[] = {
        {"BoardType",  "HOLTMERE FFRD (f1)"},
        {"BoardRev",   "PR1.1 (03)"        },
        {"PMIC",       "PR1.4 (03)"        },
        {"SecureBoot", "ON"                },
        {"BootMode",   "Recovery"          },
        {"Cadrel",     "OFF"               },
        {"CPUTurbo",   "Auto"              },
        {"MaxCState",  "C7"                },
        {"GfxTurbo",   "ON"                },
        {"S0ix",       "ON"                },
        {"RC6",        "ERR"               },
    };
    for (const auto& c : kCases) EXPECT_EQ(items.Text(c.key), c.text) << c.key;
}

// Pair n: a key named "Kn" and, unless it is empty, this value.
ClStructureBuilder& SetPair(ClStructureBuilder& structure, size_t n, const std::string& value) {
    structure.String(4 + 2 * n, std::string("K").append(std::to_string(n)));
    return value.empty() ? structure : structure.String(5 + 2 * n, value);
}

ClStructureBuilder Pairs(const std::map<size_t, std::string>& values) {
    ClStructureBuilder structure(148, 56);
    structure.String(4, "Tar\tvelle");
    for (const auto& [n, value] : values) SetPair(structure, n, value);
    return structure;
}

TEST(Type148, KeyValueLayoutTranslatesByPosition) {
    const std::map<size_t, std::string> all = {
        {1,
         "v\xE9"
         "1"        },
        {2,  ""     },
        {3,  "3"    },
        {4,  "4"    },
        {5,  "5"    },
        {6,  "6"    },
        {7,  "7"    },
        {8,  "8"    },
        {9,  "9"    },
        {10, "10"   },
        {11, "2"    },
        {12, "4"    },
        {13, "1"    },
        {14, "1F.02"},
        {15, "1"    },
        {16, "20"   },
        {17, "0"    },
        {18, "2"    },
        {19, "1"    },
        {20, "2"    },
        {21, "2"    },
        {22, "8"    },
        {23, "2"    },
        {24, "1"    },
        {25, ""     },
    };
    const std::string expected =
        kTitle +
        "Platform=Tar velle\nK1=v 1\nK2=None\nK3=3\nK4=4\nK5=5\nK6=6\nK7=7\nK8=8\nK9=9\nK10=10\n"
        "K11=Tarvelle FFD (02)\nK12=FABD (04)\nK13=TVL Notebook (01)\nK14=RUSSET NOOK (02) 1F\n"
        "K15=ON\nK16=Recovery\nK17=OFF\nK18=Auto\nK19=ON\nK20=ERR\nK21=C2\nK22=Fused\nK23=Auto\n"
        "K24=ON\nK25=None\n";
    for (const uint32_t signature : {kTvl, kTvlToo}) EXPECT_EQ(DecodeOn(signature, {Pairs(all)}).Lines(), expected);
    // The layout holds whatever its first byte is: 2 is the platform's string here.
    ClStructureBuilder second = ClStructureBuilder(148, 6).Byte(4, 2).Strings({"first", "second"});
    EXPECT_EQ(DecodeOn(kTvl, {second}).Lines(), kTitle + "Platform=second\n");
    EXPECT_EQ(DecodeOn(kTvl, {second.Byte(4, 0)}).Lines(), kTitle + "Platform=Not Available\n");
    // A value without a key gives no item; a pair that the length cuts has its key alone.
    EXPECT_EQ(DecodeOn(kTvl, {ClStructureBuilder(148, 9).Byte(7, 1).Byte(8, 1).Strings({"text"})}).Lines(),
              kTitle + "Platform=Not Available\ntext=None\n");
}

TEST(Type148, KeyValueLayoutTranslatesThreePairsForNumbersOnly) {
    const struct {
        size_t pair;
        std::string text, expected;
    } kCases[] = {
        {11,                          "0",             "0"                           },
        {11,                          "abc",           "abc"                         },
        {11,                          "-0x",           "-0x"                         },
        {11,                          " 7",            "Unknown TVL BOARD (07)"      },
        {11,                          "-1",            "Unknown TVL BOARD (ffffffff)"},
        {11,                          "1x",            "Tarvelle PR (01)"            },
        {11,                          "99999999999",   "BoardType is not valid"      },
        {12,                          "x3",            "x3"                          },
        {12,                          "3x",            "FABC (03)"                   },
        {12,                          "99999999999",   "Board Revision is not valid" },
        {13,                          "00\x01",        "00 "                         },
        {13,                          "20",            "Unknown CPU Flavor (14)"     },
        {13,                          std::string(150, 'x'),                           std::string(100, 'x')},
        {14,                       "1F",                                      "ERR"                                                                  },
        {14,                      "1F.B","PMIC String is not valid"},
        {21, "x3",                 "ERR"                                                                                   },
        {22,                      "9",                     "ERR"},
    };
    for (const auto& c : kCases)
        EXPECT_EQ(DecodeOn(kTvl,
                           {
                               Pairs({{c.pair, c.text}}
                               )
        })
                      .Lines(),
                  kTitle + "Platform=Tar velle\nK" + std::to_string(c.pair) + "=" + c.expected + "\n")
            << c.text;
    // The board that a pair shows as it is leaves the board as it was: 3, whose revisions have no text.
    EXPECT_EQ(DecodeOn(kTvl,
                       {
                           Pairs({{11, "3"}, {12, "1"}}
                           ), Pairs({{11, "0"}, {12, "1"}}
                           )
    })
                  .Texts("K12"),
              (std::vector<std::string>{"", ""}));
}

TEST(Type148, KeyValueLayoutEndsAtAFailedPair) {
    const ClStructureBuilder whole = Pairs({
        {12, "1"},
        {13, "1"},
        {22, "1"},
        {25, "1"}
    });
    const std::string items = "Platform=Tar velle\nK12=FABA (01)\n";
    const std::string next =
        "Firmware Version Information {Type 148}_2#GROUPNAME=\n" + items + "K13=TVL Notebook (01)\nK22=C1\nK25=ON\n";
    const struct {
        std::string flavor, coreState, lines;
    } kCases[] = {
        {"99999999999", "1",          items                            },
        {"1",           "x3",         items + "K13=TVL Notebook (01)\n"},
        {"1",           "2147483648", items + "K13=TVL Notebook (01)\n"},
        {"1",           " ",          items + "K13=TVL Notebook (01)\n"},
    };
    for (const auto& c : kCases) {
        const ClStructureBuilder failing = Pairs({
            {12, "1"        },
            {13, c.flavor   },
            {22, c.coreState},
            {25, "1"        }
        });
        EXPECT_EQ(DecodeOn(kTvl, {failing, whole}).Lines(), kTitle + c.lines + next) << c.flavor << c.coreState;
    }
}

// A structure that doesn't set the board or its revision uses what the structure before it left.
TEST(Type148, LaterStructuresSeeTheBoardLeftBehind) {
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
    EXPECT_TRUE(items.Has("Firmware Version Information {Type 148}_3#GROUPNAME"));
}

// Every number then names "(null string)", which is no number.
TEST(Type148, ShowsAStructureWithoutStrings) {
    ClStructureBuilder structure(148, 56);
    for (size_t offset = 4; offset < 56; offset++) structure.Byte(offset, 1);
    const ClItems platform = DecodeOn(kMrn, {structure});
    EXPECT_EQ(platform.Text("GOP"), "(null string)");
    EXPECT_EQ(platform.Text("BoardType"), "BoardType is not valid");
    EXPECT_EQ(platform.Text("PMIC"), "ERR");
    EXPECT_EQ(platform.Text("RC6"), "ERR");
    const ClItems pairs = DecodeOn(kTvl, {structure});
    EXPECT_EQ(pairs.Count(), 2u + 21u);  // title, platform, and the pairs in front of the 22nd
    EXPECT_EQ(pairs[12].value, "(null string)");
    EXPECT_EQ(pairs[14].value, "(null string)");
    EXPECT_EQ(pairs[15].value, "ERR");
}

TEST(Type148, GivesNothingForNull) {
    ClSMBIOSType148 decoder(kTvl);
    decoder.PrintStructure(nullptr);
    EXPECT_EQ(decoder.TakeNextItem(), nullptr);
}

}  // namespace
