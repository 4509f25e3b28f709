// A command's options as a table, and the one function that reads them from the command line.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

using Arguments_t = std::vector<std::string>;

// A word that an option takes as its value. Characters in place of pointers, which would cost relocations at start-up.
struct Choice_t {
    char word[24];
    char remark[40] = "";  // what it means, where the word alone doesn't say it
};
using Choices_t = std::span<const Choice_t>;

// Thrown where the command line is wrong: what is wrong, and what to write instead if that isn't obvious.
struct BadUsage_t {
    std::string message;
};

// One option. A name without dashes is that of an argument, which is taken by its position.
struct Option_t {
    const char* name;
    const char* typeName;  // of its value, "FILE" for a file's name; null for a flag
    const char* help;
    std::variant<bool*, std::string*, std::vector<std::string>*> target;  // a list takes the option once for each value
    bool required = false;
    char letter = 0;              // its short name, as in -t
    Choices_t choices = {};       // the words that it takes; the help lists them
    bool takesOthers = false;     // other values too, so that the help has to list the choices itself
    bool isHidden = false;        // an old name, which still works but isn't shown
    const char* after = nullptr;  // an argument's choices are for these values of the argument before it: "msr port"

    bool IsArgument() const { return name[0] != '-'; }
    bool TakesValue() const { return !std::holds_alternative<bool*>(target); }
    // The help with the choices: "Whether headings stand out: auto (on a terminal), always or never".
    std::string Help() const;
    bool IsList() const { return std::holds_alternative<std::vector<std::string>*>(target); }
};

// Fills the options' targets. False if help is asked for. Throws BadUsage_t.
bool ParseCommandLine(std::span<const Option_t> options, const Arguments_t& arguments);

// As a file's name: standard input or standard output.
inline constexpr std::string_view kStandardStream = "-";

// Numbers as users write them: decimal, or hexadecimal after 0x. False for anything else, and above `most`.
bool ParseNumber(std::string_view text, uint64_t most, uint64_t* value);
// A handle as users write it: 17, 0x11 or 11h. A bare number that begins with 0 or has a letter could be either, so it
// is refused with a message that shows both. Throws BadUsage_t.
uint16_t ParseHandle(const std::string& text);
// Hexadecimal digits, with or without 0x before them or h after them.
bool ParseHex(std::string_view text, uint64_t most, uint64_t* value);
