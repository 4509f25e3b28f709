// Firmware Version Information: a vendor-defined structure (type 148) on a platform's firmware and settings. Nearly
// every byte is a string number, and settings are decimal text. The structure has three layouts; the processor and the
// structure's first byte decide between them.
#include <charconv>
#include <new>
#include <type_traits>
#include <utility>

#include "Packages/Format/Ascii.h"
#include "Sources/PackageTrace.h"
#include "Sources/SMBIOSType148.h"

#define TRACE(function, message) PACKAGE_TRACE("Sources\\SMBIOSType148", function, kError, "%s", message)

namespace {

constexpr std::string_view kNoWord = "ERR";

// Boards and their revisions, by processor family.

constexpr CodeText_t kMrnBoards[] = {
    {0,   "GRANITE DELL"       },
    {5,   "HOLT MERE RVP DDR3L"},
    {7,   "QPV- TROX"          },
    {32,  "OSPREY NOOK"        },
    {48,  "TANNERSLIP"         },
    {241, "HOLTMERE FFRD"      },
    {242, "HOLTMERE RVP"       },
    {245, "MARNHOLT FFRD8"     },
};
static_assert(IsRising(kMrnBoards));

constexpr CodeText_t kDnmBoards[] = {
    {1,   "DUNMARROW CR"        },
    {2,   "DUNMARROW COPOP"     },
    {3,   "DUNMARROW TABLET"    },
    {4,   "DUNMARROW ORVALE"    },
    {8,   "DUNMARROW FFD"       },
    {9,   "DUNMARROW FESTAL RVP"},
    {10,  "DUNMARROW FESTAL FFD"},
    {68,  "ELSMOOR ID"          },
    {85,  "ELSMOOR CR"          },
    {96,  "ELSMOOR RVP"         },
    {128, "ELSMOOR PLUM KNOLL"  },
    {130, "ELSMOOR PLUM ISLE"   },
    {238, "SV BOARD"            },
    {243, "DUNMARROW ERB"       },
    {244, "DUNMARROW CRB"       },
};
static_assert(IsRising(kDnmBoards));

constexpr CodeText_t kTvlBoards[] = {
    {0, "Tarvelle RVP"},
    {1, "Tarvelle PR" },
    {2, "Tarvelle FFD"},
};
static_assert(IsRising(kTvlBoards));

constexpr CodeText_t kFabs[] = {
    {0, "FAB1"},
    {1, "FAB2"},
    {2, "FAB3"},
};
static_assert(IsRising(kFabs));

constexpr CodeText_t kTvlFabs[] = {
    {0, "FAB B/C"},
    {1, "FABA"   },
    {2, "FABB"   },
    {3, "FABC"   },
    {4, "FABD"   },
};
static_assert(IsRising(kTvlFabs));

// The only board whose revisions have their own names.
constexpr uint32_t kMrnProductBoard = 241;

constexpr CodeText_t kMrnProductRevisions[] = {
    {0, "PR0"  },
    {1, "PR0.5"},
    {2, "PR1"  },
    {3, "PR1.1"},
};
static_assert(IsRising(kMrnProductRevisions));

enum class Line_t { kNone, kMrn, kDnm, kTvl };

// A family of processors, and the words for its boards.
struct Family_t {
    Line_t line;
    std::span<const CodeText_t> boards;
    std::string_view otherBoard;            // the word for a board that isn't listed
    std::span<const CodeText_t> revisions;  // of the listed boards
    std::string_view otherRevision;
    std::string_view revisionOfOtherBoard;  // empty: no text at all
};

Family_t FamilyOf(uint32_t processorSignature) {
    using enum Line_t;
    switch (processorSignature) {
        case 0x30670: return {kMrn, kMrnBoards, "Unknown MRN BOARD", kFabs, "Unknown FAB", "Unknown MRN FAB"};
        case 0x406C0: return {kDnm, kDnmBoards, "Unknown DNM BOARD", kFabs, "Unknown DNM FAB", "Unknown FAB"};
        case 0x506C0:
        case 0x706A0: return {kTvl, kTvlBoards, "Unknown TVL BOARD", kTvlFabs, "Unknown DNM FAB", {}};
        default: return {kNone, {}, "Unknown BOARD", {}, {}, "Unknown FAB"};
    }
}

// Settings and the words of their numbers.

constexpr CodeText_t kOffOn[] = {
    {0, "OFF"},
    {1, "ON" },
};
static_assert(IsRising(kOffOn));

constexpr CodeText_t kOffOnAuto[] = {
    {0, "OFF" },
    {1, "ON"  },
    {2, "Auto"},
};
static_assert(IsRising(kOffOnAuto));

constexpr CodeText_t kBootModes[] = {
    {0,  "Normal Boot"},
    {1,  "Fast Boot"  },
    {20, "Recovery"   },
};
static_assert(IsRising(kBootModes));

constexpr CodeText_t kMaxCStates[] = {
    {0, "C1"},
    {2, "C6"},
    {3, "C7"},
};
static_assert(IsRising(kMaxCStates));

constexpr CodeText_t kMaxPkgCStates[] = {
    {0, "C0"},
    {1, "C1"},
    {2, "C2"},
};
static_assert(IsRising(kMaxPkgCStates));

constexpr CodeText_t kMaxCoreCStates[] = {
    {0, "C0"   },
    {1, "C1"   },
    {2, "C3"   },
    {3, "C6"   },
    {4, "C7"   },
    {5, "C8"   },
    {6, "C9"   },
    {7, "C10"  },
    {8, "Fused"},
};
static_assert(IsRising(kMaxCoreCStates));

constexpr CodeText_t kCpuFlavors[] = {
    {0, "TVL Tablet"  },
    {1, "TVL Notebook"},
    {2, "TVL Desktop" },
};
static_assert(IsRising(kCpuFlavors));

constexpr CodeText_t kPmics[] = {
    {0,    "DIALOG"},
    {0x1F, "ROHM"  },
    {0x2B, "DIALOG"},
};
static_assert(IsRising(kPmics));

constexpr CodeText_t kTvlPmics[] = {
    {0, "AMBER NOOK" },
    {2, "RUSSET NOOK"},
};
static_assert(IsRising(kTvlPmics));

// What a translator traces for a text that it can't read; empty for no trace.
struct TextTraces_t {
    char function[48];
    char nullText[28];
    char badNumber[56];
};

constexpr TextTraces_t kBoardTypeTraces = {"ClSMBIOSType148::GetBoardTypeString", "\npBoardTyper is NULL", ""};
constexpr TextTraces_t kBoardRevTraces = {"ClSMBIOSType148::GetBoardRevString", "\npBoardRev is NULL",
                                          "\npBoardRev is not having proper interger value"};
constexpr TextTraces_t kCPUFlavorTraces = {"ClSMBIOSType148::GetCPUFlavorString", "\npCpuFlavor is NULL",
                                           "\npCpuFlavor is not having proper interger value"};
constexpr TextTraces_t kMaxCoreCStateTraces = {"ClSMBIOSType148::GetMaxCoreCState", "\npMaxCoreCState is NULL",
                                               "\npMaxCoreCState is not having proper interger value"};
constexpr TextTraces_t kBootModeTraces = {"ClSMBIOSType148::GetBootMode", "\npBootMode is NULL",
                                          "\npBootMode is not having proper interger value"};
constexpr TextTraces_t kSecureBootTraces = {"ClSMBIOSType148::GetSecureBootStatus", "\npSecureBoot is NULL", ""};
constexpr TextTraces_t kCadrelTraces = {"ClSMBIOSType148::GetCadrelStatus", "\npCadrelStatus is NULL",
                                        "\npCadrelStatus is not having proper interger value"};
constexpr TextTraces_t kCPUTurboTraces = {"ClSMBIOSType148::GetCPUTurboStatus", "\npCPUTurbo is NULL",
                                          "\npCPUTurbo is not having proper interger value"};
constexpr TextTraces_t kGfxTurboTraces = {"ClSMBIOSType148::GetGfxTurboStatus", "\npGfxTurbo is NULL",
                                          "\npGfxTurbo is not having proper interger value"};
constexpr TextTraces_t kMaxCStateTraces = {"ClSMBIOSType148::GetMaxCState", "\npMaxCState is NULL",
                                           "\npMaxCState is not having proper interger value"};
constexpr TextTraces_t kMaxPkgCStateTraces = {"ClSMBIOSType148::GetMaxPkgCState", "\npMaxPkgCState is NULL",
                                              "\npMaxPkgCState is not having proper interger value"};
constexpr TextTraces_t kS0ixTraces = {"ClSMBIOSType148::GetS0ix", "\npS0ix is NULL",
                                      "\npS0ix is not having proper interger value"};
constexpr TextTraces_t kRC6Traces = {"ClSMBIOSType148::GetRC6", "\npRC6 is NULL",
                                     "\npRC6 is not having proper interger value"};

enum class Parsed { kNumber, kNoDigits, kOutOfRange };

// Parses the 32-bit signed number at the start of `text`, after white space and a sign, and ignores what follows it.
// from_chars depends neither on the locale nor on the width of a platform's `long`.
Parsed ParseNumber(std::string_view text, int base, int32_t* number) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    const std::errc error = std::from_chars(text.data(), text.data() + text.size(), *number, base).ec;
    if (error == std::errc::result_out_of_range) return Parsed::kOutOfRange;
    return error == std::errc() ? Parsed::kNumber : Parsed::kNoDigits;
}

