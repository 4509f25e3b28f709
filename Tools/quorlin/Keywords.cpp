#include "Tools/quorlin/Keywords.h"

#include <algorithm>
#include <array>

#include "Packages/Format/Ascii.h"
#include "Tools/quorlin/FactTexts.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Table.h"

namespace {

struct Keyword_t {
    Choice_t choice;
    uint8_t type;
    char key[40];  // of the fact
};
constexpr auto kKeywords = std::to_array<Keyword_t>({
    {{"bios-vendor"},             0, "vendor"                              },
    {{"bios-version"},            0, "firmware_version"                    },
    {{"bios-release-date"},       0, "firmware_release_date"               },
    {{"bios-revision"},           0, "platform_firmware_release"           },
    {{"firmware-revision"},       0, "embedded_controller_firmware_release"},
    {{"system-manufacturer"},     1, "manufacturer"                        },
    {{"system-product-name"},     1, "product_name"                        },
    {{"system-version"},          1, "version"                             },
    {{"system-serial-number"},    1, "serial_number"                       },
    {{"system-uuid"},             1, "uuid"                                },
    {{"system-sku-number"},       1, "sku_number"                          },
    {{"system-family"},           1, "family"                              },
    {{"baseboard-manufacturer"},  2, "manufacturer"                        },
    {{"baseboard-product-name"},  2, "product"                             },
    {{"baseboard-version"},       2, "version"                             },
    {{"baseboard-serial-number"}, 2, "serial_number"                       },
    {{"baseboard-asset-tag"},     2, "asset_tag"                           },
    {{"chassis-manufacturer"},    3, "manufacturer"                        },
    {{"chassis-type"},            3, "chassis_type"                        },
    {{"chassis-version"},         3, "version"                             },
    {{"chassis-serial-number"},   3, "serial_number"                       },
    {{"chassis-asset-tag"},       3, "asset_tag_number"                    },
    {{"processor-family"},        4, "family"                              },
    {{"processor-manufacturer"},  4, "processor_manufacturer"              },
    {{"processor-version"},       4, "processor_version"                   },
    {{"processor-frequency"},     4, "current_speed"                       },
});

const Keyword_t* FindKeyword(const std::string& word) {
    const auto place =
        std::ranges::find_if(kKeywords, [&](const Keyword_t& keyword) { return word == keyword.choice.word; });
    return place == kKeywords.end() ? nullptr : &*place;
}

// A processor family by its short name: "Xeon MP" of "Intel® Xeon® processor MP".
std::string FamilyText(std::string_view words) {
    static constexpr char kMarks[][5] = {"®", "™", "(TM)"};
    static constexpr char kDropped[][10] = {"Intel",  "AMD",    "VIA",    "processor", "Processor",
                                            "Family", "family", "Series", "APU"};
    std::string text;
    while (!words.empty()) {
        const size_t end = std::min(words.find(' '), words.size());
        std::string word(words.substr(0, end));
        words.remove_prefix(std::min(end + 1, words.size()));
        for (const char* mark : kMarks)
            if (const size_t place = word.find(mark); place != word.npos)
                word.erase(place, std::string_view(mark).size());
        if (std::ranges::find(kDropped, std::string_view(word)) != std::end(kDropped)) continue;
        if (word == "mobile") word = "Mobile";
        text.append(text.empty() ? "" : " ").append(word);
    }
    return text;
}

// What a keyword prints for a fact. Empty if it prints nothing.
std::string KeywordText(const ClFacts& facts, const Fact_t& fact) {
    std::string text(fact.text);
    switch (fact.kind) {
        case FactKind_t::kText:
            if (fact.state == FactState_t::kNone) return "Not Specified";
            if (fact.state == FactState_t::kBroken) return "<BAD INDEX>";
            for (char& c : text)
                if (!IsPrintableAscii(c)) c = '.';
            return text;
        case FactKind_t::kUuid:
            if (text.find_first_not_of("0-") == text.npos) return "Not Settable";
            return text.find_first_not_of("f-") == text.npos ? "Not Present" : text;
        case FactKind_t::kNumber: return fact.IsValue() ? ShownValue(facts, fact) : "Unknown";
        case FactKind_t::kCode:
            if (fact.state == FactState_t::kReserved) return "<OUT OF SPEC>";
            if (fact.Key() == "family") text = FamilyText(text);
            return text.empty() ? std::string(fact.text) : text;
        default: return fact.IsValue() ? text : "";
    }
}

}  // namespace

Choices_t KeywordChoices() {
    static constexpr auto kChoices = [] {
        std::array<Choice_t, kKeywords.size()> choices = {};
        std::ranges::transform(kKeywords, choices.begin(), &Keyword_t::choice);
        return choices;
    }();
    return kChoices;
}

std::string KeywordList() {
    std::string list;
    for (const Keyword_t& keyword : kKeywords) list.append(list.empty() ? "" : ", ").append(keyword.choice.word);
    return list;
}

bool IsKeyword(const std::string& word) { return FindKeyword(word) != nullptr; }

int PrintKeyword(const Source_t& source, const std::string& keyword) {
    const Keyword_t& row = *FindKeyword(keyword);
    ClOutput output;
    const int exitCode = ForEachTable(source, kExitTrouble, [&](ClTable& table) {
        const FactOptions_t options = {.version = table.Version()};
        bool isFound = false;
        for (const TableStructure_t& structure : ClWalk(table.Bytes())) {
            if (structure.Type() != row.type) continue;
            ClFacts facts(structure, options);
            while (facts.Next()) {
                if (facts->record >= 0 || facts->Key() != row.key) continue;
                const std::string text = KeywordText(facts, *facts);
                if (text.empty() && facts->kind != FactKind_t::kText) continue;
                output << text << "\n";
                isFound = true;
            }
        }
        if (isFound) return kExitDone;
        SayError(table.Name(), "no " + keyword + " in this table");
        return kExitNo;
    });
    return output.Finish() ? exitCode : kExitTrouble;
}
