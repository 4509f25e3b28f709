#include "Packages/Format/PciDump.h"

#include "Packages/Format/TextLines.h"

namespace {

constexpr size_t kPerRow = 16;

bool IsWhole(size_t size) { return size == 64 || size == 128 || size == 256 || size == 4096; }

// Reads "SSSS:BB:DD.F" or "BB:DD.F", and lets a description follow.
bool ParseHead(ClLines& lines, uint32_t* location) {
    uint64_t segment = 0, bus, device, function;
    if (!lines.TakeHex(2, 4, &bus) || !lines.Take(":") || !lines.TakeHex(2, 2, &device)) return false;
    if (lines.Take(":")) {
        segment = bus;
        bus = device;
        if (!lines.TakeHex(2, 2, &device)) return false;
    }
    if (!lines.Take(".") || !lines.TakeHex(1, 1, &function)) return false;
    if (bus > 0xFF || device > 31 || function > 7) return false;
    *location = static_cast<uint32_t>(segment << 16 | function << 13 | device << 8 | bus);
    return lines.Rest().empty() || lines.Take(" ");
}

// Reads "a0: 00 01 ...", sixteen bytes.
bool ParseRow(ClLines& lines, std::vector<uint8_t>* bytes) {
    uint64_t offset, byte;
    if (!lines.TakeHex(2, 3, &offset) || !lines.Take(":") || offset != bytes->size()) return false;
    for (size_t count = 0; count < kPerRow; count++) {
        if (!lines.Take(" ") || !lines.TakeHex(2, 2, &byte)) return false;
        bytes->push_back(static_cast<uint8_t>(byte));
    }
    return lines.Rest().empty();
}

}  // namespace

uint32_t PciOrder(uint32_t location) {
    return (location & 0xFFFF0000) | (location & 0xFF) << 8 | (location >> 8 & 31) << 3 | (location >> 13 & 7);
}

std::string PciAddress(uint32_t location) {
    std::string text;
    AppendHex(text, location >> 16, 4);
    text += ':';
    AppendHex(text, location & 0xFF, 2);
    text += ':';
    AppendHex(text, location >> 8 & 31, 2);
    text += '.';
    AppendHex(text, location >> 13 & 7, 1);
    return text;
}

std::string WritePciDump(std::span<const PciFunction_t> functions) {
    std::string text;
    for (const PciFunction_t& function : functions) {
        const std::vector<uint8_t>& bytes = function.bytes;
        text += PciAddress(function.location);
        // As lspci -n: class, vendor and device.
        text += ' ';
        AppendHex(text, uint32_t{bytes[11]} << 8 | bytes[10], 4);
        text += ": ";
        AppendHex(text, uint32_t{bytes[1]} << 8 | bytes[0], 4);
        text += ':';
        AppendHex(text, uint32_t{bytes[3]} << 8 | bytes[2], 4);
        for (size_t offset = 0; offset < bytes.size(); offset++) {
            if (offset % kPerRow == 0) {
                text += '\n';
                AppendHex(text, offset, offset > 0xFF ? 3 : 2);
                text += ':';
            }
            text += ' ';
            AppendHex(text, bytes[offset], 2);
        }
        text += "\n\n";
    }
    return text;
}

std::string ParsePciDump(std::string_view text, std::vector<PciFunction_t>* functions) {
    constexpr char kBadSize[] = "a function of neither 64, 128, 256 nor 4096 bytes";
    functions->clear();
    if (text.size() > kMostTextBytes) return "too large";
    ClLines lines(text);
    bool isInFunction = false;
    while (lines.Next()) {
        if (lines.Rest().empty()) {
            if (isInFunction && !IsWhole(functions->back().bytes.size())) return lines.Problem(kBadSize);
            isInFunction = false;
        } else if (isInFunction) {
            if (!ParseRow(lines, &functions->back().bytes)) return lines.Problem("not the function's next 16 bytes");
        } else {
            uint32_t location;
            if (!ParseHead(lines, &location)) return lines.Problem("not a function like 0000:00:1f.0");
            if (!functions->empty() && PciOrder(location) <= PciOrder(functions->back().location))
                return lines.Problem("a function out of order");
            functions->push_back({location, {}});
            isInFunction = true;
        }
    }
    return isInFunction && !IsWhole(functions->back().bytes.size()) ? lines.Problem(kBadSize) : std::string();
}
