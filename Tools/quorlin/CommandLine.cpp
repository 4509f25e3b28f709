#include "Tools/quorlin/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>

#include "Tools/quorlin/Output.h"

namespace {

bool IsArgument(const Option_t& option) { return option.name[0] != '-'; }

void AddOption(CLI::App& app, const Option_t& option) {
    CLI::Option* added = nullptr;
    if (auto* const* flag = std::get_if<bool*>(&option.target))
        added = app.add_flag(option.name, **flag, option.help);
    else if (auto* const* text = std::get_if<std::string*>(&option.target))
        added = app.add_option(option.name, **text, option.help);
    else
        added = app.add_option(option.name, *std::get<std::vector<std::string>*>(option.target), option.help)
                    ->allow_extra_args(IsArgument(option));
    if (option.typeName != nullptr) added->type_name(option.typeName);
    if (option.required) added->required();
}

void Parse(CLI::App& app, const Arguments_t& arguments) {
    app.parse(Arguments_t(arguments.rbegin(), arguments.rend()));
}

// Back to what they were, so that a second parse finds them untouched.
void Clear(const Option_t& option) {
    std::visit([](auto* target) { *target = {}; }, option.target);
}

bool IsNamed(const Option_t& option, const Arguments_t& arguments) {
    const std::string_view name = option.name;
    return std::ranges::any_of(arguments, [name](const std::string& argument) {
        return argument.starts_with(name) && (argument.size() == name.size() || argument[name.size()] == '=');
    });
}

// With all options known: for help, and for telling what is wrong.
bool ParseWhole(const Usage_t& usage, std::span<const Option_t> options, const Arguments_t& arguments, int* exitCode) {
    CLI::App app(usage.description, usage.command);
    app.footer(usage.footer);
    for (const Option_t& option : options) AddOption(app, option);
    try {
        Parse(app, arguments);
    } catch (const CLI::Success& success) {
        *exitCode = app.exit(success);
        return false;
    } catch (const CLI::ParseError& error) {
        return SayBadUsage(usage, error.what(), exitCode);
    }
    return true;
}

}  // namespace

// Setting options up is most of what a short run costs, so only those that the arguments name are set up at first.
bool ParseCommandLine(const Usage_t& usage, std::span<const Option_t> options, const Arguments_t& arguments,
                      int* exitCode) {
    CLI::App app;
    app.set_help_flag();
    for (const Option_t& option : options)
        if (IsArgument(option) || IsNamed(option, arguments)) AddOption(app, option);
    try {
        Parse(app, arguments);
        return true;
    } catch (const CLI::Error&) {
        for (const Option_t& option : options) Clear(option);
        return ParseWhole(usage, options, arguments, exitCode);
    }
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

bool ParseHex(std::string_view text, uint64_t most, uint64_t* value) {
    DropHexPrefix(&text);
    if (text.ends_with('h') || text.ends_with('H')) text.remove_suffix(1);
    return ParseDigits(text, 16, most, value);
}
