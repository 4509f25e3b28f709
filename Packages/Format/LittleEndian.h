// Numbers in bytes of any alignment.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

// Returns 0 if the bytes end before the number does.
template <class Number>
Number NumberAt(std::span<const uint8_t> bytes, size_t offset) {
    Number number = 0;
    if (offset + sizeof number <= bytes.size()) std::memcpy(&number, &bytes[offset], sizeof number);
    return number;
}
