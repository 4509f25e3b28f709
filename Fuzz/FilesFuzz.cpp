// The forms in which several files make a table or a run: a folder of an entry point and a table, a list of images, and
// compressed files. In front: the size of the first of two parts (2 bytes).
#include <zlib.h>

#include "Fuzz/Output.h"
#include "Fuzz/Platform.h"
#include "Packages/Format/TableFile.h"

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

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ClInput input(data, size);
    const size_t split = input.Take<uint16_t>();
    const std::vector<uint8_t> rest = input.Rest();
    const std::string bytes(rest.begin(), rest.end()), first = bytes.substr(0, split),
                                                       second = bytes.substr(first.size());
    if (("\n" + first + "\n").find("\n-\n") != first.npos) return 0;  // it would wait for standard input
    platform.files = {
        {"folder/smbios_entry_point", first                         },
        {"folder/DMI",                second                        },
        {"plain",                     second                        },
        {"packed",                    Packed(second)                },
        {"broken",                    "\x1F\x8B\x08" + std::string(6, '\0') + '\3' + bytes},
        {"names",                           first + "\nfolder\nplain\npacked\r\nbroken\n\nplain"                                                  },
    };
    RunOnPlatform({"--format", "ndjson", "--image-list", "names"});
    RequireNdjson(platform.output);
    RunOnPlatform({"types", "--format", "csv", "--image-list", "names"});
    RequireCsv(platform.output);
    // What a file says is what it says compressed.
    RunOnPlatform({"--format", "lines", "plain"});
    const std::string plain = platform.output;
    RunOnPlatform({"--format", "lines", "packed"});
    // A file that is compressed already is unpacked once.
    Require(IsCompressed({reinterpret_cast<const uint8_t*>(second.data()), second.size()}) || second.empty() ||
            platform.output == plain);
    EndRuns();
    return 0;
}
