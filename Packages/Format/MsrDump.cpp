#include "Packages/Format/MsrDump.h"

#include <tuple>

#include "Packages/Format/TextLines.h"

constexpr std::string_view kRefused = "refused";
constexpr size_t kMostRegisters = 1u << 20;  // far more than a recording has

// Reads "0x0000001b 0 00000000fee00900" or "0x0000001b 0 refused".
static bool ParseRow(ClLines& lines, RecordedMsr_t* row) {
    uint64_t number, processor, value;
    if (!lines.Take("0x") || !lines.TakeHex(8, 8, &number) || !lines.Take(" ") || !lines.TakeDecimal(9, &processor) ||
        !lines.Take(" "))
        return false;
    *row = {static_cast<uint32_t>(number), static_cast<uint32_t>(processor), std::nullopt};
    if (lines.Rest() == kRefused) return true;
    if (!lines.TakeHex(16, 16, &value) || !lines.Rest().empty()) return false;
    row->value = value;
    return true;
}

std::string WriteMsrDump(std::span<const RecordedMsr_t> registers) {
    std::string text;
    for (const RecordedMsr_t& row : registers) {
        text += "0x";
        AppendHex(text, row.number, 8);
        text.append(" ").append(std::to_string(row.processor)).append(" ");
        if (row.value)
            AppendHex(text, *row.value, 16);
        else
            text += kRefused;
        text += '\n';
    }
    return text;
}

std::string ParseMsrDump(std::string_view text, std::vector<RecordedMsr_t>* registers) {
    registers->clear();
    if (text.size() > kMostTextBytes) return "too large";
    ClLines lines(text);
    while (lines.Next()) {
        RecordedMsr_t row;
        if (!ParseRow(lines, &row)) return lines.Problem("not a register's number, processor and value");
        if (!registers->empty() &&
            std::tie(row.number, row.processor) <= std::tie(registers->back().number, registers->back().processor))
            return lines.Problem("a register out of order");
        if (registers->size() == kMostRegisters) return lines.Problem("too many registers");
        registers->push_back(row);
    }
    return {};
}