bool ReadNumber(const char* text, const TextTraces_t& traces, int32_t* number) {
    if (text == nullptr) {
        TRACE(traces.function, traces.nullText);
        return false;
    }
    if (ParseNumber(text, 10, number) == Parsed::kNumber) return true;
    if (traces.badNumber[0] != '\0') TRACE(traces.function, traces.badNumber);
    return false;
}

// Whether `text` begins with a number other than 0, however large.
bool StartsWithNumber(const char* text) {
    int32_t number = 0;
    const Parsed parsed = ParseNumber(text, 10, &number);
    return parsed == Parsed::kOutOfRange || (parsed == Parsed::kNumber && number != 0);
}

std::string SettingText(const char* text, const TextTraces_t& traces, std::span<const CodeText_t> words) {
    int32_t number = 0;
    if (!ReadNumber(text, traces, &number)) return std::string(kNoWord);
    return std::string(TextOf(words, static_cast<uint32_t>(number), kNoWord));
}

// Calls a translator, whatever its form. Status: 1; 2 for a text without a number to translate.
using Translate_t = status_t (*)(ClSMBIOSType148& decoder, const char* text, std::string* out);

template <auto Translator>
status_t Call(ClSMBIOSType148& decoder, const char* text, std::string* out) {
    using Form_t = decltype(Translator);
    if constexpr (std::is_invocable_v<Form_t, const char*, std::string*>)
        return Translator(text, out);
    else if constexpr (std::is_member_function_pointer_v<Form_t>)
        *out = (decoder.*Translator)(text);
    else
        *out = Translator(text);
    return kSuccess;
}

