// BIOS Language Information (the SMBIOS standard, type 13).
#include "Sources/SMBIOSType013.h"

namespace {

struct LanguageName_t {
    char code[6], name[24];
};

// In the order of the search: French of a country comes before the other language of that country.
constexpr LanguageName_t kLanguages[] = {
    {"us",    "English, United States" },
    {"gb",    "English, United Kingdom"},
    {"se",    "Swedish, Sweden"        },
    {"fi",    "Finnish, Finland"       },
    {"es",    "Spanish, Spain"         },
    {"pt",    "Portuguese, Portugal"   },
    {"no",    "Norwegian, Norway"      },
    {"nl",    "Dutch, Netherlands"     },
    {"it",    "Italian, Italy"         },
    {"gr",    "German, Germany"        },
    {"fr",    "French, France"         },
    {"dk",    "Dannish, Denmark"       },
    {"fr|ca", "French, Canada"         },
    {"frca",  "French, Canada"         },
    {"ca",    "English, Canada"        },
    {"fr|be", "French, Belgium"        },
    {"frbe",  "French, Belgium"        },
    {"be",    "Dutch, Belgium"         },
    {"la",    "Spanish, Latin"         },
    {"au",    "English, Australia"     },
    {"fr|ch", "French, Switzerland"    },
    {"frch",  "French, Switzerland"    },
    {"ch",    "German, Switzerland"    },
    {"br",    "Spanish, Brazil"        },
    {"tr",    "Turkish, Turkey"        },
    {"jp",    "Japanese, Japan"        },
};

bool HoldsAt(std::string_view text, size_t place, std::string_view code) {
    return place < text.size() && text.substr(place).starts_with(code);
}

// A language string is "en|us|iso8859-1", or "enus" in its abbreviated form. A 2-letter code is that of the country.
bool Matches(std::string_view language, std::string_view code) {
    if (code.size() > 2) return language.starts_with(code);
    return HoldsAt(language, 3, code) || HoldsAt(language, 2, code);
}

// The lower-case string and its language's name; `otherwise` for a string that begins with a parenthesis, as the texts
// do that GetString returns for a missing string.
std::string LanguageText(const char* language, std::string_view otherwise) {
    if (language[0] == '(') return std::string(otherwise);
    std::string text = language;
    for (char& letter : text)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    const std::string name = ClSMBIOSType13::GetLanguageName(text.c_str());
    return text.append(" (").append(name).append(")");
}

ClText ShowCurrentLanguage(const Field_t& field) {
    const uint8_t current = field.Byte(), installable = field.structure.Byte(0x04);
    if (current == 0 || current > installable) return "(Invalid Current Language)";
    return LanguageText(ClSMBIOSType::GetString(current, field.structure.Data()), "(Language(s) not set)");
}

ClText ShowFlags(const Field_t& field) {
    const bool hasFlags = static_cast<const ClSMBIOSType13&>(field.decoder).IsVersion21OrLater();
    return hasFlags ? ClSMBIOSType::GetHexString(field.Byte(), 2) : "None";
}

constexpr Rendering_t CurrentLanguage{ShowCurrentLanguage}, Flags{ShowFlags};

constexpr std::string_view kLanguageKey = "Language";

constexpr ItemRow_t kItems[] = {
    {"Current Language",                0x15, CurrentLanguage},
    {"Flags",                           0x05, Flags          },
    {"Number of Installable Languages", 0x04, Dec8           },
};

}  // namespace

bool ClSMBIOSType13::IsVersion21OrLater() const {
    return m_smbiosMajor > 2 || (m_smbiosMajor == 2 && m_smbiosMinor >= 1);
}

std::string ClSMBIOSType13::GetLanguageName(const char* ccStr) {
    if (ccStr != nullptr)
        for (const LanguageName_t& language : kLanguages)
            if (Matches(ccStr, language.code)) return std::string(language.name);
    return "Unknown Language";
}

void ClSMBIOSType13::PrintStructure(const uint8_t* pData) {
    if (!PrintHead(pData)) return;
    const ClStructure structure = View(pData);
    PrintItems(RowsOf<kItems>(), structure);
    ClStringWalk languages(pData);
    for (uint8_t left = structure.Byte(0x04); left > 0; left--)
        OrDrop(
            [&] { Fill_String_Data(kLanguageKey, LanguageText(languages.NextText(), " (Language(s) not set)"), 0); });
}

ClSMBIOSType* NewType13(const DecoderInput_t& input) {
    return new (std::nothrow) ClSMBIOSType13(input.smbiosMajor, input.smbiosMinor);
}

void DescribeType13(ClDescription& description) {
    description.Explain(
        ShowCurrentLanguage,
        "string in lower case, then its language in parentheses; `(Invalid Current Language)` for a number that isn't "
        "one of the installable languages; `(Language(s) not set)` for a string that begins with a parenthesis");
    description.Explain(ShowFlags, "hexadecimal, 2 digits; `None` in tables of versions before 2.1");
    description.Rows(RowsOf<kItems>());
    description.Item(
        kLanguageKey, {},
        "string in lower case, then its language in parentheses; ` (Language(s) not set)` for one that begins "
        "with a parenthesis; one item for each language");
    std::string languages = "**Languages**, by the code of the country, in the order of the search:";
    for (const LanguageName_t& language : kLanguages)
        languages.append(" `").append(language.code).append("` ").append(language.name).append(";");
    description.Note(languages.append(" else Unknown Language."));
}
