#include "Packages/Format/CpuidDump.h"

#include <tuple>

#include "Packages/Format/TextLines.h"

namespace {

constexpr size_t kMostProcessors = 4096;  // far more than a recording has

// Reads "   0x00000007 0x01: eax=0x00000020 ebx=...".
bool ParseRow(ClLines& lines, CpuidLeaf_t* row) {
    uint64_t leaf, subleaf, values[4];
    lines.TakeBlanks();
    if (!lines.Take("0x") || !lines.TakeHex(8, 8, &leaf) || !lines.Take(" 0x") || !lines.TakeHex(2, 8, &subleaf) ||
        !lines.Take(":"))
        return false;
    constexpr std::string_view kNames[] = {" eax=0x", " ebx=0x", " ecx=0x", " edx=0x"};
    for (size_t place = 0; place < std::size(kNames); place++)
        if (!lines.Take(kNames[place]) || !lines.TakeHex(8, 8, &values[place])) return false;
    const auto narrow = [](uint64_t value) { return static_cast<uint32_t>(value); };
    *row = {narrow(leaf), narrow(subleaf), narrow(values[0]), narrow(values[1]), narrow(values[2]), narrow(values[3])};
    return lines.Rest().empty();
}

}  // namespace

std::string WriteCpuidDump(std::span<const CpuidLeaves_t> processors) {
    std::string text;
    for (size_t number = 0; number < processors.size(); number++) {
        text.append("CPU ").append(std::to_string(number)).append(":\n");
        for (const CpuidLeaf_t& row : processors[number]) {
            text += "   0x";
            AppendHex(text, row.leaf, 8);
            text += " 0x";
            AppendHex(text, row.subleaf, row.subleaf > 0xFF ? 8 : 2);
            text += ": eax=0x";
            AppendHex(text, row.eax, 8);
            text += " ebx=0x";
            AppendHex(text, row.ebx, 8);
            text += " ecx=0x";
            AppendHex(text, row.ecx, 8);
            text += " edx=0x";
            AppendHex(text, row.edx, 8);
            text += '\n';
        }
    }
    return text;
}

std::string ParseCpuidDump(std::string_view text, std::vector<CpuidLeaves_t>* processors) {
    processors->clear();
    if (text.size() > kMostTextBytes) return "too large";
    ClLines lines(text);
    while (lines.Next()) {
        uint64_t number;
        CpuidLeaf_t row;
        if (lines.Take("CPU ")) {
            if (!lines.TakeDecimal(9, &number) || lines.Rest() != ":" || number != processors->size())
                return lines.Problem("not the next processor");
            if (number == kMostProcessors) return lines.Problem("too many processors");
            processors->emplace_back();
        } else if (processors->empty()) {
            return lines.Problem("not a processor");
        } else if (!ParseRow(lines, &row)) {
            return lines.Problem("not the registers of a leaf");
        } else {
            CpuidLeaves_t& leaves = processors->back();
            if (!leaves.empty() &&
                std::tie(row.leaf, row.subleaf) <= std::tie(leaves.back().leaf, leaves.back().subleaf))
                return lines.Problem("a leaf out of order");
            leaves.push_back(row);
        }
    }
    return {};
}
