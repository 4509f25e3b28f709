#include "Tools/quorlin/CommandLine.h"

#include <getopt.h>

#include <algorithm>
#include <charconv>

#include "Tools/quorlin/Columns.h"

namespace {

constexpr int kHelp = 'h', kMissingValue = ':';
constexpr int kFirstOption = 256;  // what getopt_long gives for the first option of the table

bool IsArgument(const Option_t& option) { return option.name[0] != '-'; }
bool TakesValue(const Option_t& option) { return !std::holds_alternative<bool*>(option.target); }
bool IsList(const Option_t& option) { return std::holds_alternative<std::vector<std::string>*>(option.target); }

// An empty value is none: a script's variable was empty, and what it stood for isn't to be guessed.
bool Store(const Usage_t& usage, const Option_t& option, const char* value, int* exitCode) {
    if (TakesValue(option) && *value == '\0')
        return SayBadUsage(usage, std::string(option.name).append(" may not be empty"), exitCode);
    if (auto* const* flag = std::get_if<bool*>(&option.target))
        **flag = true;
    else if (auto* const* text = std::get_if<std::string*>(&option.target))
        **text = value;
    else
        std::get<std::vector<std::string>*>(option.target)->emplace_back(value);
    return true;
}

void PutBlock(std::string_view heading, const std::vector<std::pair<std::string, const char*>>& lines,
              ClColumns& columns) {
    columns.Heading(heading);
    for (const auto& [name, help] : lines) columns.Pair(name, help);
    columns.Finish(2);
}

// Gives the exit code.
int PrintHelp(const Usage_t& usage, std::span<const Option_t> options) {
    std::string synopsis = std::string("Usage: ") + usage.command + " [OPTIONS]";
    std::vector<std::pair<std::string, const char*>> arguments, named = {
                                                                    {"-h, --help", "Print this help and exit"}
    };
    for (const Option_t& option : options) {
        const std::string name = option.name;
        if (IsArgument(option)) {
            synopsis.append(option.required ? " " : " [").append(name).append(IsList(option) ? "..." : "");
            if (!option.required) synopsis += ']';
            arguments.emplace_back(name, option.help);
        } else {
            const std::string letter = option.letter == 0 ? "" : std::string("-").append(1, option.letter) + ", ";
            named.emplace_back(letter + name + (option.typeName == nullptr ? "" : std::string(" ") + option.typeName),
                               option.help);
        }
    }
    ClOutput output;
    ClColumns columns(output);
    columns.Line(0, usage.description);
    columns.Line(0, synopsis);
    if (!arguments.empty()) PutBlock("Arguments:", arguments, columns);
    PutBlock("Options:", named, columns);
    output << "\n";
    std::string_view footer = usage.footer;
    while (!footer.empty()) {
        const size_t end = std::min(footer.find('\n'), footer.size());
        columns.Line(0, footer.substr(0, end));
        footer.remove_prefix(std::min(end + 1, footer.size()));
    }
    return output.Finish() ? kExitDone : usage.trouble;
}

// The words in front, one for each argument of the table; the last one may be a list.
bool StoreArguments(const Usage_t& usage, std::span<const Option_t> options, std::span<char* const> words,
                    int* exitCode) {
    size_t next = 0;
    for (const Option_t& option : options) {
        if (!IsArgument(option)) continue;
        const size_t before = next;
        while (next < words.size() && (next == before || IsList(option)))
            if (!Store(usage, option, words[next++], exitCode)) return false;
        if (next == before && option.required)
            return SayBadUsage(usage, std::string(option.name).append(" is missing"), exitCode);
    }
    if (next == words.size()) return true;
    return SayBadUsage(usage,
                       std::string("'").append(words[next]).append("' is one argument too many") +
                           (next == 0 ? "; a command comes in front of its options" : ""),
                       exitCode);
}

}  // namespace

