// Reads tables from several files: a folder with an entry point and a table, a list of images, compressed files.
// Input: the size of the first part (2 bytes), the form to read images as (1 byte), the two parts.
#include <zlib.h>

#include "Fuzz/Output.h"
#include "Fuzz/Platform.h"
#include "Packages/Format/TableFile.h"

static constexpr const char* kForms[] = {"any", "dump", "table", "windows", "sysfs"};

static std::string Packed(const std::string& text) {
    z_stream stream = {};
    constexpr int kGzip = 16 + MAX_WBITS;
    Require(deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, kGzip, 8, Z_DEFAULT_STRATEGY) == Z_OK);
    std::string packed(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    Require(deflate(&stream, Z_FINISH) == Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

// Counts the names in a list: its lines without the empty ones, up to one with a NUL.
static size_t CountNames(std::string_view list) {
    size_t count = 0;
    while (!list.empty()) {
        std::string_view line = list.substr(0, list.find('\n'));
        if (line.find('\0') != line.npos) break;
        list.remove_prefix(std::min(line.size() + 1, list.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        count += !line.empty();
    }
    return count;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ClInput input(data, size);
    const size_t split = input.Take<uint16_t>();
    const char* const as = kForms[input.Take<uint8_t>() % std::size(kForms)];
    const std::vector<uint8_t> rest = input.Rest();
    const std::string bytes(rest.begin(), rest.end());
    const std::string first = bytes.substr(0, split), second = bytes.substr(first.size());
    const std::string names = "folder\nplain\npacked\r\nbroken\n\n" + first.substr(0, 256);
    // A line of "-" would wait for standard input.
    for (const std::string_view line : {"\n-\n", "\n-\r\n"})
        if ((names + "\n").find(line) != names.npos) return 0;
    const std::string broken = "\x1F\x8B\x08" + std::string(6, '\0') + '\3' + bytes;
    platform.files = {
        {"folder/smbios_entry_point", first         },
        {"folder/DMI",                second        },
        {"plain",                     second        },
        {"packed",                    Packed(second)},
        {"broken",                    broken        },
        {"names",                     names         },
    };
    // Each name gives a line, even if its file can't be read.
    RunOnPlatform({"--as", as, "--format", "ndjson", "--image-list", "names"});
    RequireNdjson(platform.output);
    RequireHarmless(platform.errors);
    Require(static_cast<size_t>(std::ranges::count(platform.output, '\n')) == CountNames(names));
    RunOnPlatform({"types", "--as", as, "--format", "csv", "--image-list", "names"});
    RequireCsv(platform.output);
    RequireHarmless(platform.errors);
    // Compressing a file must not change the output. A file that is compressed already is excluded: only one layer is
    // unpacked.
    const int exitCode = RunOnPlatform({"--as", as, "--format", "lines", "plain"});
    const std::string plain = platform.output;
    const int packedExitCode = RunOnPlatform({"--as", as, "--format", "lines", "packed"});
    if (!second.empty() && !IsCompressed({reinterpret_cast<const uint8_t*>(second.data()), second.size()}))
        Require(packedExitCode == exitCode && platform.output == plain);
    EndRuns();
    return 0;
}