// Translates a text that begins with a number other than 0, and copies any other.
template <auto Translator>
status_t CallIfNumber(ClSMBIOSType148& decoder, const char* text, std::string* out) {
    if (StartsWithNumber(text)) return Call<Translator>(decoder, text, out);
    *out = ClSMBIOSType148::GetPrintableString(text);
    return kSuccess;
}

struct Translation_t {
    Translate_t translate;
    std::string_view words;  // how the value reads
    std::span<const CodeText_t> table = {};
    const char* failureTrace = nullptr;  // null: the translation never fails
};

using Decoder_t = ClSMBIOSType148;
constexpr std::string_view kSettingWords = "string with a decimal number: a word of the list, else `ERR`";
constexpr std::string_view kBoardWords =
    "string with a decimal number: a board of the processor's family, then the number in lower-case hexadecimal in "
    "parentheses; `Unknown MRN BOARD`, `Unknown DNM BOARD`, `Unknown TVL BOARD` or, without a family, `Unknown BOARD` "
    "for other boards; `BoardType is not valid` without a number";
constexpr std::string_view kRevisionWords =
    "string with a decimal number: a revision of that board, then the number in lower-case hexadecimal in parentheses; "
    "`Unknown FAB`, `Unknown MRN FAB` or `Unknown DNM FAB` for others; nothing for an unknown board of the third "
    "family; `Board Revision is not valid` without a number";
// The translations of the layouts. Those ...IfNumber show a string without a number other than 0 as it is.
enum Translator_t : uint8_t {
    Text,
    BoardType,
    BoardRevision,
    PMIC,
    SecureBoot,
    BootMode,
    Cadrel,
    CPUTurbo,
    GfxTurbo,
    MaxCState,
    MaxPkgCState,
    S0ix,
    RC6,
    MaxCoreCState,
    BoardTypeIfNumber,
    BoardRevisionIfNumber,
    CPUFlavorIfNumber,
};

