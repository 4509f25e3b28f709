// A command's options as a table, and the one function that reads them from the command line.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

using Arguments_t = std::vector<std::string>;

struct Usage_t {
    const char* command;  // as typed, "quorlin find"
    const char* description;
    const char* footer;  // examples and exit codes
    int trouble;         // exit code when it can't be done: no table, no memory, output that can't be written
};

// One option. A name without dashes is that of an argument, which stands in its place on the command line.
struct Option_t {
    const char* name;
    const char* typeName;  // of its value; null for a flag
    const char* help;
    std::variant<bool*, std::string*, std::vector<std::string>*> target;  // a list takes the option once for each value
    bool required = false;
    char letter = 0;  // its short name, as in -t
};

// Fills the options' targets. False when the command is to end here with `exitCode`: help was asked for and printed,
// or the usage was bad and a line said so.
bool ParseCommandLine(const Usage_t& usage, std::span<const Option_t> options, const Arguments_t& arguments,
                      int* exitCode);

// As a file's name: standard input or standard output.
inline constexpr std::string_view kStandardStream = "-";

// "quorlin: bad usage: MESSAGE; try COMMAND --help" on standard error; gives false.
bool SayBadUsage(const Usage_t& usage, const std::string& message, int* exitCode);

// Numbers as users write them: decimal, or hexadecimal behind 0x. False for anything else, and above `most`.
bool ParseNumber(std::string_view text, uint64_t most, uint64_t* value);
// A handle as users write it: 17, 0x11 or 11h. A bare number that begins with 0 or holds a letter could be either, and
// is refused with both. As ParseCommandLine when it is bad.
bool ParseHandle(const Usage_t& usage, const std::string& text, uint64_t* handle, int* exitCode);
// Hexadecimal digits, with or without 0x in front or h behind.
bool ParseHex(std::string_view text, uint64_t most, uint64_t* value);
