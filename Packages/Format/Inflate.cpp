// Files compressed with gzip. Needs zlib, if the build found it.
#include "Packages/Format/TableFile.h"

#ifdef QUORLIN_HAS_ZLIB
#include <zlib.h>
#endif

bool IsCompressed(std::span<const uint8_t> bytes) { return bytes.size() > 2 && bytes[0] == 0x1F && bytes[1] == 0x8B; }

#ifdef QUORLIN_HAS_ZLIB
namespace {

// Calls inflateEnd even if an allocation throws. Harmless if the stream was never begun.
struct Inflation_t {
    z_stream stream = {};

    Inflation_t() = default;
    Inflation_t(const Inflation_t&) = delete;
    Inflation_t& operator=(const Inflation_t&) = delete;
    ~Inflation_t() { inflateEnd(&stream); }
};

}  // namespace

const char* Inflate(std::span<const uint8_t> bytes, std::vector<uint8_t>* inflated) {
    constexpr int kGzip = 15 + 16;  // the largest window, with gzip's header and trailer
    constexpr const char* kTooLarge = "larger than 4 MiB, so not a table; try the file with the dump";
    if (bytes.size() > kMostFileBytes) return kTooLarge;
    Inflation_t inflation;
    z_stream& stream = inflation.stream;
    if (inflateInit2(&stream, kGzip) != Z_OK) return "out of memory";
    stream.next_in = const_cast<Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    int status = Z_OK;
    inflated->clear();
    while (status == Z_OK && inflated->size() <= kMostFileBytes) {
        const size_t size = inflated->size();
        inflated->resize(size + (32u << 10));
        stream.next_out = inflated->data() + size;
        stream.avail_out = static_cast<uInt>(inflated->size() - size);
        status = inflate(&stream, Z_NO_FLUSH);
        inflated->resize(inflated->size() - stream.avail_out);
    }
    switch (status) {
        case Z_STREAM_END: return nullptr;
        case Z_OK: return kTooLarge;
        case Z_MEM_ERROR: return "out of memory";
        default: return "compressed with gzip, but damaged or cut short; fetch the file anew";
    }
}
#else
const char* Inflate(std::span<const uint8_t>, std::vector<uint8_t>*) {
    return "compressed with gzip, which this build can't read; try gunzip first";
}
#endif
