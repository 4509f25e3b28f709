// PCI configuration spaces as text, in the form that lspci -xxxx writes and lspci -F reads. Works on bytes.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct PciFunction_t {
    uint32_t location;           // bits 0-7 bus, 8-12 device, 13-15 function, from 16 segment
    std::vector<uint8_t> bytes;  // of configuration space: 64, 128, 256 or 4096
    bool operator==(const PciFunction_t&) const = default;
};

// A number that sorts locations by segment, bus, device and function.
uint32_t PciOrder(uint32_t location);

// Segment, bus, device and function, such as "0000:00:1f.3".
std::string PciAddress(uint32_t location);

// Functions must be in rising order.
std::string WritePciDump(std::span<const PciFunction_t> functions);
// Takes what lspci writes, with and without segments. Returns what is wrong, with the line's number, or an empty text.
// Throws std::bad_alloc.
std::string ParsePciDump(std::string_view text, std::vector<PciFunction_t>* functions);

// Calls `visit` with the offset of each extended capability of a configuration space, and its number. Ends at a list
// that goes nowhere or in circles.
template <class Visit>
void ForEachExtendedCapability(std::span<const uint8_t> bytes, const Visit& visit) {
    constexpr size_t kFirst = 0x100, kMost = (4096 - kFirst) / 8;
    size_t offset = kFirst;
    for (size_t count = 0; count < kMost && offset >= kFirst && offset + 4 <= bytes.size(); count++) {
        const uint32_t head = uint32_t{bytes[offset]} | uint32_t{bytes[offset + 1]} << 8 |
                              uint32_t{bytes[offset + 2]} << 16 | uint32_t{bytes[offset + 3]} << 24;
        if (head == 0 || head == UINT32_MAX) return;
        visit(offset, head & 0xFFFF);
        offset = head >> 20 & ~3u;
    }
}