Translation_t TranslationBy(Translator_t translator) {
    switch (translator) {
        case Text: return {Call<Decoder_t::GetPrintableString>, "string"};
        case BoardType: return {Call<&Decoder_t::GetBoardTypeString>, kBoardWords};
        case BoardRevision: return {Call<&Decoder_t::GetBoardRevString>, kRevisionWords};
        case PMIC:
            return {Call<&Decoder_t::GetPMICString>,
                    "string of two characters, a point and two characters. One half is the number of the chip in "
                    "hexadecimal: its word, the number in parentheses and the other half; `PR1.4 (3)` for `1F.B3` on "
                    "revision 3 of board 241; `ERR` for other chips; `PMIC String is not valid` for a shorter string"};
        case SecureBoot: return {Call<Decoder_t::GetSecureBootStatus>, kSettingWords, kOffOn};
        case BootMode: return {Call<Decoder_t::GetBootMode>, kSettingWords, kBootModes};
        case Cadrel: return {Call<Decoder_t::GetCadrelStatus>, kSettingWords, kOffOn};
        case CPUTurbo: return {Call<Decoder_t::GetCPUTurboStatus>, kSettingWords, kOffOnAuto};
        case GfxTurbo: return {Call<Decoder_t::GetGfxTurboStatus>, kSettingWords, kOffOnAuto};
        case MaxCState: return {Call<Decoder_t::GetMaxCState>, kSettingWords, kMaxCStates};
        case MaxPkgCState: return {Call<Decoder_t::GetMaxPkgCState>, kSettingWords, kMaxPkgCStates};
        case S0ix: return {Call<Decoder_t::GetS0ix>, kSettingWords, kOffOn};
        case RC6: return {Call<Decoder_t::GetRC6>, kSettingWords, kOffOn};
        case MaxCoreCState:
            return {Call<Decoder_t::GetMaxCoreCState>, kSettingWords, kMaxCoreCStates, "\nGetMaxCoreCState Failed"};
        case BoardTypeIfNumber:
            return {CallIfNumber<&Decoder_t::GetBoardTypeString>,
                    "as BoardType if the string begins with a number other than 0, else the string"};
        case BoardRevisionIfNumber:
            return {CallIfNumber<&Decoder_t::GetBoardRevString>,
                    "as BoardRev if the string begins with a number other than 0, else the string"};
        case CPUFlavorIfNumber:
            return {CallIfNumber<Decoder_t::GetCPUFlavorString>,
                    "if the string begins with a decimal number other than 0: a word of the list, else `Unknown CPU "
                    "Flavor`, then the number in lower-case hexadecimal in parentheses; else the string",
                    kCpuFlavors, "\nGetCPUFlavorString Failed"};
    }
    return {};
}

// Layouts with fixed keys. Some keys without a string become group items.
constexpr uint8_t kPlainItem = 0, kGroupItem = 1;

struct FieldRow_t {
    char key[16];  // characters in place of a pointer, which would cost a relocation at start-up
    uint8_t offset;
    Translator_t translator;
    uint8_t groupWithoutString;

    std::string_view Key() const { return key; }
};

// The byte at kLayout selects the layout of a board; in the layout of a platform it is the first field.
constexpr size_t kLayout = 4;
constexpr uint8_t kBoardLayout = 2;

// The layout of a board.
constexpr FieldRow_t kBoardFields[] = {
    {"OMFI",         5,  Text, kPlainItem},
    {"BMCFW",        6,  Text, kPlainItem},
    {"CVXFW",        7,  Text, kPlainItem},
    {"FRUSDR",       8,  Text, kPlainItem},
    {"FRU",          9,  Text, kPlainItem},
    {"SDR",          10, Text, kPlainItem},
    {"CPUuCode1",    11, Text, kPlainItem},
    {"CPUuCode2",    12, Text, kPlainItem},
    {"CPUuCode3",    13, Text, kPlainItem},
    {"BIOSHCM",      14, Text, kPlainItem},
    {"LOADHCM",      15, Text, kPlainItem},
    {"MTC",          16, Text, kPlainItem},
    {"LNKRF",        17, Text, kPlainItem},
    {"PSUFW",        18, Text, kPlainItem},
    {"Reserve1",     19, Text, kPlainItem},
    {"Reserve2",     20, Text, kPlainItem},
    {"Reserve3",     21, Text, kPlainItem},
    {"Reserve4",     22, Text, kPlainItem},
    {"Reserve5",     23, Text, kPlainItem},
    {"DKSvSATAROM",  24, Text, kPlainItem},
    {"DKSvSSATAROM", 25, Text, kPlainItem},
    {"DKSvSATAEFI",  26, Text, kPlainItem},
    {"DKSvSSATAEFI", 27, Text, kPlainItem},
    {"SATAAHCI",     28, Text, kPlainItem},
    {"BrendPxe",     29, Text, kPlainItem},
    {"HolmPxe",      30, Text, kPlainItem},
    {"ArdenPxe",     31, Text, kPlainItem},
    {"1GEFI",        32, Text, kPlainItem},
    {"10GEFI",       33, Text, kPlainItem},
    {"iBMCVideo",    34, Text, kPlainItem},
    {"iBMCGOP",      35, Text, kPlainItem},
};

