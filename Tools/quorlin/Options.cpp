#include "Tools/quorlin/Options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdio>

#include "Tools/quorlin/Output.h"

namespace {

// "M.m", two numbers below 256.
bool ParseVersion(const std::string& text, uint8_t* major, uint8_t* minor) {
    unsigned parts[2];
    char rest;
    if (std::sscanf(text.c_str(), "%3u.%3u%c", &parts[0], &parts[1], &rest) != 2) return false;
    if (parts[0] > 255 || parts[1] > 255) return false;
    *major = static_cast<uint8_t>(parts[0]);
    *minor = static_cast<uint8_t>(parts[1]);
    return true;
}

// Hexadecimal digits, with or without 0x in front or h behind.
bool ParseHex(std::string text, uint32_t* value) {
    if (text.starts_with("0x") || text.starts_with("0X")) text.erase(0, 2);
    if (text.ends_with('h') || text.ends_with('H')) text.pop_back();
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *value, 16);
    return error == std::errc() && end == text.data() + text.size();
}

// What the command line holds, before it is checked as a whole.
struct Given_t {
    std::string image, format = "text", signature, version;
    bool sample = false, sampleIfNone = false;
    std::vector<unsigned> types;
};

// Adds the options that `wanted` accepts by their names.
template <class Wanted>
void AddOptions(CLI::App& app, Given_t* given, Wanted wanted) {
    if (wanted("--image"))
        app.add_option("--image", given->image, "Read a dump or a bare table from FILE")->type_name("FILE");
    if (wanted("--sample")) app.add_flag("--sample", given->sample, "Show the embedded sample table");
    if (wanted("--sample-if-none"))
        app.add_flag("--sample-if-none", given->sampleIfNone, "Show the sample where this machine has no table");
    if (wanted("--type"))
        app.add_option("--type", given->types, "Only structures of type N (0 to 254); may be given more than once")
            ->type_name("N")
            ->allow_extra_args(false);
    if (wanted("--signature"))
        app.add_option("--signature", given->signature, "Processor signature of an image, in hexadecimal (0 if absent)")
            ->type_name("HEX");
    if (wanted("--smbios-version"))
        app.add_option("--smbios-version", given->version, "SMBIOS version of a bare table (3.0 if absent)")
            ->type_name("M.m");
    if (wanted("--format"))
        app.add_option("--format", given->format, "text (for people) or lines (one item a line)")->type_name("FORMAT");
    if (wanted("--version")) app.set_version_flag("--version", "quorlin " QUORLIN_VERSION);
}

void Parse(CLI::App& app, const std::vector<std::string>& arguments) {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend() - 1));
}

bool BadUsage(const std::string& message, int* exitCode) {
    SayError("bad usage", message + "; try quorlin --help");
    *exitCode = kExitUsage;
    return false;
}

// Parses with all options known: for help, for the version, and for telling what is wrong.
bool ParseWhole(const std::vector<std::string>& arguments, Given_t* given, int* exitCode) {
    CLI::App app(
        "Shows what a machine's SMBIOS table says, structure by structure: this machine's, or a table image's.",
        "quorlin");
    app.footer(
        "Example: quorlin --image table.bin --type 4 --type 17\n"
        "Exit codes: 0 done, 1 no table or an unreadable one, 2 bad usage.");
    AddOptions(app, given, [](const char*) { return true; });
    try {
        Parse(app, arguments);
    } catch (const CLI::Success& success) {
        *exitCode = app.exit(success);
        return false;
    } catch (const CLI::ParseError& error) {
        return BadUsage(error.what(), exitCode);
    }
    return true;
}

// Setting options up is most of what a short run costs, so only those that the arguments name are set up at first.
bool ParseGiven(const std::vector<std::string>& arguments, Given_t* given, int* exitCode) {
    CLI::App app;
    app.set_help_flag();
    AddOptions(app, given, [&](std::string_view name) {
        return std::ranges::any_of(arguments, [name](const std::string& argument) {
            return argument.starts_with(name) && (argument.size() == name.size() || argument[name.size()] == '=');
        });
    });
    try {
        Parse(app, arguments);
        return true;
    } catch (const CLI::Error&) {
        *given = {};
        return ParseWhole(arguments, given, exitCode);
    }
}

}  // namespace

bool ParseOptions(const std::vector<std::string>& arguments, Options_t* options, int* exitCode) {
    Given_t given;
    if (!ParseGiven(arguments, &given, exitCode)) return false;
    if (int{!given.image.empty()} + int{given.sample} + int{given.sampleIfNone} > 1)
        return BadUsage("--image, --sample and --sample-if-none exclude each other", exitCode);
    if (given.format != "text" && given.format != "lines")
        return BadUsage("--format: '" + given.format + "' is neither text nor lines", exitCode);
    if (!given.version.empty() && !ParseVersion(given.version, &options->major, &options->minor))
        return BadUsage("--smbios-version: '" + given.version + "' is no version like 3.0", exitCode);
    if (!given.signature.empty() && !ParseHex(given.signature, &options->signature))
        return BadUsage("--signature: '" + given.signature + "' is no hexadecimal number of 32 bits", exitCode);
    for (const unsigned type : given.types) {
        if (type > 254) return BadUsage("--type: " + std::to_string(type) + " is not within 0 to 254", exitCode);
        options->types.push_back(static_cast<uint8_t>(type));
    }
    options->format = given.format == "lines" ? Format_t::kLines : Format_t::kText;
    options->image = given.image;
    options->source = !given.image.empty() ? Source_t::kImageFile
                      : given.sample       ? Source_t::kSample
                      : given.sampleIfNone ? Source_t::kThisMachineOrSample
                                           : Source_t::kThisMachine;
    *exitCode = kExitDone;
    return true;
}
