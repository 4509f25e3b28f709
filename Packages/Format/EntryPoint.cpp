#include "Packages/Format/EntryPoint.h"

#include <cstring>

namespace {

template <class Number>
Number Read(const uint8_t* bytes, size_t offset) {
    Number number;
    std::memcpy(&number, bytes + offset, sizeof number);
    return number;
}

// Whether the bytes add up to 0, as those of a valid part do.
bool AddsUp(const uint8_t* bytes, size_t size) {
    uint8_t sum = 0;
    for (size_t place = 0; place < size; place++) sum = static_cast<uint8_t>(sum + bytes[place]);
    return sum == 0;
}

}  // namespace

bool BeginsWith(std::span<const uint8_t> bytes, std::string_view text) {
    return bytes.size() >= text.size() && std::memcmp(bytes.data(), text.data(), text.size()) == 0;
}

bool ParseEntryPoint(const uint8_t* bytes, size_t size, EntryPoint_t* point) {
    if (size >= kEntryPointSize64 && BeginsWith({bytes, size}, kAnchor64)) {
        *point = {bytes[7],
                  bytes[8],
                  0,
                  Read<uint64_t>(bytes, 0x10),
                  Read<uint32_t>(bytes, 0x0C),
                  true,
                  kEntryPointSize64,
                  AddsUp(bytes, kEntryPointSize64),
                  0,
                  0};
        return true;
    }
    if (size >= kEntryPointSize32 && BeginsWith({bytes, size}, kAnchor32)) {
        const bool fits =
            AddsUp(bytes, kEntryPointSize32) && AddsUp(bytes + kDMIPartOffset, kEntryPointSize32 - kDMIPartOffset);
        *point = {bytes[6], bytes[7],          bytes[0x1E], Read<uint32_t>(bytes, 0x18), Read<uint16_t>(bytes, 0x16),
                  false,    kEntryPointSize32, fits,        Read<uint16_t>(bytes, 0x1C), Read<uint16_t>(bytes, 0x08)};
        return true;
    }
    return false;
}