// The layout of a platform.
constexpr FieldRow_t kPlatformFields[] = {
    {"GOP",        4,  Text,          kPlainItem},
    {"KRN",        7,  Text,          kPlainItem},
    {"MTC",        6,  Text,          kPlainItem},
    {"uCode",      5,  Text,          kPlainItem},
    {"VPCU",       10, Text,          kPlainItem},
    {"PMC",        9,  Text,          kPlainItem},
    {"LPCTL",      8,  Text,          kPlainItem},
    {"SoC",        11, Text,          kPlainItem},
    {"BoardType",  12, BoardType,     kPlainItem},
    {"BoardRev",   13, BoardRevision, kPlainItem},
    {"CPUFlavor",  14, Text,          kPlainItem},
    {"BIOS",       15, Text,          kPlainItem},
    {"PMIC",       16, PMIC,          kPlainItem},
    {"Touch",      17, Text,          kPlainItem},
    {"SecureBoot", 18, SecureBoot,    kPlainItem},
    {"BootMode",   19, BootMode,      kPlainItem},
    {"Cadrel",     20, Cadrel,        kPlainItem},
    {"CPUTurbo",   21, CPUTurbo,      kPlainItem},
    {"MaxCState",  22, MaxCState,     kGroupItem},
    {"GfxTurbo",   23, GfxTurbo,      kPlainItem},
    {"S0ix",       24, S0ix,          kGroupItem},
    {"RC6",        25, RC6,           kGroupItem},
};

// The layout whose keys come from the structure: the byte before a value's string number is that of its key.
constexpr size_t kPlatform = 4;

struct PairRow_t {
    uint8_t valueOffset;
    Translator_t translator;
};

// A pair whose key has no string gives no item. A text without a number where one is needed ends the structure.
constexpr PairRow_t kPairs[] = {
    {7,  Text                 },
    {9,  Text                 },
    {11, Text                 },
    {13, Text                 },
    {15, Text                 },
    {17, Text                 },
    {19, Text                 },
    {21, Text                 },
    {23, Text                 },
    {25, Text                 },
    {27, BoardTypeIfNumber    },
    {29, BoardRevisionIfNumber},
    {31, CPUFlavorIfNumber    },
    {33, PMIC                 },
    {35, SecureBoot           },
    {37, BootMode             },
    {39, Cadrel               },
    {41, CPUTurbo             },
    {43, Cadrel               },
    {45, Cadrel               },
    {47, MaxPkgCState         },
    {49, MaxCoreCState        },
    {51, GfxTurbo             },
    {53, S0ix                 },
    {55, RC6                  },
};

}  // namespace

void ClSMBIOSType148::PrintStructure(const uint8_t* pData) {
    if (pData == nullptr) {
        TRACE("ClSMBIOSType148::PrintStructure", "\nData is NULL");
        return;
    }
    PrintHead(pData);
    try {
        if (FamilyOf(m_processorSignature).line != Line_t::kTvl)
            PrintStructureExt(pData);
        else if (PrintStructureExtEx(pData) != kSuccess)
            TRACE("ClSMBIOSType148::PrintStructure", "\nPrintStructureExtEx Failed");
    } catch (const std::bad_alloc&) {
        TRACE("ClSMBIOSType148::PrintStructure", "\nNULL Pointer: pData");
    }
}

void ClSMBIOSType148::PrintStructureExt(const uint8_t* pData) {
    const ClStructure structure = View(pData);
    const std::span<const FieldRow_t> board = kBoardFields, platform = kPlatformFields;
    for (const FieldRow_t& row : structure.Byte(kLayout) == kBoardLayout ? board : platform) {
        const uint8_t number = structure.Byte(row.offset);
        if (number == 0) {
            Fill_String_Data(row.Key(), "None", row.groupWithoutString);
            continue;
        }
        std::string value;
        TranslationBy(row.translator).translate(*this, GetString(number, pData), &value);
        Fill_String_Data(row.Key(), value, 0);
    }
}

