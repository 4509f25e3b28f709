// Files compressed with gzip, where the build found zlib.
#include "Packages/Format/TableFile.h"

#ifdef QUORLIN_HAS_ZLIB
#include <zlib.h>
#endif

bool IsCompressed(std::span<const uint8_t> bytes) { return bytes.size() > 2 && bytes[0] == 0x1F && bytes[1] == 0x8B; }

#ifdef QUORLIN_HAS_ZLIB
const char* Inflate(std::span<const uint8_t> bytes, std::vector<uint8_t>* inflated) {
    constexpr int kGzip = 15 + 16;  // the largest window, and gzip's own head and tail
    z_stream stream = {};
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
    inflateEnd(&stream);
    if (status == Z_OK) return "larger than 64 MiB once decompressed, so not a table; try the file that holds the dump";
    return status == Z_STREAM_END ? nullptr : "compressed with gzip, but damaged or cut short; fetch the file anew";
}
#else
const char* Inflate(std::span<const uint8_t>, std::vector<uint8_t>*) {
    return "compressed with gzip, which this build can't read; try gunzip first";
}
#endif
