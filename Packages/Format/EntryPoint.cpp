#include "Packages/Format/EntryPoint.h"

#include <cstring>

namespace {

constexpr size_t kSize32 = 0x1F;  // _SM_ with the intermediate _DMI_ part
constexpr size_t kSize64 = 0x18;  // _SM3_

template <class Number>
Number Read(const uint8_t* bytes, size_t offset) {
    Number number;
    std::memcpy(&number, bytes + offset, sizeof number);
    return number;
}

// The bytes of a valid part add up to 0.
bool AddsUp(const uint8_t* bytes, size_t size) {
    uint8_t sum = 0;
    for (size_t place = 0; place < size; place++) sum = static_cast<uint8_t>(sum + bytes[place]);
    return sum == 0;
}

}  // namespace

bool ParseEntryPoint(const uint8_t* bytes, size_t size, EntryPoint_t* point) {
    if (size >= kSize64 && std::memcmp(bytes, "_SM3_", 5) == 0) {
        *point = {bytes[7],
                  bytes[8],
                  0,
                  Read<uint64_t>(bytes, 0x10),
                  Read<uint32_t>(bytes, 0x0C),
                  true,
                  kSize64,
                  AddsUp(bytes, kSize64)};
        return true;
    }
    if (size >= kSize32 && std::memcmp(bytes, "_SM_", 4) == 0) {
        const bool fits = AddsUp(bytes, kSize32) && AddsUp(bytes + 0x10, kSize32 - 0x10);
        *point = {bytes[6], bytes[7], bytes[0x1E], Read<uint32_t>(bytes, 0x18), Read<uint16_t>(bytes, 0x16),
                  false,    kSize32,  fits};
        return true;
    }
    return false;
}