status_t ClSMBIOSType148::PrintStructureExtEx(const uint8_t* pData) {
    const ClStructure structure = View(pData);
    const uint8_t platform = structure.Byte(kPlatform);
    Fill_String_Data("Platform", platform == 0 ? "Not Available" : GetPrintableString(GetString(platform, pData)), 0);
    for (const PairRow_t& pair : kPairs) {
        const uint8_t key = structure.Byte(pair.valueOffset - 1u), number = structure.Byte(pair.valueOffset);
        if (key == 0) continue;
        const Translation_t translation = TranslationBy(pair.translator);
        std::string value = "None";
        if (number != 0 && translation.translate(*this, GetString(number, pData), &value) != kSuccess) {
            TRACE("ClSMBIOSType148::PrintStructureExtEx", translation.failureTrace);
            return kFailure;
        }
        Fill_String_Data(GetPrintableString(GetString(key, pData)), value, 0);
    }
    return kSuccess;
}

std::string ClSMBIOSType148::GetPrintableString(const char* text) {
    constexpr size_t kMostCharacters = 100;
    std::string printable(std::string_view(text).substr(0, kMostCharacters));
    for (char& character : printable)
        if (!IsPrintableAscii(character)) character = ' ';
    return printable;
}

std::string ClSMBIOSType148::GetHexSuffix(uint32_t value, uint32_t width) {
    return std::string(" (").append(PlainHex(value, width)).append(")");
}

std::string ClSMBIOSType148::GetBoardTypeString(const char* text) {
    int32_t number = 0;
    if (!ReadNumber(text, kBoardTypeTraces, &number)) return "BoardType is not valid";
    BoardId = static_cast<uint32_t>(number);
    const Family_t family = FamilyOf(m_processorSignature);
    return std::string(TextOf(family.boards, BoardId, family.otherBoard)) + GetHexSuffix(BoardId, 2);
}

std::string ClSMBIOSType148::GetBoardRevString(const char* text) {
    int32_t number = 0;
    if (!ReadNumber(text, kBoardRevTraces, &number)) return "Board Revision is not valid";
    BoardRev = static_cast<uint32_t>(number);
    const Family_t family = FamilyOf(m_processorSignature);
    std::string_view label = family.revisionOfOtherBoard;
    if (family.line == Line_t::kMrn && BoardId == kMrnProductBoard)
        label = TextOf(kMrnProductRevisions, BoardRev, family.otherRevision);
    else if (!TextOf(family.boards, BoardId, {}).empty())
        label = TextOf(family.revisions, BoardRev, family.otherRevision);
    if (label.empty()) return {};
    return std::string(label) + GetHexSuffix(BoardRev, 2);
}

// Two characters have no room for a number after 0x: that reads as the digit 0.
std::string ClSMBIOSType148::GetPMICString(const char* text) {
    if (text == nullptr) return "Null Pointer";
    const std::string_view pmic = text;
    if (pmic.size() < 3 || pmic[2] != '.') return std::string(kNoWord);
    if (pmic.size() < 5) return "PMIC String is not valid";
    const bool isTvl = FamilyOf(m_processorSignature).line == Line_t::kTvl;
    std::string_view chip = pmic.substr(0, 2), other = pmic.substr(3, 2);
    // Revision 3 of the product board has a later revision, which only its chip identifies.
    if (!isTvl && BoardId == kMrnProductBoard && BoardRev == 3 && chip == "1F" && other == "B3")
        return "PR1.4" + GetHexSuffix(BoardRev, 2);
    if (isTvl) std::swap(chip, other);
    int32_t number = 0;
    if (ParseNumber(chip, 16, &number) != Parsed::kNumber) return std::string(kNoWord);
    const std::span<const CodeText_t> pmics = kPmics, tvlPmics = kTvlPmics;
    std::string result(TextOf(isTvl ? tvlPmics : pmics, static_cast<uint32_t>(number), kNoWord));
    return result.append(" (").append(chip).append(") ").append(other);
}

std::string ClSMBIOSType148::GetBootMode(const char* text) { return SettingText(text, kBootModeTraces, kBootModes); }

