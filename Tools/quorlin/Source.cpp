#include "Tools/quorlin/Source.h"

#include "Tools/quorlin/Columns.h"
#include "Tools/quorlin/Trace.h"

namespace {

constexpr Choice_t kMethods[] = {
    {"firmware", "by the system's firmware-table call"   },
    {"scan",     "of its memory"                         },
    {"efi",      "at the address that UEFI firmware gave"},
};
constexpr Choice_t kForms[] = {{"any"}, {"dump"}, {"table"}, {"windows"}, {"sysfs"}};
constexpr Choice_t kColors[] = {
    {"auto", "on a terminal"},
    {"always"     },
    {"never"},
};

// "M.m", two numbers below 256.
bool ParseVersion(std::string_view text, uint8_t* major, uint8_t* minor) {
    const size_t dot = text.find('.');
    uint64_t first, second;
    if (dot == text.npos || !ParseNumber(text.substr(0, dot), 255, &first) ||
        !ParseNumber(text.substr(dot + 1), 255, &second))
        return false;
    *major = static_cast<uint8_t>(first);
    *minor = static_cast<uint8_t>(second);
    return true;
}

}  // namespace

std::vector<Option_t> Source_t::OptionsForOne() {
    const auto flag = [](const char* name, const char* help, bool* target) {
        return Option_t{.name = name, .typeName = nullptr, .help = help, .target = target};
    };
    const auto text = [](const char* name, const char* typeName, const char* help, std::string* target) {
        return Option_t{.name = name, .typeName = typeName, .help = help, .target = target};
    };
    const auto word = [](const char* name, const char* typeName, const char* help, std::string* target,
                         Choices_t choices, bool isHidden = false) {
        return Option_t{.name = name,
                        .typeName = typeName,
                        .help = help,
                        .target = target,
                        .choices = choices,
                        .isHidden = isHidden};
    };
    std::vector<Option_t> options;
    options.reserve(24);  // with those that commands add
    options.insert(
        options.end(),
        {
            {"--image", "FILE", "Read a dump, a bare table, or a folder of both; - for standard input", &images},
            flag("--sample", "Use the embedded sample table", &sample),
            flag("--sample-if-none", "Use the sample if this machine has no table", &sampleIfNone),
            ReplayOption(&replay),
            flag("--driver", "Access this machine only through its driver", &driver),
            flag("--no-driver", "Access this machine without its driver", &noDriver),
            word("--method", "METHOD", "How to read this machine's table; without it, firmware and then scan", &method,
                 kMethods),
            word("--road", "METHOD", "The old name of --method", &method, kMethods, true),
            word("--as", "FORM", "The form of images, whatever their content", &form, kForms),
            text("--smbios-version", "M.m", "SMBIOS version of a bare table (default 3.0)", &version),
            text("--signature", "HEX", "Processor signature of an image, in hexadecimal (default 0)", &signatureText),
            flag("--recover", "Look for structures after a damaged one", &recover),
            TraceOption(&trace),
            word("--color", "WHEN", "Whether headings stand out", &color, kColors),
            flag("--verbose", "Say on standard error where a table comes from", &verbose),
    });
    return options;
}

Option_t ReplayOption(std::string* folder) {
    return {.name = "--replay",
            .typeName = "DIR",
            .help = "Answer as the recorded machine in a folder that quorlin record wrote",
            .target = folder};
}

std::vector<Option_t> Source_t::OptionsForMany() {
    std::vector<Option_t> options = OptionsForOne();
    options.front().help =
        "Read a dump, a bare table, or a folder of both; - for standard input; may be given more than once";
    options.push_back(
        {"--image-list", "FILE", "Read the images that FILE names, one a line (- for standard input)", &imageList});
    return options;
}

void Source_t::Check() {
    const bool fromFiles = !images.empty() || !imageList.empty();
    const bool isReplay = !replay.empty();
    if (int{fromFiles} + int{sample} + int{sampleIfNone} + int{isReplay} > 1)
        throw BadUsage_t{"--image, --sample, --sample-if-none and --replay exclude each other"};
    if ((fromFiles || sample || isReplay) && (driver || noDriver || !method.empty()))
        throw BadUsage_t{"--driver, --no-driver and --method are for this machine, not for an image or a record"};
    if (noDriver && (driver || ReadsMemory()))
        throw BadUsage_t{"--no-driver excludes --driver, --method scan and --method efi"};
    if (!form.empty()) FormByName(form, &as);
    if (!version.empty() && !ParseVersion(version, &major, &minor))
        throw BadUsage_t{"--smbios-version: '" + version + "' is not a version like 3.0"};
    uint64_t number = 0;
    if (!signatureText.empty() && !ParseHex(signatureText, UINT32_MAX, &number))
        throw BadUsage_t{"--signature: '" + signatureText + "' is not a hexadecimal number of 32 bits"};
    signature = static_cast<uint32_t>(number);
    if (!color.empty()) SetColor(color);
    BeginTrace(trace);
    if (verbose) SayRefusedConfig();
}

void Source_t::CheckOne() {
    if (IsFleet()) throw BadUsage_t{"this command reads one table; give one --image"};
    Check();
}
