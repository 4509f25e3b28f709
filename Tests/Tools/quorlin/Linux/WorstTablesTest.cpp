// The tables that cost most time and memory, and the most that each command may use for them. With QUORLIN_LONG in the
// environment they are as large as a table may be, and take a quarter of an hour.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Packages/Format/TableFile.h"
#include "Tests/Support/Linux/Processes.h"
#include "Tests/Support/Program.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

constexpr size_t kEnd = 6;
const bool isLong = std::getenv("QUORLIN_LONG") != nullptr;
const size_t tableBytes = isLong ? kMostTableBytes : kMostTableBytes / 8;
const rlim_t mostBytes = (isLong ? 150 : 48) << 20;

// A structure of these bytes after its header, with its strings and what ends them.
std::string Structure(uint8_t type, const std::string& fields, const std::string& strings = "\0\0"s) {
    return std::string{static_cast<char>(type), static_cast<char>(4 + fields.size()), 1, 0} + fields + strings;
}

// `head`, and `unit` as often as a table has room for it.
std::string Filled(const std::string& head, const std::string& unit) {
    std::string table = head;
    while (table.size() + unit.size() + kEnd <= tableBytes) table += unit;
    return table + Structure(127, "");
}

std::string Repeated(const std::string& text, size_t count) {
    std::string repeated;
    for (size_t place = 0; place < count; place++) repeated += text;
    return repeated;
}

// Runs the program with so much memory at most; its output goes to `output`. Returns the processor's seconds, or none
// for a run that lacked memory or that a signal ended.
std::optional<double> SecondsOf(std::vector<std::string> words, const std::string& output) {
    const auto seconds = [] {
        rusage usage = {};
        getrusage(RUSAGE_CHILDREN, &usage);
        return static_cast<double>(usage.ru_utime.tv_sec) + 1e-6 * static_cast<double>(usage.ru_utime.tv_usec);
    };
    words.insert(words.begin(), QUORLIN_PROGRAM);
    const double before = seconds();
    const ProgramRun_t run = RunPrepared(words, [&output] {
        alarm(0);
        dup2(open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
        const rlimit limit = {mostBytes, mostBytes};
        if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(99);
    });
    const bool isComplete =
        run.exitCode >= 0 && run.exitCode <= 2 && run.errors.find("out of memory") == run.errors.npos;
    return isComplete ? std::optional(seconds() - before) : std::nullopt;
}

TEST(WorstTables, TakeNoMoreThanTheirSizeAllows) {
    if (IsSanitized()) GTEST_SKIP() << "a sanitizer takes memory and time of its own";
    const size_t most = tableBytes - 64;
    const std::string versions = Repeated(Structure(221, "\xFF", Repeated("a\0"s, 255) + "\0"s), 255);
    const std::string disabled = Structure(221, "\2", "a\0"s + Repeated("Disabled\0"s, 200000) + "b\0\0"s);
    const std::string number = std::string(60, 0x01);
    std::vector<std::pair<std::string, std::string>> tables;  // what is bad about it, and the table
    const auto add = [&tables](const char* what, std::string table) { tables.emplace_back(what, std::move(table)); };
    add("11, counts of what isn't there", Filled("", Structure(11, "\xFF")));
    add("11, many strings", Structure(11, "\xFF", Repeated("a\0"s, most / 2) + "\0"s));
    add("11, a long string of quotes", Structure(11, "\1", std::string(most, '"') + "\0\0"s));
    const std::string languages = std::string(1, '\xFF').append(17, 1);
    add("13, counts of what isn't there", Filled("", Structure(13, languages)));
    add("13, many languages", Structure(13, languages, Repeated("enus\0"s, most / 5) + "\0"s));
    add("14, groups that all name the same", Filled(versions, Structure(14, "\0\xDD\0\0"s)));
    add("14, names that show nothing", Filled(disabled, Structure(14, "\0\xDD\0\0"s)));
    add("14, groups of what isn't there", Filled("", Structure(14, "\0"s + Repeated("\xDD\0\0"s, 83))));
    add("15, counts of what isn't there", Filled("", Structure(15, std::string(19, '\xFF'))));
    add("17, slots with nothing", Filled("", Structure(17, std::string(8, '\0'))));
    const std::string module = std::string(8, '\0').append(74, '\1');
    add("17, modules with long names", Filled("", Structure(17, module, std::string(1800, '\xFF') + "\0\0"s)));
    add("148", Filled("", Structure(148, number, "9999\0\0"s)));
    add("148, a long string", Filled("", Structure(148, number, std::string(3000, '9') + "\0\0"s)));
    add("221, records among the strings", Filled("", Structure(221, "\xFF", std::string(1800, 'a') + "\0\0"s)));
    add("zeros", std::string(tableBytes, '\0'));
    add("a Length of 0", Filled("", "\x0B\0\0"s));
    add("no decoder, many strings", Structure(200, "", Repeated("a\0"s, most / 2) + "\0"s));
    add("no decoder, many structures", Filled("", Structure(200, "")));
    const std::string file = testing::TempDir() + "worst.bin", output = testing::TempDir() + "worst.out",
                      rows = testing::TempDir() + "worst-rows";
    std::vector<std::vector<std::string>> commands;
    for (const char* format : {"lines", "text", "json", "csv"}) commands.push_back({"show", "--format", format});
    for (const char* command : {"types", "summary", "facts", "check", "verify", "raw", "metrics"})
        commands.push_back({command});
    commands.insert(commands.end(), {
                                        {"explain", "0-255"},
                                        {       "find",   "none"       },
                                        {   "get",   "1",          "none"},
                                        { "check",   "--format",          "json"},
                                        { "facts",     "--rows",            rows}
    });
    for (const auto& [bad, table] : tables) {
        WriteFile("worst.bin", std::vector<uint8_t>(table.begin(), table.end()));
        for (std::vector<std::string> words : commands) {
            const std::string what = bad + ": " + words[0] + " " + words.back();
            words.insert(words.end(), {"--as", "table", "--image", file});
            if (bad.starts_with("148") && (words[0] == "show" || words[0] == "find"))
                words.insert(words.end(), {"--type", "148"});
            fs::remove_all(rows);
            const std::optional<double> seconds = SecondsOf(words, output);
            auto written = static_cast<double>(ReadWholeFile(output).size());
            if (fs::exists(rows))
                for (const auto& each : fs::directory_iterator(rows)) written += static_cast<double>(each.file_size());
            ASSERT_TRUE(seconds.has_value()) << what;
            // Some seconds to decode the items that a table may give, and 10 MB of output a second, on a machine that
            // does other work too.
            EXPECT_LT(*seconds, (isLong ? 15 : 5) + written / 10e6) << what;
        }
    }
}

}  // namespace
