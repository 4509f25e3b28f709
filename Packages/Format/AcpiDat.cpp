#include "Packages/Format/AcpiDat.h"

#include <algorithm>

#include "Packages/Format/Ascii.h"
#include "Packages/Format/TextLines.h"

namespace {

constexpr size_t kPerRow = 16, kNameSize = 4;
constexpr size_t kMostTables = 4096;  // far more than any machine has

bool IsVisible(char c) { return IsPrintableAscii(c) && c != ' '; }

void WriteRow(std::span<const uint8_t> bytes, size_t offset, std::string& text) {
    // At least four digits, aligned to the right in a column of eight.
    int digits = 4;
    while (offset >> 4 * digits != 0) digits++;
    text.append(static_cast<size_t>(8 - digits), ' ');
    AppendHex(text, offset, digits, true);
    text += ':';
    for (const uint8_t byte : bytes) {
        text += ' ';
        AppendHex(text, byte, 2, true);
    }
    text.append(3 * (kPerRow - bytes.size()) + 2, ' ');
    for (const uint8_t byte : bytes) {
        const char character = static_cast<char>(byte);
        text += IsPrintableAscii(character) ? character : '.';
    }
    text += '\n';
}

// Reads "    0000: 4D 43  MC", up to the text, which says nothing more.
bool ParseRow(ClLines& lines, std::vector<uint8_t>* bytes) {
    uint64_t offset, byte;
    lines.TakeBlanks();
    if (!lines.TakeHex(4, 8, &offset) || !lines.Take(":") || offset != bytes->size()) return false;
    for (size_t count = 0; count < kPerRow && !lines.Rest().starts_with("  "); count++) {
        if (!lines.Take(" ") || !lines.TakeHex(2, 2, &byte)) return count != 0 && lines.Rest().empty();
        bytes->push_back(static_cast<uint8_t>(byte));
    }
    return bytes->size() > offset && (lines.Rest().empty() || lines.Take("  "));
}

}  // namespace

bool IsAcpiName(std::string_view name) { return name.size() == kNameSize && std::ranges::all_of(name, IsVisible); }

std::string WriteAcpiDat(std::span<const AcpiTable_t> tables) {
    std::string text;
    for (const AcpiTable_t& table : tables) {
        text.append(table.name).append(" @ 0x0000000000000000\n");
        const std::span<const uint8_t> bytes(table.bytes);
        for (size_t offset = 0; offset < bytes.size(); offset += kPerRow)
            WriteRow(bytes.subspan(offset, std::min(kPerRow, bytes.size() - offset)), offset, text);
        text += '\n';
    }
    return text;
}

std::string ParseAcpiDat(std::string_view text, std::vector<AcpiTable_t>* tables) {
    tables->clear();
    if (text.size() > kMostTextBytes) return "too large";
    ClLines lines(text);
    uint64_t address;
    for (bool isInTable = false; lines.Next();) {
        if (lines.Rest().empty()) {
            if (isInTable && tables->back().bytes.empty()) return lines.Problem("a table without bytes");
            isInTable = false;
        } else if (isInTable) {
            std::vector<uint8_t>& bytes = tables->back().bytes;
            if (bytes.size() % kPerRow != 0) return lines.Problem("a row after the table's last");
            if (!ParseRow(lines, &bytes)) return lines.Problem("not the table's next bytes");
        } else {
            const std::string_view name = lines.Rest().substr(0, kNameSize);
            if (!IsAcpiName(name) || !lines.Take(name) || !lines.Take(" @ 0x") || !lines.TakeHex(1, 16, &address) ||
                !lines.Rest().empty())
                return lines.Problem("not the name of a table");
            if (tables->size() == kMostTables) return lines.Problem("too many tables");
            tables->push_back({std::string(name), {}});
            isInTable = true;
        }
    }
    return !tables->empty() && tables->back().bytes.empty() ? lines.Problem("a table without bytes") : std::string();
}
