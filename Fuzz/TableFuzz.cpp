// A table image of any bytes through the sweep and every explicit type. In front of it: the processor's signature (4
// bytes), and the SMBIOS version's major and minor.
#include "Fuzz/Decode.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ClInput input(data, size);
    const auto signature = input.Take<uint32_t>();
    const auto major = input.Take<uint8_t>(), minor = input.Take<uint8_t>();
    const std::vector<uint8_t> table = input.Rest();
    DecodeTable({table.data(), static_cast<uint32_t>(table.size()), major, minor, signature});
    return 0;
}
