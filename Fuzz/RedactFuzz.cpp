// Redacts any bytes as a table, which must keep its structures and strings.
// Input: whether structures of unknown types stay (4 bytes), the SMBIOS version (major and minor, 1 byte each), the
// table.
#include <cstring>

#include "Fuzz/Fuzz.h"
#include "Packages/Analysis/Redact.h"
#include "Packages/Standard/Facts.h"

namespace {

// A cheap one, as nothing here depends on secrecy.
bool MakeMac(std::span<const uint8_t> message, std::span<uint8_t, 32> mac) {
    uint64_t number = 0xCBF29CE484222325u;
    for (const uint8_t byte : message) number = (number ^ byte) * 0x100000001B3u;
    for (uint8_t& byte : mac) {
        number = number * 0x5851F42D4C957F2Du + 1;
        byte = static_cast<uint8_t>(number >> 56);
    }
    return true;
}

bool IsControl(char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }

void RequireSameForm(const TableStructure_t& a, const TableStructure_t& b) {
    Require(a.size == b.size && std::memcmp(a.data, b.data, std::min(a.size, kHeaderSize)) == 0);
    ClStrings first, second;
    first.Find(a);
    second.Find(b);
    Require(first.Count() == second.Count());
    for (uint32_t number = 1; number <= first.Count(); number++)
        Require(std::ranges::equal(first.Get(number), second.Get(number), {}, IsControl, IsControl));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ClInput input(data, size);
    const bool keepsVendor = (input.Take<uint32_t>() & 1) != 0;
    const auto major = input.Take<uint8_t>(), minor = input.Take<uint8_t>();
    const std::vector<uint8_t> before = input.Rest();
    std::vector<uint8_t> table = before;
    Require(RedactTable(table, {.version = static_cast<uint16_t>(major << 8 | minor), .keepsVendor = keepsVendor},
                        MakeMac));
    auto structure = ClWalk(table).begin();
    for (const TableStructure_t& original : ClWalk(before)) {
        Require(structure != nullptr);
        RequireSameForm(original, *structure);
        ++structure;
    }
    Require(!(structure != nullptr));
    return 0;
}
