// Checks the documents of the program: every command that they show runs and prints the lines below it, and every JSON
// document matches the schema.
#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/schema.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <sstream>

#include "Tests/Support/Program.h"
#include "Tests/Support/Records.h"
#include "Tests/Support/Structures.h"

namespace {

namespace fs = std::filesystem;

struct ShownCommand_t {
    std::string place, arguments;
    std::vector<std::string> output;  // the lines below it; "..." stands for more
};

// The lines of code blocks that begin with "$ quorlin", each with the lines up to the next one or the block's end.
std::vector<ShownCommand_t> CommandsOf(const fs::path& page) {
    constexpr std::string_view kIndent = "    ", kPrompt = "    $ quorlin";
    std::vector<ShownCommand_t> commands;
    std::istringstream text(ReadWholeFile(page.string()));
    bool isBelow = false;
    size_t number = 0;
    for (std::string line; std::getline(text, line);) {
        number++;
        if (line.starts_with(kPrompt)) {
            const std::string place = page.filename().string() + ":" + std::to_string(number);
            const size_t comment = std::min(line.find("  #"), line.size());
            commands.push_back({place, line.substr(kPrompt.size(), comment - kPrompt.size()), {}});
            isBelow = true;
        } else if (!line.empty() && !line.starts_with(kIndent)) {
            isBelow = false;
        } else if (isBelow && !line.empty()) {
            commands.back().output.push_back(line.substr(kIndent.size()));
        }
    }
    return commands;
}

// A folder as the docs have it: two images, a list of them and a key. The second has another version and serial number.
fs::path DocsFolder() {
    const fs::path folder = fs::path(testing::TempDir()) / "docs";
    fs::remove_all(folder);
    fs::create_directory(folder);
    fs::current_path(folder);
    EXPECT_EQ(RunQuorlin("dump --sample machine.bin").exitCode, 0);
    std::string after = ReadWholeFile("machine.bin");
    const auto replace = [&](std::string_view from, std::string_view to) {
        after.replace(after.find(from), from.size(), to);
    };
    replace("HVB2.14.0308", "HVB2.15.0519");
    replace("HV24-0811-00417", "HV24-0811-00733");
    fs::rename(WriteFile("docs-after.bin", {after.begin(), after.end()}), "after.bin");
    fs::rename(WriteFile("docs-key.bin", std::vector<uint8_t>(32, 'k')), "key.bin");
    const std::string names = "machine.bin\nafter.bin\n";
    fs::rename(WriteFile("docs-names.txt", {names.begin(), names.end()}), "names.txt");
    return folder;
}

// Commands that name no table read this machine, which may have none.
std::string WithATable(const std::string& arguments) {
    const bool hasSource = arguments.starts_with(" diff ") || arguments.starts_with(" hw ") ||
                           arguments.starts_with(" redact ") || arguments.starts_with(" record ") ||
                           arguments.starts_with(" doctor") ||
                           (arguments.starts_with(" report ") && arguments.find("machine.bin") != arguments.npos) ||
                           arguments.find("--replay") != arguments.npos ||
                           arguments.find("--sample") != arguments.npos || arguments.find("--image") != arguments.npos;
    return hasSource ? arguments : arguments + " --sample";
}

TEST(Docs, EveryCommandRunsAndPrintsWhatTheySay) {
    const fs::path source = QUORLIN_SOURCE_DIR, before = fs::current_path();
    std::vector<fs::path> pages = {source / "README.md"};
    for (const fs::directory_entry& entry : fs::directory_iterator(source / "Docs"))
        if (entry.path().extension() == ".md") pages.push_back(entry.path());
    DocsFolder();
    size_t count = 0;
    for (const fs::path& page : pages) {
        for (const ShownCommand_t& command : CommandsOf(page)) {
            count++;
            // The command creates the file again.
            if (command.arguments.starts_with(" dump ")) fs::remove("machine.bin");
            if (command.arguments.starts_with(" redact ")) fs::remove("public.bin");
            for (const std::string_view writes : {" record ", " report ", " facts --rows "}) {
                if (!command.arguments.starts_with(writes)) continue;
                const std::string rest = command.arguments.substr(writes.size());
                fs::remove_all(rest.substr(0, rest.find(' ')));
            }
            const ProgramRun_t run = RunQuorlin(WithATable(command.arguments));
            EXPECT_LE(run.exitCode, 1) << command.place << ": " << run.errors;
            EXPECT_EQ(run.errors.find("bad usage"), run.errors.npos) << command.place << ": " << run.errors;
            const std::string printed = run.errors + run.output;
            size_t at = 0;
            for (const std::string& line : command.output) {
                if (line.find_first_not_of(' ') == line.find("...")) continue;
                at = printed.find(line, at);
                ASSERT_NE(at, printed.npos) << command.place << ": " << line << "\n" << run.errors;
                at += line.size();
            }
        }
    }
    EXPECT_GE(count, 25u);
    fs::current_path(before);
}

TEST(Docs, EveryCauseOfDoctorIsExplained) {
    const std::string pages =
        ReadWholeFile(QUORLIN_SOURCE_DIR "/Docs/Linux.md") + ReadWholeFile(QUORLIN_SOURCE_DIR "/Docs/Windows.md");
    for (const std::string cause : {
#define OBSTACLE(name, word, problem, advice) word,
#include "Packages/FERROXExternal/FERROXLib/Obstacles.inc"
#undef OBSTACLE
         })
        EXPECT_TRUE(cause == "none" || pages.find("| `" + cause + "` |") != pages.npos) << cause;
}

TEST(Docs, TheRecordedRegistersAreListed) {
    std::string expected, listed;
    for (const std::string row : {
#define REGISTER(number, name, maker) "| `" #number "` | " #name " | " #maker " |\n",
#include "Tools/quorlin/Registers.inc"
#undef REGISTER
         })
        expected += row;
    std::istringstream page(ReadWholeFile(QUORLIN_SOURCE_DIR "/Docs/Record.md"));
    for (std::string line; std::getline(page, line);)
        if (line.starts_with("| `0x")) listed += line + "\n";
    EXPECT_EQ(listed, expected);
}

// A schema of Docs.
class ClSchema {
  public:
    explicit ClSchema(const std::string& name) : m_schema(Read(name)) {}