bool ParseCommandLine(const Usage_t& usage, std::span<const Option_t> options, const Arguments_t& arguments,
                      int* exitCode) {
    std::vector<char*> words = {const_cast<char*>(usage.command)};
    for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
    const auto count = static_cast<int>(words.size());
    words.push_back(nullptr);
    std::vector<option> known;
    std::string letters = ":h";
    for (const Option_t& option : options) {
        if (IsArgument(option)) continue;
        const int number = kFirstOption + static_cast<int>(&option - options.data());
        known.push_back({option.name + 2, TakesValue(option) ? required_argument : no_argument, nullptr, number});
        if (option.letter != 0) letters.append(1, option.letter).append(TakesValue(option) ? ":" : "");
    }
    known.push_back({"help", no_argument, nullptr, kHelp});
    known.push_back({});
    opterr = 0;
    optind = 0;  // from the start, as after an earlier parse
    for (int found; (found = getopt_long(count, words.data(), letters.c_str(), known.data(), nullptr)) != -1;) {
        // The word that named the option: in front of its value, if that is a word of its own.
        const bool ownWord = optarg != nullptr && optind >= 2 && optarg == words[static_cast<size_t>(optind) - 1];
        const std::string_view word = words[static_cast<size_t>(optind) - (ownWord ? 2 : 1)];
        if (found == kHelp) {
            *exitCode = PrintHelp(usage, options);
            return false;
        }
        if (found == kMissingValue) return SayBadUsage(usage, std::string(word).append(" needs a value"), exitCode);
        const bool isLetter = found < kFirstOption;
        const auto place =
            isLetter ? std::ranges::find(options, found, &Option_t::letter) : options.begin() + (found - kFirstOption);
        const Option_t* option = place == options.end() ? nullptr : &*place;
        // Names are taken whole: an abbreviation that works today may name another option tomorrow.
        if (option == nullptr || (!isLetter && word.substr(0, word.find('=')) != option->name))
            return SayBadUsage(usage, std::string("'").append(word).append("' is no option here"), exitCode);
        if (!Store(usage, *option, optarg, exitCode)) return false;
    }
    return StoreArguments(usage, options,
                          std::span(words).first(static_cast<size_t>(count)).subspan(static_cast<size_t>(optind)),
                          exitCode);
}

bool SayBadUsage(const Usage_t& usage, const std::string& message, int* exitCode) {
    SayError("bad usage", message + "; try " + usage.command + " --help");
    *exitCode = kExitUsage;
    return false;
}

static bool ParseDigits(std::string_view text, int base, uint64_t most, uint64_t* value) {
    uint64_t parsed = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed, base);
    if (error != std::errc() || end != text.data() + text.size() || parsed > most) return false;
    *value = parsed;
    return true;
}

static bool DropHexPrefix(std::string_view* text) {
    if (!text->starts_with("0x") && !text->starts_with("0X")) return false;
    text->remove_prefix(2);
    return true;
}

bool ParseNumber(std::string_view text, uint64_t most, uint64_t* value) {
    const int base = DropHexPrefix(&text) ? 16 : 10;
    return ParseDigits(text, base, most, value);
}

bool ParseHandle(const Usage_t& usage, const std::string& text, uint64_t* handle, int* exitCode) {
    if (!ParseHex(text, 0xFFFF, handle))
        return SayBadUsage(usage, "'" + text + "' is no handle of 16 bits; write one as 17, 0x11 or 11h", exitCode);
    const char last = text.back();
    if (text.starts_with("0x") || text.starts_with("0X") || last == 'h' || last == 'H') return true;
    const std::string plain = text.substr(std::min(text.find_first_not_of('0'), text.size() - 1));
    const bool hasLetter = text.find_first_not_of("0123456789") != text.npos;
    if (hasLetter || plain != text)
        return SayBadUsage(usage,
                           "'" + text + "' is no plain number; write " + (hasLetter ? "" : plain + " for decimal, ") +
                               "0x" + plain + " or " + plain + "h for hexadecimal",
                           exitCode);
    return ParseNumber(text, 0xFFFF, handle) || SayBadUsage(usage, "'" + text + "' is no handle of 16 bits", exitCode);
}

bool ParseHex(std::string_view text, uint64_t most, uint64_t* value) {
    DropHexPrefix(&text);
    if (text.ends_with('h') || text.ends_with('H')) text.remove_suffix(1);
    return ParseDigits(text, 16, most, value);
}
