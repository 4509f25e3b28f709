#include "Tools/quorlin/CommandLine.h"

#include <getopt.h>

#include <algorithm>
#include <charconv>

namespace {

constexpr int kHelp = 'h', kMissingValue = ':';
constexpr int kFirstOption = 256;  // what getopt_long gives for the first option of the table

// "a, b or c", each with its remark if `withRemarks`.
std::string Listed(Choices_t choices, bool withRemarks) {
    std::string text;
    for (const Choice_t& choice : choices) {
        if (&choice != choices.data()) text += &choice == &choices.back() ? " or " : ", ";
        text += choice.word;
        if (withRemarks && choice.remark[0] != '\0') text.append(" (").append(choice.remark).append(")");
    }
    return text;
}

// An empty value is refused: a script's variable was empty, and what it should have held can't be guessed.
void Store(const Option_t& option, const char* value) {
    if (option.TakesValue()) {
        if (*value == '\0') throw BadUsage_t{std::string(option.name) + " may not be empty"};
        const auto isValue = [value](const Choice_t& choice) { return std::string_view(value) == choice.word; };
        if (!option.choices.empty() && !option.takesOthers && std::ranges::none_of(option.choices, isValue))
            throw BadUsage_t{std::string(option.name) + ": unknown value '" + value + "'; use " +
                             Listed(option.choices, false)};
    }
    if (auto* const* flag = std::get_if<bool*>(&option.target))
        **flag = true;
    else if (auto* const* text = std::get_if<std::string*>(&option.target))
        **text = value;
    else
        std::get<std::vector<std::string>*>(option.target)->emplace_back(value);
}

// The words that are no options, one for each argument of the table; the last one may be a list.
void StoreArguments(std::span<const Option_t> options, std::span<char* const> words) {
    size_t next = 0;
    for (const Option_t& option : options) {
        if (!option.IsArgument()) continue;
        const size_t before = next;
        while (next < words.size() && (next == before || option.IsList())) Store(option, words[next++]);
        if (next == before && option.required) throw BadUsage_t{std::string(option.name) + " is missing"};
    }
    if (next == words.size()) return;
    throw BadUsage_t{std::string("unexpected argument '") + words[next] + "'" +
                     (next == 0 ? "; a command comes before its options" : "")};
}

}  // namespace

std::string Option_t::Help() const {
    return choices.empty() || takesOthers ? help : std::string(help) + ": " + Listed(choices, true);
}

bool ParseCommandLine(std::span<const Option_t> options, const Arguments_t& arguments) {
    std::vector<char*> words;
    words.reserve(arguments.size() + 2);
    words.push_back(const_cast<char*>("quorlin"));
    for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
    const auto count = static_cast<int>(words.size());
    words.push_back(nullptr);
    std::vector<option> known;
    known.reserve(options.size() + 2);
    std::string letters = ":h";
    for (const Option_t& option : options) {
        if (option.IsArgument()) continue;
        const int number = kFirstOption + static_cast<int>(&option - options.data());
        known.push_back({option.name + 2, option.TakesValue() ? required_argument : no_argument, nullptr, number});
        if (option.letter != 0) letters.append(1, option.letter).append(option.TakesValue() ? ":" : "");
    }
    known.push_back({"help", no_argument, nullptr, kHelp});
    known.push_back({});
    opterr = 0;
    optind = 0;  // from the start, as after an earlier parse
    for (int found; (found = getopt_long(count, words.data(), letters.c_str(), known.data(), nullptr)) != -1;) {
        // The word that named the option. It is one word back if the value is a word of its own.
        const bool ownWord = optarg != nullptr && optind >= 2 && optarg == words[static_cast<size_t>(optind) - 1];
        const std::string_view word = words[static_cast<size_t>(optind) - (ownWord ? 2 : 1)];
        if (found == kHelp) return false;
        if (found == kMissingValue) throw BadUsage_t{std::string(word) + " needs a value"};
        const bool isLetter = found < kFirstOption;
        const auto place =
            isLetter ? std::ranges::find(options, found, &Option_t::letter) : options.begin() + (found - kFirstOption);
        const Option_t* option = place == options.end() ? nullptr : &*place;
        // Names are taken whole: an abbreviation that works today may name another option tomorrow.
        if (option == nullptr || (!isLetter && word.substr(0, word.find('=')) != option->name))
            throw BadUsage_t{"unknown option '" + std::string(word) + "'"};
        Store(*option, optarg);
    }
    StoreArguments(options, std::span(words).first(static_cast<size_t>(count)).subspan(static_cast<size_t>(optind)));
    return true;
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

uint16_t ParseHandle(const std::string& text) {
    uint64_t handle;
    const BadUsage_t bad = {"'" + text + "' is not a 16-bit handle; write it as 17, 0x11 or 11h"};
    if (!ParseHex(text, UINT64_MAX, &handle)) throw bad;
    const bool isHex = text.starts_with("0x") || text.starts_with("0X") || text.ends_with('h') || text.ends_with('H');
    if (!isHex) {
        const std::string plain = text.substr(std::min(text.find_first_not_of('0'), text.size() - 1));
        const bool hasLetter = text.find_first_not_of("0123456789") != text.npos;
        if (hasLetter || plain != text)
            throw BadUsage_t{"'" + text + "' is ambiguous; write " + (hasLetter ? "" : plain + " for decimal, ") +
                             "0x" + plain + " or " + plain + "h for hexadecimal"};
        ParseNumber(text, UINT64_MAX, &handle);
    }
    if (handle > 0xFFFF) throw bad;
    return static_cast<uint16_t>(handle);
}

bool ParseHex(std::string_view text, uint64_t most, uint64_t* value) {
    DropHexPrefix(&text);
    if (text.ends_with('h') || text.ends_with('H')) text.remove_suffix(1);
    return ParseDigits(text, 16, most, value);
}
