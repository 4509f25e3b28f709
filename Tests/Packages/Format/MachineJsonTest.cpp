// The description of a recorded machine.
#include "Packages/Format/MachineJson.h"

#include <gtest/gtest.h>

namespace {

TEST(MachineJson, ComesBackAsItWas) {
    const std::string hash(64, 'a');
    MachineFacts_t facts;
    MachineFacts_t again;
    again.host = std::string("another");
    EXPECT_EQ(ParseMachineJson(WriteMachineJson(facts), &again), "");
    EXPECT_EQ(again, facts) << "of nothing";
    uint64_t number = 0;
    SystemFacts_t known;
    for (auto* const each :
         {&known.packages, &known.cores, &known.threads, &known.baseSpeed, &known.maxSpeed, &known.usableMemory})
        *each = ++number;
    known.tpm = 0;
    known.midrs = {0x410FD0C1, UINT32_MAX};
    known.memoryMap = {
        {0,        0         },
        {0x100000, UINT64_MAX}
    };
    known.resources = {
        {"0f2a3c44-0000-4000-8000-0102030405ab", 1, UINT32_MAX}
    };
    known.networkAddresses = {"021dc3884ef1", "x"};
    facts = {
        .isRedacted = true,
        .system = "a\"b\\c\n\x7F \xC3\xA9",
        .kernel = "k",
        .host = "h",
        .firmware = "UEFI",
        .processors = 0,
        .memory = UINT64_MAX,
        .known = known,
        .versions = {1,                 UINT32_MAX       },
        .segments = {0,                 0xFFFF           },
        .hasExtendedSpace = true,
        .leftOut = {"MSDM",            "a\"b\\"         },
        .files = {{"dmi.bin", hash}, {"msr.txt", hash}},
        .unread = {{"x", "y"},        {"z", ""}        }
    };
    EXPECT_EQ(ParseMachineJson(WriteMachineJson(facts), &again), "");
    EXPECT_EQ(again, facts);
    facts.host = std::string("\xFF");
    EXPECT_EQ(ParseMachineJson(WriteMachineJson(facts), &again), "");
    EXPECT_EQ(again.host, "\xEF\xBF\xBD") << "no UTF-8";
}

// Returns what is wrong, up to `size` characters.
std::string Problem(const std::string& text, size_t size = 8) {
    MachineFacts_t facts;
    return ParseMachineJson(text, &facts).substr(0, size);
}

const char kHead[] = R"({"form": "quorlin record", "version": 1)";

std::string With(const std::string& rest) { return kHead + rest; }

std::string Files(std::initializer_list<std::pair<const char*, size_t>> namesAndDigits) {
    std::string text = With(", \"files\": [");
    for (const auto& [name, digits] : namesAndDigits) {
        if (text.back() != '[') text += ',';
        text.append("{\"name\": \"").append(name).append("\", \"sha256\": \"").append(digits, 'a').append("\"}");
    }
    return text.append("]}");
}

TEST(MachineJson, TakesJsonThatOthersWrite) {
    for (const std::string& text : {
             With("}"), With(R"(, "a": [1.5e3, {"b": null}, true, []], "c": {}})"), With("\r\n\t}\n"),
             std::string(R"({"form": "quorlin\u0020record", "version":1})"), Files({{"dmi.bin", 64}, {"msr.txt", 64}}
              )
    })
        EXPECT_EQ(Problem(text), "") << text;
}

TEST(MachineJson, RefusesWhatIsNone) {
    for (const std::string& text :
         {std::string(), std::string(kHead), With("} x"), With(",}"), With(R"(, "a": maybe})"), With(R"(, "a" 1})"),
          With(", \"a\": \"\n\"}"), With(R"(, "a": "\uD800"})"), With(R"(, "a": "\x"})"), std::string(100, '[')})
        EXPECT_EQ(Problem(text), "not JSON") << text;
    EXPECT_EQ(Problem(R"({"form": "a", "version": 1})"), "not the ");
    EXPECT_EQ(Problem(R"({"form": "quorlin record", "version": 2})"), "a record");
    EXPECT_EQ(Problem(With(R"(, "version": 1})")), "a record") << "twice";
    EXPECT_EQ(Problem(Files({
                  {"../dmi.bin", 64}
    })),
              "a file t");
    EXPECT_EQ(Problem(Files({
                  {"dmi.bin", 63}
    })),
              "a file t");
    EXPECT_EQ(Problem(Files({
                  {"dmi.bin", 64},
                  {"dmi.bin", 64}
    })),
              "a file t");
    EXPECT_EQ(Problem(With(R"(, "pci_segments": ["0"]})")), "a number");
    EXPECT_EQ(Problem(With(R"(, "pci_segments": [4294967296]})")), "a number");
    EXPECT_EQ(Problem(With(R"(, "midr": [1, 4294967296]})")), "a number");
    EXPECT_EQ(Problem(With(R"(, "memory_map": [{"begin": 2, "end": 1}]})")), "a number");
    EXPECT_EQ(Problem(With(R"(, "firmware_resources": [{"id": "x", "type": 1, "version": -1}]})")), "a number");
    EXPECT_EQ(Problem(std::string(2u << 20, ' ')), "larger t");
}

}  // namespace
