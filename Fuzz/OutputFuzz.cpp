// Runs every command in every format on any bytes as a table.
// Input: the width of the terminal, 0 for none (1 byte), the table.
#include "Fuzz/Output.h"
#include "Fuzz/Platform.h"
#include "Packages/Format/TableFile.h"
#include "Packages/Sample/Sample.h"

// Removes the escape sequences that the program itself writes around headings.
static std::string WithoutMarks(std::string text) {
    for (const std::string_view mark : {"\x1b[1m", "\x1b[0m"})
        for (size_t at; (at = text.find(mark)) != text.npos;) text.erase(at, mark.size());
    return text;
}

static void RunFormats(const Arguments_t& command, std::initializer_list<const char*> formats) {
    for (const std::string format : formats) {
        Arguments_t arguments = command;
        arguments.insert(arguments.end(), {"--as", "table", "--format", format});
        if (command.front() != "diff") arguments.insert(arguments.end(), {"--image", "table"});
        if (RunOnPlatform(arguments) == 2 && platform.output.empty()) continue;  // no table
        RequireHarmless(platform.errors);
        const std::string& output = platform.output;
        if (format == "json") RequireJson(output);
        if (format == "ndjson") RequireNdjson(output);
        if (format == "csv") RequireCsv(output);
        if (format == "text" || (format == "lines" && platform.terminalWidth != 0))
            RequireHarmless(WithoutMarks(output));
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ClInput input(data, size);
    platform.terminalWidth = input.Take<uint8_t>();
    const std::vector<uint8_t> table = input.Rest();
    if (table.empty() || table.size() > 4096) return 0;
    platform.files = {
        {"table", {table.begin(), table.end()}                        },
        {"other", {SampleTable().begin(), SampleTable().begin() + 512}},
    };
    RunFormats({"show"}, {"text", "json", "ndjson", "csv", "lines"});
    RunFormats({"show", "--type", "148", "--signature", "506C0"}, {"text", "json"});
    RunFormats({"show", "--recover", "--verbose"}, {"text", "ndjson"});
    RunFormats({"types"}, {"text", "json", "ndjson", "csv"});
    RunFormats({"facts"}, {"text", "json", "ndjson", "csv"});
    RunFormats({"facts", "--full", "--where", "--absent"}, {"text", "json"});
    Require(RunOnPlatform({"facts", "--rows", "rows", "--as", "table", "--image", "table"}) <= 1);
    RequireRows(platform.folder);
    RunFormats({"find", "e"}, {"text", "json", "ndjson", "csv"});
    RunFormats({"check"}, {"text", "json", "ndjson", "csv", "sarif"});
    RunFormats({"diff", "table", "other"}, {"text", "json", "ndjson", "csv"});
    for (const char* command : {"raw", "get"}) {
        Arguments_t arguments = {command, "--as", "table", "--image", "table"};
        if (*command == 'g') arguments.insert(arguments.end(), {"0-255", "string 1"});
        RunOnPlatform(arguments);
        RequireHarmless(platform.output);
        RequireHarmless(platform.errors);
    }
    Require(RunOnPlatform({"metrics", "--as", "table", "--image", "table"}) == 0);
    RequireMetrics(platform.output);
    for (const bool isComparison : {false, true}) {
        Arguments_t arguments = {"report", "-", "--as", "table", "table"};
        if (isComparison) arguments.emplace_back("other");
        RunOnPlatform(arguments);
        RequireHarmless(platform.output);
        RequireHarmless(platform.errors);
    }
    // The dump must contain the table that was read.
    Require(RunOnPlatform({"dump", "-", "--as", "table", "--image", "table"}) == 0);
    const std::vector<uint8_t> dump(platform.output.begin(), platform.output.end());
    const TableFound_t found = FindTable(dump, TableForm_t::kDump);
    Require(std::ranges::equal(found.table, table));
    EndRuns();
    return 0;
}