std::string ClSMBIOSType148::GetSecureBootStatus(const char* text) {
    return SettingText(text, kSecureBootTraces, kOffOn);
}

std::string ClSMBIOSType148::GetCadrelStatus(const char* text) { return SettingText(text, kCadrelTraces, kOffOn); }

std::string ClSMBIOSType148::GetCPUTurboStatus(const char* text) {
    return SettingText(text, kCPUTurboTraces, kOffOnAuto);
}

std::string ClSMBIOSType148::GetGfxTurboStatus(const char* text) {
    return SettingText(text, kGfxTurboTraces, kOffOnAuto);
}

std::string ClSMBIOSType148::GetMaxCState(const char* text) { return SettingText(text, kMaxCStateTraces, kMaxCStates); }

std::string ClSMBIOSType148::GetMaxPkgCState(const char* text) {
    return SettingText(text, kMaxPkgCStateTraces, kMaxPkgCStates);
}

std::string ClSMBIOSType148::GetS0ix(const char* text) { return SettingText(text, kS0ixTraces, kOffOn); }

std::string ClSMBIOSType148::GetRC6(const char* text) { return SettingText(text, kRC6Traces, kOffOn); }

status_t ClSMBIOSType148::GetCPUFlavorString(const char* text, std::string* out) {
    int32_t number = 0;
    if (!ReadNumber(text, kCPUFlavorTraces, &number)) return kBadValue;
    const auto flavor = static_cast<uint32_t>(number);
    *out = std::string(TextOf(kCpuFlavors, flavor, "Unknown CPU Flavor")) + GetHexSuffix(flavor, 2);
    return kSuccess;
}

status_t ClSMBIOSType148::GetMaxCoreCState(const char* text, std::string* out) {
    int32_t number = 0;
    if (!ReadNumber(text, kMaxCoreCStateTraces, &number)) return kBadValue;
    *out = TextOf(kMaxCoreCStates, static_cast<uint32_t>(number), kNoWord);
    return kSuccess;
}

ClSMBIOSType* NewType148(const DecoderInput_t& input) {
    return new (std::nothrow) ClSMBIOSType148(input.processorSignature);
}

static void DescribeFields(ClDescription& description, std::span<const FieldRow_t> rows) {
    for (const FieldRow_t& row : rows) {
        const std::string_view none = row.groupWithoutString == kGroupItem
                                          ? "; `None`, as a group item, without a string"
                                          : "; `None` without a string";
        const Translation_t translation = TranslationBy(row.translator);
        description.Item(row.key, ClSMBIOSType::GetHexString(row.offset, 2),
                         std::string(translation.words).append(none));
        if (!translation.table.empty()) description.Words(row.key, translation.table);
    }
}

void DescribeType148(ClDescription& description) {
    description.Rows({}, "The layout of a board: 02h at 04h, all processors but 506C0h and 706A0h");
    DescribeFields(description, kBoardFields);
    description.Rows({}, "The layout of a platform: any other byte at 04h, the same processors");
    DescribeFields(description, kPlatformFields);
    description.Rows({},
                     "The layout of pairs: the processors 506C0h and 706A0h. The structure ends at a string without a "
                     "number at 1Fh or 31h.");
    description.Item("Platform", "04h", "string; `Not Available` without one");
    for (const PairRow_t& row : kPairs) {
        const std::string at = ClSMBIOSType::GetHexString(row.valueOffset, 2),
                          keyAt = ClSMBIOSType::GetHexString(row.valueOffset - 1u, 2);
        const Translation_t translation = TranslationBy(row.translator);
        description.Item("(the string numbered at " + keyAt + ")", at,
                         std::string(translation.words).append("; `None` without a string"));
        if (!translation.table.empty()) description.Words("Value at " + at, translation.table);
    }
    description.Words("Boards of the processor 30670h", kMrnBoards);
    description.Words("Boards of the processor 406C0h", kDnmBoards);
    description.Words("Boards of the processors 506C0h and 706A0h", kTvlBoards);
    description.Words("Revisions of board 241 of the processor 30670h", kMrnProductRevisions);
    description.Words("Revisions of other boards of the processors 30670h and 406C0h", kFabs);
    description.Words("Revisions of boards of the processors 506C0h and 706A0h", kTvlFabs);
    description.Words("PMIC chips of the processors 506C0h and 706A0h, whose number is the second half", kTvlPmics);
    description.Words("PMIC chips of other processors, whose number is the first half", kPmics);
}
