// Decodes any bytes as a table, in a sweep and type by type.
// Input: the processor signature (4 bytes), the SMBIOS version (major and minor, 1 byte each), the table.
#include "Fuzz/Decode.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ClInput input(data, size);
    const auto signature = input.Take<uint32_t>();
    const auto major = input.Take<uint8_t>(), minor = input.Take<uint8_t>();
    const std::vector<uint8_t> table = input.Rest();
    DecodeTable({table.data(), static_cast<uint32_t>(table.size()), major, minor, signature});
    return 0;
}
