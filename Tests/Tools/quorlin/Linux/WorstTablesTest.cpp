// The tables that cost most time and memory, and the most that each command may use for them. With QUORLIN_LONG in the
// environment they are as large as a table may be, and take a quarter of an hour.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <sstream>
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
const uint64_t mostBytes = uint64_t{isLong ? 150u : 48u} << 20;

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

// What a run of the program took.
struct Cost_t {
    double seconds = 0;  // of the processor, by the program and by the system for it
    uint64_t bytes = 0;  // the most memory at a time
    int exitCode = -1;   // -1 after a signal
};

// Runs the program; its output goes to `output`. After a minute of the processor's time it is ended. The memory is at
// least that of this process, whose copy the child is before it becomes the program, so this one must stay small.
Cost_t CostOf(std::vector<std::string> words, const std::string& output) {
    words.insert(words.begin(), QUORLIN_PROGRAM);
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    malloc_trim(0);
    const pid_t process = fork();
    if (process == 0) {
        dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
        dup2(open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
        dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
        const rlimit limit = {60, 60};
        if (setrlimit(RLIMIT_CPU, &limit) == 0) execv(arguments[0], arguments.data());
        _exit(99);
    }
    int status = 0;
    rusage usage = {};
    wait4(process, &status, 0, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
    };
    return {seconds(usage.ru_utime) + seconds(usage.ru_stime), static_cast<uint64_t>(usage.ru_maxrss) << 10,
            WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

TEST(WorstTables, TakeNoMoreThanTheirSizeAllows) {
    if (IsSanitized()) GTEST_SKIP() << "a sanitizer takes memory and time of its own";
    const size_t most = tableBytes - 64;
    const std::string versions = Repeated(Structure(221, "\xFF", Repeated("a\0"s, 255) + "\0"s), 255);
    const std::string disabled = Structure(221, "\2", "a\0"s + Repeated("Disabled\0"s, 200000) + "b\0\0"s);
    const std::string number = std::string(60, 0x01);
    std::vector<std::pair<std::string, std::string>> tables;  // what is bad about it, and the file with the table
    const auto add = [&tables](const char* what, const std::string& table) {
        const std::string name = "worst-" + std::to_string(tables.size()) + ".bin";
        tables.emplace_back(what, WriteFile(name, std::vector<uint8_t>(table.begin(), table.end())));
    };
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
    const std::string output = testing::TempDir() + "worst.out", rows = testing::TempDir() + "worst-rows";
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
    for (const auto& [bad, file] : tables) {
        for (std::vector<std::string> words : commands) {
            const std::string what = bad + ": " + words[0] + " " + words.back();
            words.insert(words.end(), {"--as", "table", "--image", file});
            if (bad.starts_with("148") && (words[0] == "show" || words[0] == "find"))
                words.insert(words.end(), {"--type", "148"});
            fs::remove_all(rows);
            const Cost_t cost = CostOf(words, output);
            auto written = static_cast<double>(fs::file_size(output));
            if (fs::exists(rows))
                for (const auto& each : fs::directory_iterator(rows)) written += static_cast<double>(each.file_size());
            ASSERT_TRUE(cost.exitCode >= 0 && cost.exitCode <= 2) << what;
            EXPECT_LT(cost.bytes, mostBytes) << what;
            // Some seconds to decode the items that a table may give, and 10 MB of output a second, on a machine that
            // does other work too.
            EXPECT_LT(cost.seconds, (isLong ? 15 : 5) + written / 10e6) << what;
        }
    }
}

// The two bytes of a number.
std::string Word(size_t number) { return {static_cast<char>(number & 0xFF), static_cast<char>(number >> 8 & 0xFF)}; }

// A structure with another handle.
std::string Renamed(std::string structure, const std::string& handle) { return structure.replace(2, 2, handle); }

// A table of the structures that `make` makes of the numbers from 0 on, with these numbers as handles, after `head`.
std::string Numbered(const std::function<std::string(size_t)>& make, const std::string& head = "") {
    std::string table = head;
    for (size_t i = 0;; i++) {
        const std::string structure = Renamed(make(i), Word(i));
        if (table.size() + structure.size() + kEnd > tableBytes) break;
        table += structure;
    }
    return table + Structure(127, "");
}

std::string Hex(size_t number) {
    char digits[24];
    std::snprintf(digits, sizeof digits, "%zx", number);
    return digits;
}

// The same table with other digits in many places.
std::string Changed(std::string table) {
    for (size_t i = 64; i < table.size(); i += 3)
        if (table[i] >= '0' && table[i] < '9') table[i]++;
    return table;
}

// Runs commands on a table that is the worst for them. TABLE stands for its file, CHANGED for that of the same table
// with other digits, and FILE for a new file.
void ExpectLittle(const char* what, const std::string& table, const std::vector<const char*>& commands) {
    const auto write = [](const char* name, const std::string& bytes) {
        return WriteFile(name, std::vector<uint8_t>(bytes.begin(), bytes.end()));
    };
    const std::string path = write("worst.bin", table), changed = write("worst-changed.bin", Changed(table));
    const std::string file = testing::TempDir() + "worst-new", output = testing::TempDir() + "worst.out";
    for (const char* command : commands) {
        std::vector<std::string> words;
        bool namesTable = false;
        std::istringstream text(command);
        for (std::string word; text >> word;) {
            namesTable |= word == "TABLE";
            words.push_back(word == "TABLE" ? path : word == "CHANGED" ? changed : word == "FILE" ? file : word);
        }
        words.insert(words.end(), {"--as", "table"});
        if (!namesTable) words.insert(words.end(), {"--image", path});
        fs::remove_all(file);
        const Cost_t cost = CostOf(words, output);
        ASSERT_TRUE(cost.exitCode == 0 || cost.exitCode == 1) << what << ": " << command;
        EXPECT_LT(cost.bytes, mostBytes) << what << ": " << command;
        // Twice what it may be on a machine that does nothing else.
        EXPECT_LT(cost.seconds, isLong ? 4 : 1) << what << ": " << command;
    }
}

// Commands that don't show the table itself must cost little for whatever a file has in it.
TEST(WorstTables, CostLittleWhereTheTableIsNotShown) {
    if (IsSanitized()) GTEST_SKIP() << "a sanitizer takes memory and time of its own";
    ExpectLittle(
        "17, no fields", Numbered([](size_t) { return Structure(17, ""); }),
        {"check", "check --format sarif", "summary", "types", "metrics", "metrics --out FILE", "report FILE TABLE",
         "report FILE TABLE CHANGED", "facts --rows FILE", "redact TABLE FILE", "diff TABLE CHANGED", "get 17 none"});
    const auto module = [](size_t i) {
        const auto form = static_cast<char>(i / 0x7FFE % 16 + 1);
        return Structure(17, std::string(8, '\0') + Word(i % 0x7FFE + 1) + std::string(1, form));
    };
    ExpectLittle("17, each unlike the others", Numbered(module),
                 {"summary --format json", "metrics --out FILE", "report FILE TABLE", "facts --rows FILE"});
    const auto cache = [](size_t i) {
        const auto level = static_cast<char>(0x80 | (i / 0x8000 % 8));
        return Structure(7, "\0"s + level + "\1\xFF\x7F"s + Word(i % 0x7FFF + 1));
    };
    ExpectLittle("7, each unlike the others", Numbered(cache), {"summary --format json", "check"});
    const std::string system = "\1\1\1\1"s + std::string(16, '\0') + "\6\1\1"s;
    ExpectLittle("1, a long text of control bytes",
                 Structure(1, system, std::string(tableBytes - 64, '\1') + "\0\0"s) + Structure(127, ""),
                 {"check --format json", "check --format sarif", "report FILE TABLE", "get 1 serial_number"});
    ExpectLittle("1, a long text of invalid bytes",
                 Structure(1, system, std::string(tableBytes - 64, '\xFF') + "\0\0"s) + Structure(127, ""),
                 {"summary --format json", "facts --rows FILE", "report FILE TABLE"});
    const std::string slot = std::string(8, '\0') + Word(1024) + "\x09\0\1\1\x1A\0"s;
    ExpectLittle("17, a long locator",
                 Structure(17, slot, Repeated("DIMMA_", tableBytes / 8) + "\0\0"s) + Structure(127, ""),
                 {"report FILE TABLE", "metrics"});
    const std::string board = "\1\0\0\0\0\0\0\0\0\x0A\x74"s;  // with 116 handles
    const auto refersToMany = [&board](size_t i) {
        std::string handles;
        for (size_t place = 0; place < 116; place++) handles += Word(i + place);
        return Structure(2, board + handles, "b\0\0"s);
    };
    ExpectLittle("2, handles of many others", Numbered(refersToMany),
                 {"diff TABLE CHANGED", "diff TABLE CHANGED --format json", "report FILE TABLE CHANGED", "check"});
    const std::string target = Structure(17, slot, std::string(tableBytes / 4, 'A') + "\0\0"s);
    ExpectLittle(
        "2, handles of long texts",
        Filled(Renamed(target, "00") + Renamed(target, "01"), Structure(2, board + Repeated("00", 116), "b\0\0"s)),
        {"diff TABLE CHANGED", "report FILE TABLE CHANGED"});
    ExpectLittle("17, one handle that all refer to", Filled("", Structure(17, "\1\0"s)),
                 {"check", "diff TABLE TABLE", "metrics", "get 17 none"});
    std::string strings;
    for (size_t i = 0; strings.size() + 64 < tableBytes; i++) strings += Hex(i) + "\0"s;
    ExpectLittle("200, many short strings", Structure(200, "", strings + "\0"s) + Structure(127, ""),
                 {"redact TABLE FILE", "check"});
    const auto serial = [](size_t i) {
        return Structure(1, "\0\0\0\1"s + std::string(16, static_cast<char>(i)), "SN" + Hex(i) + "\0\0"s);
    };
    ExpectLittle("1, many serial numbers", Numbered(serial), {"redact TABLE FILE", "report FILE TABLE --redact"});
}

}  // namespace
