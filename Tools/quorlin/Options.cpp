#include "Tools/quorlin/Options.h"

#include <CLI/CLI.hpp>
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

}  // namespace

bool ParseOptions(const std::vector<std::string>& arguments, Options_t* options, int* exitCode) {
    CLI::App app(
        "Shows what a machine's SMBIOS table says, structure by structure: this machine's, or a table image's.",
        "quorlin");
    std::string format = "text", signature, version;
    bool sample = false, sampleIfNone = false;
    std::vector<unsigned> types;
    auto* imageOption =
        app.add_option("--image", options->image, "Read a dump or a bare table from FILE")->type_name("FILE");
    auto* sampleFlag = app.add_flag("--sample", sample, "Show the embedded sample table")->excludes(imageOption);
    app.add_flag("--sample-if-none", sampleIfNone, "Show the sample where this machine has no table")
        ->excludes(imageOption)
        ->excludes(sampleFlag);
    app.add_option("--type", types, "Only structures of type N (0 to 254); may be given more than once")
        ->type_name("N")
        ->check(CLI::Range(0u, 254u))
        ->allow_extra_args(false);
    app.add_option("--signature", signature, "Processor signature of an image, in hexadecimal (0 if absent)")
        ->type_name("HEX");
    app.add_option("--smbios-version", version, "SMBIOS version of a bare table (3.0 if absent)")->type_name("M.m");
    app.add_option("--format", format, "text (for people) or lines (one item a line)")
        ->type_name("FORMAT")
        ->check(CLI::IsMember({"text", "lines"}));
    app.set_version_flag("--version", "quorlin " QUORLIN_VERSION);
    app.footer(
        "Example: quorlin --image table.bin --type 4 --type 17\n"
        "Exit codes: 0 done, 1 no table or an unreadable one, 2 bad usage.");
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend() - 1));
    } catch (const CLI::Success& success) {
        *exitCode = app.exit(success) == 0 ? kExitDone : kExitUsage;
        return false;
    } catch (const CLI::ParseError& error) {
        SayError("bad usage", std::string(error.what()) + "; try quorlin --help");
        *exitCode = kExitUsage;
        return false;
    }
    *exitCode = kExitUsage;
    if (!version.empty() && !ParseVersion(version, &options->major, &options->minor)) {
        SayError("--smbios-version", "'" + version + "' is no version; try 3.0");
        return false;
    }
    if (!signature.empty() && !ParseHex(signature, &options->signature)) {
        SayError("--signature", "'" + signature + "' is no hexadecimal number of 32 bits; try 000406E0");
        return false;
    }
    for (const unsigned type : types) options->types.push_back(static_cast<uint8_t>(type));
    options->format = format == "lines" ? Format_t::kLines : Format_t::kText;
    options->source = imageOption->count() != 0 ? Source_t::kImageFile
                      : sample                  ? Source_t::kSample
                      : sampleIfNone            ? Source_t::kThisMachineOrSample
                                                : Source_t::kThisMachine;
    *exitCode = kExitDone;
    return true;
}