    // Empty for a document that the schema allows; otherwise what is wrong.
    std::string Problem(const std::string& text) const {
        rapidjson::Document document;
        document.Parse<rapidjson::kParseValidateEncodingFlag>(text.c_str(), text.size());
        if (document.HasParseError()) return rapidjson::GetParseError_En(document.GetParseError());
        rapidjson::SchemaValidator validator(m_schema);
        return document.Accept(validator) ? "" : "not of the schema";
    }

  private:
    static rapidjson::Document Read(const std::string& name) {
        rapidjson::Document document;
        document.Parse(ReadWholeFile(QUORLIN_SOURCE_DIR "/Docs/" + name).c_str());
        EXPECT_FALSE(document.HasParseError());
        return document;
    }

    rapidjson::SchemaDocument m_schema;
};

std::string AllBytes() {
    std::string bytes;
    for (unsigned byte = 1; byte < 256; byte++) bytes += static_cast<char>(byte);
    return bytes;
}

TEST(Docs, TheSchemaHoldsForEveryDocument) {
    const ClSchema schema("json-schema.json");
    const auto Problem = [&](const std::string& text) { return schema.Problem(text); };
    for (const char* wrong : {"{}", "[]", R"({"source":"a","smbios":"3.0","structures":[],"more":1})",
                              R"({"source":"a","smbios":"3.0","structures":[{"type":256,"handle":0,"instance":1,)"
                              R"("title":"","items":[]}]})",
                              R"({"source":"a","smbios":"3.0","findings":[{"rule":"new","severity":"note","what":"",)"
                              R"("count":1,"places":[]}]})",
                              R"({"form":"quorlin record","version":1,"files":[]})"})
        EXPECT_NE(Problem(wrong), "") << wrong;
    // A string of all bytes, a title's structure cut short, and damage before all of it.
    const std::vector<uint8_t> table =
        TableOf({ClStructureBuilder(11, 5).Byte(4, 2).Strings({AllBytes(), "\xED\xA0\x80"}), ClStructureBuilder(14, 8),
                 ClStructureBuilder(14, 8)});
    std::vector<uint8_t> damaged = {1, 2, 3, 0, 0};
    for (const uint8_t byte : table) damaged.push_back(byte);
    const std::string odd = " --image " + WriteFile("odd.bin", table) + " --as table";
    const std::string skipped = " --recover --as table --image " + WriteFile("damaged.bin", damaged);
    const std::string none = " --image " + testing::TempDir() + "no-such-file";
    for (const std::string& source : {std::string(" --sample"), odd, skipped, none})
        for (const std::string command : {"show", "summary", "types", "find a", "check"}) {
            const ProgramRun_t run = RunQuorlin(command + source + " --format ndjson");
            EXPECT_EQ(Problem(run.output), "") << command << source << "\n" << run.output.substr(0, 2000);
        }
    for (const char* command : {"", "summary "})
        EXPECT_EQ(Problem(RunQuorlin(command + std::string("--sample --format json")).output), "") << command;
    for (const char* arguments : {"redact --list --format json", "doctor --format json", "doctor --format ndjson"})
        EXPECT_EQ(Problem(RunQuorlin(arguments).output), "") << arguments;
    EXPECT_EQ(Problem(WriteMachineJson({})), "");
    EXPECT_EQ(Problem(ReadWholeFile(WriteRecord("described") + "/machine.json")), "");
    EXPECT_EQ(Problem(RunQuorlin("diff --sample --format json " + WriteFile("odd.bin", table)).output), "");
}

// A document with one structure of type 17 that has these facts.
std::string ModuleWith(const std::string& facts) {
    return R"({"source":"a","smbios":"3.4","structures":[{"type":17,"name":"Memory Device","handle":60,"instance":1,)"
           R"("offset":4711,"length":92,"facts":{)" +
           facts + "}}]}";
}

TEST(Docs, TheSchemaOfFactsHoldsForAllTables) {
    const ClSchema schema("facts-schema.json");
    for (const char* right :
         {R"("memory_size":68719476736,"memory_type":"DDR5","type_detail":["Synchronous"],"asset_tag":null)",
          R"("memory_type":"0x26")",
          R"("memory_size":{"value":1024,"unit":"byte","state":"value","from":["size","extended_size"]},)"
          R"("asset_tag":{"state":"none","raw":"00","offset":25,"size":1})"})
        EXPECT_EQ(schema.Problem(ModuleWith(right)), "") << right;
    for (const char* wrong :
         {R"("memory_size":"64 GiB")", R"("memory_size":-1)", R"("memory_type":"DDR6")",
          R"("type_detail":"Synchronous")", R"("type_detail":["New"])", R"("core_count":4)",
          R"("asset_tag":{"value":"x","state":"none"})", R"("asset_tag":{"state":"value"})",
          R"("asset_tag":{"value":"x","state":"good"})", R"("memory_size":{"value":"64 GiB","state":"value"})",
          R"("memory_size":1,"asset_tag":{"value":"x","state":"value"})"})
        EXPECT_NE(schema.Problem(ModuleWith(wrong)), "") << wrong;
    EXPECT_NE(schema.Problem("{}"), "");

    std::vector<std::string> sources = {
        " --sample", " --image " + testing::TempDir() + "no-such-file",
        " --as table --smbios-version 3.9 --image " + WriteFile("all-types.bin", TableOfAllTypes(1))};
    const fs::path images = QUORLIN_SOURCE_DIR "/../shared/tables";
    if (fs::exists(images))
        for (const fs::directory_entry& entry : fs::directory_iterator(images))
            if (entry.path().extension() == ".bin") sources.push_back(" --image " + entry.path().string());
    for (const std::string& source : sources)
        for (const char* form : {"", " --full --absent"}) {
            const std::string output = RunQuorlin("facts --format ndjson" + source + form).output;
            EXPECT_EQ(schema.Problem(output), "") << source << form << "\n" << output.substr(0, 2000);
        }
    EXPECT_EQ(schema.Problem(RunQuorlin("facts --sample --format json").output), "");
}

}  // namespace
